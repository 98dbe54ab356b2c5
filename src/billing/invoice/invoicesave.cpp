#include "billing/invoice/invoicesave.h"

#include "billing/orders/ordersave.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/data/numbering.h"

namespace tq {

SaveOutcome saveInvoice(const PricedDocument& doc, Settlement settlement, const Payment& payment,
                        bool withCxc, const CardDetails* card)
{
    const bool insurer = settlement == Settlement::Insurer;
    const bool credit = settlement != Settlement::Paid;
    const Payment paid = insurer ? Payment{} : payment;

    Transaction t;
    SaveOutcome out;
    out.numero = freeNumber(doc.numero, QStringLiteral("Factura"), QStringLiteral("factura"));
    out.renumbered = out.numero != doc.numero;
    const std::int32_t n = out.numero;

    QStringList cols = {QStringLiteral("factura"), QStringLiteral("fecha"), QStringLiteral("faturado"),
                        QStringLiteral("cod_paciente"), QStringLiteral("sub_total"), QStringLiteral("total"),
                        QStringLiteral("efectivo"), QStringLiteral("tarjeta"), QStringLiteral("cheque"),
                        credit ? QStringLiteral("credito") : QStringLiteral("pagada"), QStringLiteral("Abono")};
    QVariantList vals = {n, doc.fecha, doc.faturado, doc.codPaciente, doc.subtotal, doc.total,
                         money(paid.efectivo), money(paid.tarjeta), money(paid.cheque), true,
                         credit ? money(paid.pagado) : doc.total};
    if (!doc.edad.isEmpty()) {
        cols << QStringLiteral("edad_paciente");
        vals << doc.edad;
    }
    if (doc.codDoctor) {
        cols << QStringLiteral("Cod_doctor");
        vals << *doc.codDoctor;
    }
    if (!doc.valAdicional.isEmpty()) {
        cols << QStringLiteral("valadicional") << QStringLiteral("adicional");
        vals << doc.valAdicional << doc.adicional;
    }
    amb1().insert(QStringLiteral("Factura"), cols, vals);

    for (const PricedLine& line : doc.lines)
        amb1().insert(QStringLiteral("FacturaDetalle"),
                      {QStringLiteral("factura"), QStringLiteral("cantidad"),
                       QStringLiteral("cod_descripcionexamen"), QStringLiteral("subtotal")},
                      {n, line.cantidad, line.codigo, line.subtotal});

    if (withCxc)
        amb1().insert(QStringLiteral("cxc"), {QStringLiteral("factura"), QStringLiteral("Cod_paciente")},
                      {n, doc.codPaciente});
    if (credit)
        amb1().insert(QStringLiteral("creditos"),
                      {QStringLiteral("factura"), QStringLiteral("fecha"), QStringLiteral("abono"),
                       QStringLiteral("numero")},
                      {n, doc.fecha, money(paid.pagado), 1});
    if (!insurer && card && card->entered)
        amb1().insert(QStringLiteral("Datostarjeta"),
                      {QStringLiteral("factura"), QStringLiteral("num_autorizacion"),
                       QStringLiteral("num_tarjeta"), QStringLiteral("num_identidad")},
                      {n, card->cargo, card->nombre, card->identidad});

    if (doc.orden != 0)
        markOrderBilled(doc.orden, n, doc.faturado);
    feedWorkTable(n);
    t.commit();
    return out;
}

OrderAlreadyBilled::OrderAlreadyBilled(std::int32_t orden, std::int32_t factura)
    : AppError(QStringLiteral("La orden %1 ya fue facturada en la factura %2. Esta factura no se "
                              "guardó.")
                   .arg(orden)
                   .arg(factura))
{
}

void markOrderBilled(std::int32_t orden, std::int32_t factura, const QString& user)
{
    // Checked under the write lock: of two stations that imported the same
    // order, the second to save finds it billed and writes nothing.
    const QVariant billedBy =
        amb1().scalar(QStringLiteral("SELECT factura FROM orden WHERE orden = ?"), {orden});
    if (billedBy.isValid() && !billedBy.isNull())
        throw OrderAlreadyBilled(orden, toInt32(billedBy));
    // Billed is closed: by the same save, whatever comes after it.
    amb1().execute(QStringLiteral("UPDATE orden SET factura = ? WHERE orden = ?"), {factura, orden});
    closeOrders({orden}, user);
}

void feedWorkTable(std::int32_t factura)
{
    // An invoice number feeds the work table once.
    if (amb1().scalar(QStringLiteral("SELECT 1 FROM EvaluadoTemporal WHERE factura = ? LIMIT 1"), {factura})
            .isValid())
        return;
    Recordset lines;
    lines.open(QStringLiteral(
                   "SELECT FacturaDetalle.factura, FacturaDetalle.cod_descripcionexamen, Examenes.examen, "
                   "FacturaDetalle.cantidad FROM Examenes INNER JOIN FacturaDetalle "
                   "ON Examenes.cod_descripcionexamen = FacturaDetalle.cod_descripcionexamen "
                   "WHERE FacturaDetalle.factura = ?"),
               {factura});
    for (int r = 0; r < lines.recordCount(); ++r) {
        const std::int32_t exam = toInt32(lines.valueAt(r, QStringLiteral("cod_descripcionexamen")));
        const QString name = lines.valueAt(r, QStringLiteral("examen")).toString();
        // Quantity 3 of one exam is three samples waiting for the laboratory.
        const std::int32_t units = std::max<std::int32_t>(1, toInt32(lines.valueAt(r, QStringLiteral("cantidad"))));
        for (std::int32_t u = 0; u < units; ++u)
            amb1().insert(QStringLiteral("EvaluadoTemporal"),
                          {QStringLiteral("factura"), QStringLiteral("cod_descripcionexamen"),
                           QStringLiteral("examen")},
                          {factura, exam, name});
    }
}

}  // namespace tq
