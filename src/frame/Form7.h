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
    // Built at start-up while the store may still be opening: the
    // laboratory's name, or the reason the store is closed, comes when the
    // store is ready.
    explicit Form7(QWidget* parent = nullptr);
    ~Form7() override;

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void storeReady();
    // The laboratory's name over the fields, or the reason the store is closed.
    void loadLaboratory();
    void warnStoreClosed();
    void ingresar();

    std::unique_ptr<Ui::Form7> ui;
    bool m_signedOn = false;     // closing because the main window took over
    bool m_storeKnown = false;   // the store has opened or failed
    bool m_warned = false;       // the store problem was already told
};
