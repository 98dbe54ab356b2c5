#include "billing/invoice/demoinvoices.h"

#include "billing/invoice/invoicesave.h"
#include "billing/orders/ordersave.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <QHash>

namespace tq {

namespace {

struct DemoInvoice {
    int patient;                        // position among the demo patients
    QList<QPair<const char*, int>> exams;   // name, quantity
    bool paid;
};

}  // namespace

void addDemoInvoices()
{
    if (amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM Factura")).toInt() > 0)
        return;
    QHash<QString, std::pair<std::int32_t, double>> exams;
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_descripcionexamen, examen, precio FROM Examenes"));
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        exams.insert(rs.text(QStringLiteral("examen")),
                     {toInt32(rs.field(QStringLiteral("cod_descripcionexamen"))),
                      Val(rs.text(QStringLiteral("precio")))});
    QList<std::int32_t> patients;
    QList<QString> ages;
    rs.open(QStringLiteral("SELECT cod_paciente, fecha_nacimiento FROM Pacientes "
                           "ORDER BY cod_paciente"));
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        patients << toInt32(rs.field(QStringLiteral("cod_paciente")));
        ages << calculoedad(storedDate(rs.field(QStringLiteral("fecha_nacimiento")))).text;
    }
    if (patients.size() < 4)
        return;

    const QList<DemoInvoice> invoices = {
        {0, {{"Hemograma Completo", 1}, {"Examen General de Orina", 1}}, true},
        {1, {{"Hemograma Completo", 1}, {"Glucosa en Ayunas", 1}, {"Perfil Lipidico", 1}}, false},
        {2, {{"Examen General de Heces", 3}}, true},
        {3, {{"Glucosa en Ayunas", 1}, {"Creatinina", 1}}, false},
        {1, {{"VDRL", 1}, {"Tipo y Rh", 1}}, true},
    };
    for (const DemoInvoice& d : invoices) {
        PricedDocument doc;
        doc.numero = toInt32(
            amb1().scalar(QStringLiteral("SELECT COALESCE(MAX(factura), 0) + 1 FROM Factura")));
        doc.fecha = QDate::currentDate();
        doc.faturado = QStringLiteral("Recepcion");
        doc.codPaciente = patients.at(d.patient);
        doc.edad = ages.at(d.patient);
        double total = 0;
        for (const auto& [name, quantity] : d.exams) {
            const auto found = exams.constFind(QString::fromUtf8(name));
            if (found == exams.constEnd())
                continue;
            const double subtotal = found->second * quantity;
            doc.lines.append({quantity, found->first, money(subtotal), money(found->second)});
            total += subtotal;
        }
        if (doc.lines.isEmpty())
            continue;
        doc.subtotal = money(total);
        doc.total = money(total);
        Payment payment;
        payment.efectivo = d.paid ? total : total / 2;
        payment.pagado = payment.efectivo;
        saveInvoice(doc, d.paid ? Settlement::Paid : Settlement::Credit, payment, !d.paid, nullptr);
    }

    // Two quotations waiting at the desk, for patients on normal prices.
    Recordset particulares;
    particulares.open(QStringLiteral("SELECT cod_paciente FROM Pacientes WHERE cod_seguro = 0 "
                                     "ORDER BY cod_paciente LIMIT 2"));
    const QList<QList<QPair<const char*, int>>> quotations = {
        {{"Perfil Lipidico", 1}, {"Glucosa en Ayunas", 1}, {"Creatinina", 1}},
        {{"Hemograma Completo", 2}, {"Tipo y Rh", 1}},
    };
    for (int i = 0; i < particulares.recordCount() && i < quotations.size(); ++i) {
        PricedDocument doc;
        doc.numero = nextOrderNumber();
        doc.fecha = QDate::currentDate().addDays(-i);
        doc.faturado = QStringLiteral("Recepcion");
        doc.codPaciente = toInt32(particulares.valueAt(i, QStringLiteral("cod_paciente")));
        double total = 0;
        for (const auto& [name, quantity] : quotations.at(i)) {
            const auto found = exams.constFind(QString::fromUtf8(name));
            if (found == exams.constEnd())
                continue;
            doc.lines.append({quantity, found->first, money(found->second * quantity), money(found->second)});
            total += found->second * quantity;
        }
        doc.subtotal = money(total);
        doc.total = money(total);
        if (!doc.lines.isEmpty())
            saveOrder(doc);
    }
}

}  // namespace tq
