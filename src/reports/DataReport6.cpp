// DataReport6: the supplies each supplier sells. Shown from the inventory
// window without the laboratory's heading.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport6)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsInsuProv_Grouping"),
                        QStringLiteral("Insumos por Proveedor"));
    const double w = bandWidth(l);
    const double half = w / 2;
    const Table supplies({{QStringLiteral("Codigo"), QStringLiteral("Cod_Item"), 20, Format::Whole},
                          {QStringLiteral("Nombre Item"), QStringLiteral("nombre_Item"), 60},
                          {QStringLiteral("Descripcion"), QStringLiteral("descripcion_Item"),
                           w - 110},
                          {QStringLiteral("Precio"), QStringLiteral("precio_Item"), 30,
                           Format::Money}});
    Level supplier;
    supplier.header = band(pair(QStringLiteral("Proveedor:"), QStringLiteral("prvcod"), 0, 1, 22,
                                15, Format::Whole)
                               + QList<Item>{field(QStringLiteral("prvnom"),
                                                   Box{37, 1, w - 37, 5})}
                               + pair(QStringLiteral("Contacto:"), QStringLiteral("prvref"), 0, 7,
                                      22, half - 22)
                               + pair(QStringLiteral("Telefono:"), QStringLiteral("prvtel"), half,
                                      7, 22, half - 22)
                               + pair(QStringLiteral("Direccion:"), QStringLiteral("prvdir"), 0,
                                      13, 22, half - 22)
                               + pair(QStringLiteral("Correo:"), QStringLiteral("prvcor"), half,
                                      13, 22, half - 22)
                               + supplies.captions(20),
                           1);
    supplier.footer = band({rule(0, 1, w)}, 2);
    l.levels = {supplier, rowsOf(QStringLiteral("InsuProv"), supplies)};
    return l;
}
