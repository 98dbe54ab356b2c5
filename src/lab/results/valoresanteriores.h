#pragma once
// "Valores Anteriores de una Boleta": what the corrections of an invoice's
// result sheets took away. The corrections of the invoice are listed (when,
// template, who authorised, who typed, why); choosing one shows its
// template's versions side by side, one column per version and the cells
// each correction changed marked, ready to print. Nothing here writes.
#include "lab/corrections.h"

#include <QColor>
#include <QWidget>
#include <memory>

namespace Ui {
class valoresanteriores;
}

class valoresanteriores : public QWidget {
    Q_OBJECT
public:
    explicit valoresanteriores(QWidget* parent = nullptr);
    ~valoresanteriores() override;

    // The mark of a cell that differs from the version before it.
    static QColor changedColour() { return QColor(255, 214, 140); }

private:
    void buscar();
    void elegir(int row);
    void showVersions(int codPlantilla, const QString& plantilla);
    void imprimir();
    QString printedPage() const;

    std::unique_ptr<Ui::valoresanteriores> ui;
    std::int32_t m_factura = 0;
    QList<tq::corrections::Change> m_changes;
    tq::corrections::Versions m_versions;
    QString m_plantilla;
    QStringList m_names;   // the parameter beside each row of the versions
};
