#include "billing/orders/ordersave.h"

#include "foundation/base/values.h"
#include "registers/doctors/doctorlist.h"
#include "foundation/data/amb1.h"
#include "foundation/data/numbering.h"

namespace tq {

std::int32_t nextOrderNumber() { return nextNumber(QStringLiteral("orden"), QStringLiteral("orden")); }

SaveOutcome saveOrder(const PricedDocument& doc)
{
    Transaction t;
    SaveOutcome out;
    out.numero = freeNumber(doc.numero, QStringLiteral("orden"), QStringLiteral("orden"));
    out.renumbered = out.numero != doc.numero;

    QStringList cols = {QStringLiteral("orden"),        QStringLiteral("fecha"),
                        QStringLiteral("faturado"),     QStringLiteral("cod_paciente"),
                        QStringLiteral("sub_total"),    QStringLiteral("total"),
                        QStringLiteral("anulada")};
    QVariantList vals = {out.numero,      doc.fecha,  doc.faturado, doc.codPaciente,
                         doc.subtotal,    doc.total,  false};
    if (doc.codDoctor) {
        cols << QStringLiteral("cod_doctor");
        vals << *doc.codDoctor;
    }
    if (!doc.valAdicional.isEmpty()) {
        cols << QStringLiteral("valadicional") << QStringLiteral("adicional");
        vals << doc.valAdicional << doc.adicional;
    }
    amb1().insert(QStringLiteral("orden"), cols, vals);
    // The lines in one statement: a save of ten lines is one trip to a server, not ten.
    if (!doc.lines.isEmpty()) {
        QStringList rows;
        QVariantList lineValues;
        for (const PricedLine& line : doc.lines) {
            rows << QStringLiteral("(?, ?, ?, ?, ?)");
            lineValues << out.numero << line.cantidad << line.codigo << line.precio << line.subtotal;
        }
        amb1().execute(QStringLiteral("INSERT INTO ordenDetalle (orden, cantidad, "
                                      "cod_descripcionexamen, precio, subtotal) VALUES ")
                           + rows.join(QStringLiteral(", ")),
                       lineValues);
    }
    t.commit();
    return out;
}

int closeOrders(const QList<std::int32_t>& orders, const QString& user)
{
    Transaction t;
    int closed = 0;
    const QDate today = QDate::currentDate();
    for (const std::int32_t n : orders)
        closed += amb1().execute(QStringLiteral("UPDATE orden SET anulada = ?, anulacion = ?, "
                                                "quien_anulo = ? WHERE orden = ? AND anulada = ?"),
                                 {true, today, user, n, false});
    t.commit();
    return closed;
}

std::optional<StoredOrder> readOrder(std::int32_t numero)
{
    // An inner join: an order whose patient or insurer row is gone imports
    // nothing. The doctor comes in the same reading, when there is one.
    Recordset head;
    head.open(QStringLiteral(
                  "SELECT orden.orden, orden.cod_paciente, orden.sub_total, orden.total, "
                  "orden.valadicional, orden.adicional, orden.cod_doctor, "
                  "Pacientes.nombre_paciente, Pacientes.apellido_paciente, "
                  "Pacientes.direccion_paciente, Pacientes.fecha_nacimiento, "
                  "Pacientes.cod_seguro, seguros.Empresa, "
                  "Doctores.Cod_doctor AS doctor, Doctores.Nombre_doctor, Doctores.Apellido_doctor "
                  "FROM orden INNER JOIN Pacientes ON orden.cod_paciente = Pacientes.cod_paciente "
                  "INNER JOIN seguros ON Pacientes.cod_seguro = seguros.cod_seguro "
                  "LEFT JOIN Doctores ON Doctores.Cod_doctor = orden.cod_doctor "
                  "WHERE orden.orden = ?"),
              {numero});
    if (head.recordCount() == 0)
        return std::nullopt;
    StoredOrder o;
    o.numero = numero;
    o.codPaciente = toInt32(head.field(QStringLiteral("cod_paciente")));
    o.paciente = head.text(QStringLiteral("nombre_paciente")) + QLatin1Char(' ')
                 + head.text(QStringLiteral("apellido_paciente"));
    o.direccion = head.text(QStringLiteral("direccion_paciente"));
    o.nacimiento = storedDate(head.field(QStringLiteral("fecha_nacimiento")));
    o.codSeguro = toInt32(head.field(QStringLiteral("cod_seguro")));
    o.empresa = head.text(QStringLiteral("Empresa"));
    o.subtotal = Val(head.text(QStringLiteral("sub_total")));
    o.total = Val(head.text(QStringLiteral("total")));
    o.valAdicional = Val(head.text(QStringLiteral("valadicional")));
    o.adicional = head.text(QStringLiteral("adicional"));
    const QVariant doctor = head.field(QStringLiteral("cod_doctor"));
    if (!doctor.isNull() && doctor.isValid())
        o.codDoctor = toInt32(doctor);
    if (!head.field(QStringLiteral("doctor")).isNull())
        o.doctor = doctorEntry(toInt32(head.field(QStringLiteral("doctor"))),
                               head.text(QStringLiteral("Nombre_doctor")),
                               head.text(QStringLiteral("Apellido_doctor")));
    Recordset lines;
    lines.open(QStringLiteral(
                   "SELECT ordenDetalle.cantidad, ordenDetalle.cod_descripcionexamen, "
                   "Examenes.examen, ordenDetalle.precio, ordenDetalle.subtotal "
                   "FROM ordenDetalle INNER JOIN Examenes "
                   "ON ordenDetalle.cod_descripcionexamen = Examenes.cod_descripcionexamen "
                   "WHERE ordenDetalle.orden = ?"),
               {numero});
    for (int r = 0; r < lines.recordCount(); ++r)
        o.lines << StoredOrder::Line{toInt32(lines.valueAt(r, QStringLiteral("cantidad"))),
                                     toInt32(lines.valueAt(r, QStringLiteral("cod_descripcionexamen"))),
                                     lines.valueAt(r, QStringLiteral("examen")).toString(),
                                     lines.valueAt(r, QStringLiteral("precio")).toDouble(),
                                     lines.valueAt(r, QStringLiteral("subtotal")).toDouble()};
    return o;
}

}  // namespace tq
