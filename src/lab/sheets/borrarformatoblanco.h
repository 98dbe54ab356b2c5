#pragma once
// "Borrar Plantilla": a stored text of the blank sheet taken away.
#include <QPointer>
#include <QWidget>
#include <memory>

class Form19;

namespace Ui {
class borrarformatoblanco;
}

class borrarformatoblanco : public QWidget {
    Q_OBJECT
public:
    explicit borrarformatoblanco(QWidget* parent = nullptr);
    ~borrarformatoblanco() override;

    // The blank sheet whose menu loses an entry with each deletion.
    void setSheet(Form19* sheet);

private:
    void loadList();
    void remove();

    std::unique_ptr<Ui::borrarformatoblanco> ui;
    QPointer<Form19> m_sheet;
};
