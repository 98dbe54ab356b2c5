#pragma once
// "Reporte de Facturas por Seguro Pagadas": the insurer invoices already
// settled, for one insurer or for all of them.
#include <QWidget>

class Form35 : public QWidget {
    Q_OBJECT
public:
    explicit Form35(QWidget* parent = nullptr);
};
