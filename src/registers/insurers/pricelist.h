#pragma once
// An insurer's price list: the one query that reads it, for the exam
// picker, the price-list screen, the invoice and the order. A patient with
// an insurer is priced from this list, and an exam missing from it is not
// offered for him; a patient without one is priced at Examenes.precio.
#include <QString>

namespace tq {

// The list of one insurer: cod_seguro, Cod_descripcionexamen, precio,
// Empresa, examen; the insurer's code is the first value bound. A caller may
// append further conditions ("AND Examenes.examen LIKE ?") and their values.
inline QString insurerPriceListSql()
{
    return QStringLiteral(
        "SELECT RelSeguroPrecios.cod_seguro, RelSeguroPrecios.Cod_descripcionexamen, "
        "RelSeguroPrecios.precio, seguros.Empresa, Examenes.examen "
        "FROM RelSeguroPrecios, Examenes, seguros "
        "WHERE RelSeguroPrecios.cod_descripcionexamen = Examenes.cod_descripcionexamen "
        "AND RelSeguroPrecios.cod_seguro = seguros.cod_seguro "
        "AND RelSeguroPrecios.cod_seguro = ? ");
}

}  // namespace tq
