#pragma once
// The order reprint box: the number typed is shown as its order or quotation
// (reporOrden). "Tiket" and "Media Carta" are offered as on the invoice's
// print box; the order prints the same on either. The main menu sets the
// property "reimprimir" before showing the box, which then calls itself a
// reprint.
#include <QWidget>
#include <memory>

namespace Ui {
class Freimprimir;
}

class Freimprimir : public QWidget {
    Q_OBJECT
public:
    explicit Freimprimir(QWidget* parent = nullptr);
    ~Freimprimir() override;

protected:
    bool event(QEvent* event) override;

private:
    void aceptar();

    std::unique_ptr<Ui::Freimprimir> ui;
};
