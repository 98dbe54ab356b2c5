#pragma once
// The reason for a correction, chosen from a fixed list: the description the
// change log keeps can only be one of these sentences, never typed. The
// correction list shows it beside the sheet being corrected, and the sheet's
// save reads it at that moment.
#include <QWidget>
#include <memory>

namespace Ui {
class menucambio;
}

class menucambio : public QWidget {
    Q_OBJECT
public:
    explicit menucambio(QWidget* parent = nullptr);
    ~menucambio() override;

    // The description of the change; empty until a reason is chosen.
    QString descripcion() const;
    // The window comes forward with the list of reasons under the keys.
    void takeFocus();

private:
    void chosen(int index);

    std::unique_ptr<Ui::menucambio> ui;
};
