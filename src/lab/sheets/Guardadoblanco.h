#pragma once
// "Guardar Formato como Plantilla": the page open on the blank sheet kept as
// a stored text under a name and one of the six menus.
#include <QPointer>
#include <QWidget>
#include <memory>

class Form19;

namespace Ui {
class Guardadoblanco;
}

class Guardadoblanco : public QWidget {
    Q_OBJECT
public:
    explicit Guardadoblanco(QWidget* parent = nullptr);
    ~Guardadoblanco() override;

    // The blank sheet whose page is kept and whose menu shows the new entry.
    // Without one, an empty page is kept.
    void setSheet(Form19* sheet);

private:
    void loadMenus();
    void save();

    std::unique_ptr<Ui::Guardadoblanco> ui;
    QPointer<Form19> m_sheet;
};
