#pragma once
// Sign-on screen: name and password of the employee, "Ingresar" and "Salir".
#include <QWidget>
#include <memory>

namespace Ui {
class Form7;
}

class Form7 : public QWidget {
    Q_OBJECT
public:
    // `readLaboratory` false leaves the laboratory's name to a later
    // loadLaboratory(), for a screen built while the store is still opening.
    explicit Form7(QWidget* parent = nullptr, bool readLaboratory = true);
    ~Form7() override;

    // The laboratory's name over the fields, or the reason the store is closed.
    void loadLaboratory();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void ingresar();

    std::unique_ptr<Ui::Form7> ui;
    bool m_signedOn = false;     // closing because the main window took over
    bool m_warned = false;       // the store problem was already told
};
