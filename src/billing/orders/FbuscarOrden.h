#pragma once
// "Buscar Orden/Cotizacion": the pending orders, narrowed by the number typed
// (each key) or by a range of dates, sorted in place by number, patient or
// date. Serving the invoice (chooseOrder), a row chosen hands its number back
// and closes the screen; opened from the menu a row is only looked at.
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>

namespace Ui {
class FbuscarOrden;
}

class FbuscarOrden : public QWidget {
    Q_OBJECT
public:
    explicit FbuscarOrden(QWidget* parent = nullptr);
    ~FbuscarOrden() override;

    // Where a chosen order goes. Only while the picker selector reads 1.
    void serve(std::function<void(std::int32_t)> chosen);

private:
    void cargar();
    void porNumero();
    void porFecha();
    void elegirModo();
    void elegir(int row);

    std::unique_ptr<Ui::FbuscarOrden> ui;
    std::function<void(std::int32_t)> m_chosen;
};
