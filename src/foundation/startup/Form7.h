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
    explicit Form7(QWidget* parent = nullptr);
    ~Form7() override;

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void loadLaboratory();
    void ingresar();

    std::unique_ptr<Ui::Form7> ui;
    bool m_signedOn = false;     // closing because the main window took over
    bool m_warned = false;       // the store problem was already told
};
