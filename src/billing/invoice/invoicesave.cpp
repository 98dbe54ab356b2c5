#include "billing/invoice/invoicesave.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

namespace tq {

namespace {

// The proposed number, or the next free one when it is taken already.
std::int32_t freeNumber(std::int32_t proposed)
{
    const QVariant taken = amb1().scalar(
        QStringLiteral("SELECT 1 FROM Factura WHERE factura = ? LIMIT 1"), {proposed});
    if (!taken.isValid())
        return proposed;
    const QVariant last = amb1().scalar(QStringLiteral("SELECT MAX(factura) FROM Factura"));
    return toInt32(double(toInt32(last)) + 1);
}

}  // namespace

SaveOutcome saveInvoice(const InvoiceDocument& doc, Settlement settlement, const Payment& payment,
                        bool withCxc, const CardDetails* card)
{
    const bool insurer = settlement == Settlement::Insurer;
    const bool credit = settlement != Settlement::Paid;
    const Payment paid = insurer ? Payment{} : payment;

    Transaction t;
    SaveOutcome out;
    out.numero = freeNumber(doc.numero);
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

    for (const InvoiceLine& line : doc.lines)
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

    feedWorkTable(n);
    t.commit();
    return out;
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
