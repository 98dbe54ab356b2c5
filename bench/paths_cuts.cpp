// The cash cuts and sales listings: the report sources the period screens
// and the receivables screens filter before their reports show, with the
// filter texts those screens write.
#include "bare.h"
#include "bench.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/daterange.h"

namespace bench {

namespace {

// Reads every field of every row, as a report lays them out. Group rows
// count nothing of their own (the floor reads the rows below them); parent
// rows of a relation count one each, as the floor reads them too.
qint64 walk(tq::Recordset& rs, bool countParents)
{
    qint64 seen = 0;
    const QStringList names = rs.fieldNames();
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        for (const QString& n : names)
            (void)rs.field(n);
        if (countParents)
            ++seen;
        for (const QString& child : rs.childNames()) {
            tq::Recordset rows = rs.child(child);
            const QStringList fields = rows.fieldNames();
            for (rows.moveFirst(); !rows.eof(); rows.moveNext(), ++seen)
                for (const QString& n : fields)
                    (void)rows.field(n);
        }
    }
    return seen;
}

// A stored query of the catalogue narrowed by a condition with bound values.
QString narrowedQuery(const QString& command, const QString& condition)
{
    for (const tq::CommandDef& def : tq::amb1().catalogue())
        if (def.name.compare(command, Qt::CaseInsensitive) == 0)
            return def.text + QStringLiteral(" AND ") + condition;
    throw std::runtime_error(QStringLiteral("%1 is not a stored query").arg(command).toStdString());
}

const char* const kInsurersSql =
    "SELECT Cod_Seguro, Empresa, Contacto, Tel, Banco, Cuenta FROM seguros";

}  // namespace

void addCutPaths(Bench& bench, const Context& c)
{
    const QDate monthStart(c.cutDay.year(), c.cutDay.month(), 1);
    const QDate monthEnd = monthStart.addMonths(1).addDays(-1);
    const QDate weekStart = c.cutDay.addDays(-6);
    const QString period = QStringLiteral(" AND Factura.fecha >= ? AND Factura.fecha <= ?");

    // Form8: the cut of a month.
    const QString cutSql = narrowedSource(QStringLiteral("rsrcorte_Grouping"), QString(),
                                          QStringLiteral("Factura.anulada = FALSE") + period);
    bench.add({.name = QStringLiteral("rsrcorte_Grouping, a month (Form8)"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rsrcorte_Grouping"),
                                            tq::periodFilter(QStringLiteral("anulada =0 and "),
                                                             monthStart, monthEnd)),
                               false);
               },
               .floor = [=] { return Stmt(c.bare, cutSql).readAll(monthStart, monthEnd); }});

    // Fcorteventastarjeta: the card sales of a month.
    const QString cardSql = narrowedSource(QStringLiteral("rsrepventastarjeta_Grouping"),
                                           QString(), QStringLiteral("1 = 1") + period);
    bench.add({.name = QStringLiteral("rsrepventastarjeta_Grouping, a month"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rsrepventastarjeta_Grouping"),
                                            tq::periodFilter(QString(), monthStart, monthEnd)),
                               false);
               },
               .floor = [=] { return Stmt(c.bare, cardSql).readAll(monthStart, monthEnd); }});

    // interfactanuladas: the voided invoices of a month.
    const QString voidedSql = narrowedQuery(
        QStringLiteral("rsfactanuladas"),
        QStringLiteral("anulada = TRUE AND fecha >= ? AND fecha <= ?"));
    bench.add({.name = QStringLiteral("rsfactanuladas, a month"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rsfactanuladas"),
                                            tq::periodFilter(QStringLiteral("anulada =1 and "),
                                                             monthStart, monthEnd)),
                               true);
               },
               .floor = [=] { return Stmt(c.bare, voidedSql).readAll(monthStart, monthEnd); }});

    // Form29: the profit of every line billed in a week.
    const QString profitSql = narrowedQuery(QStringLiteral("rsRepFacgan"),
                                            QStringLiteral("Factura.anulada = FALSE") + period);
    bench.add({.name = QStringLiteral("rsRepFacgan, a week (Form29)"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rsRepFacgan"),
                                            tq::periodFilter(QStringLiteral("anulada=0 and "),
                                                             weekStart, c.cutDay)),
                               true);
               },
               .floor = [=] { return Stmt(c.bare, profitSql).readAll(weekStart, c.cutDay); }});

    // Form33 and Form35: one insurer's open and settled invoices, and the open
    // ones of every insurer.
    const int insurer = 1;
    const QString openSql = narrowedSource(QStringLiteral("rsrcuentas"),
                                           QStringLiteral("rcuentasdetalle"),
                                           QStringLiteral("Pacientes.Cod_seguro = ?"));
    const QString paidSql = narrowedSource(QStringLiteral("rsrcpagadas"),
                                           QStringLiteral("rcuentaspagadas"),
                                           QStringLiteral("Pacientes.Cod_seguro = ?"));
    const QString oneInsurer = QString::fromLatin1(kInsurersSql)
                               + QStringLiteral(" WHERE Cod_Seguro = ?");
    bench.add({.name = QStringLiteral("rsrcuentas, one insurer (Form33)"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rsrcuentas"),
                                            QStringLiteral("Cod_Seguro =%1").arg(insurer)),
                               true);
               },
               .floor = [=] {
                   return Stmt(c.bare, oneInsurer).readAll(insurer)
                          + Stmt(c.bare, openSql).readAll(insurer);
               }});
    const QString allOpenSql = narrowedSource(QStringLiteral("rsrcuentas"),
                                              QStringLiteral("rcuentasdetalle"),
                                              QStringLiteral("1 = 1"));
    bench.add({.name = QStringLiteral("rsrcuentas, every insurer (Form33)"),
               .run = [=] { return walk(openFiltered(QStringLiteral("rsrcuentas"), {}), true); },
               .floor = [=] {
                   return Stmt(c.bare, kInsurersSql).readAll()
                          + Stmt(c.bare, allOpenSql).readAll();
               }});
    bench.add({.name = QStringLiteral("rsrcpagadas, one insurer (Form35)"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rsrcpagadas"),
                                            QStringLiteral("Cod_Seguro =%1").arg(insurer)),
                               true);
               },
               .floor = [=] {
                   return Stmt(c.bare, oneInsurer).readAll(insurer)
                          + Stmt(c.bare, paidSql).readAll(insurer);
               }});

    // Form33 by patient: the patient who owes on the most invoices.
    const int patient = int(scalarBare(
        c.bare, "SELECT cxc.Cod_paciente FROM cxc, Factura WHERE cxc.factura = Factura.factura "
                "AND cxc.estado = FALSE AND Factura.anulada = FALSE GROUP BY cxc.Cod_paciente "
                "ORDER BY count(*) DESC, cxc.Cod_paciente LIMIT 1"));
    const QString patientSql = narrowedSource(QStringLiteral("rscuentascliente_Grouping"),
                                              QString(), QStringLiteral("cxc.Cod_paciente = ?"));
    bench.add({.name = QStringLiteral("rscuentascliente_Grouping, one patient (Form33)"),
               .run = [=] {
                   return walk(openFiltered(QStringLiteral("rscuentascliente_Grouping"),
                                            QStringLiteral("Cod_paciente =%1").arg(patient)),
                               false);
               },
               .floor = [=] { return Stmt(c.bare, patientSql).readAll(patient); }});
}

}  // namespace bench
