// The invoice screen: opening it (number proposal and doctor list), a line
// accepted at the insurer's or the catalogue price, and the totals of a
// 20-line invoice.
#include "bare.h"
#include "bench.h"

#include "billing/invoice/composer.h"
#include "billing/invoice/factura3.h"
#include "billing/invoice/invoicesave.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

namespace bench {

namespace {

// The invoice screen with a patient set as the picker sets one; building
// its widgets is not timed.
class InvoiceScreen : public factura3 {
public:
    tq::FlexGrid* grid() const { return findChild<tq::FlexGrid*>(QStringLiteral("Factura")); }
    tq::DocumentComposer* doc() const { return findChild<tq::DocumentComposer*>(); }

    qint64 open()
    {
        load();
        return findChild<QComboBox*>(QStringLiteral("Combo1"))->count()
               + findChild<QLabel*>(QStringLiteral("Txt_numfact"))->text().toLongLong();
    }

    void patient(std::int32_t insurer, const QDate& birth)
    {
        doc()->cancelar();
        doc()->setUpGrid(false);
        doc()->setPatient(0, QStringLiteral("Paciente, Prueba"), QString(), birth, insurer, QString());
    }

    // One line keyed on a fresh grid; what it shows is the price read.
    qint64 line(int exam)
    {
        tq::FlexGrid* g = grid();
        g->setRows(2);
        g->setTextMatrix(1, 0, QStringLiteral("2"));
        g->setTextMatrix(1, 1, QString::number(exam));
        g->setTextMatrix(1, 2, QString());
        doc()->acceptLine(1);
        return qRound64(tq::Val(g->textMatrix(1, 3)) * 100);
    }

    void lines(const std::vector<int>& exams)
    {
        for (const int exam : exams) {
            tq::FlexGrid* g = grid();
            const int r = g->rows() - 1;
            g->setTextMatrix(r, 0, QStringLiteral("1"));
            g->setTextMatrix(r, 1, QString::number(exam));
            doc()->acceptLine(r);
        }
    }

    qint64 total()
    {
        doc()->generar();
        return qRound64(tq::Val(findChild<QLineEdit*>(QStringLiteral("totfact"))->text()) * 100);
    }
};

InvoiceScreen& invoiceScreen()
{
    static InvoiceScreen* screen = new InvoiceScreen;
    return *screen;
}

// The lowest priced exams of insurer 1's list.
std::vector<int> listedExams(Connection* db, int count)
{
    Stmt s(db, "SELECT Cod_descripcionexamen FROM RelSeguroPrecios WHERE cod_seguro = 1 "
               "ORDER BY Cod_descripcionexamen LIMIT ?");
    s.bind(1, count);
    return intColumn(s);
}

// The price of one exam at two units, in cents, read bare.
qint64 priceFloor(Connection* db, const char* sql, const std::vector<int>& binds)
{
    Stmt s(db, sql);
    for (int i = 0; i < int(binds.size()); ++i)
        s.bind(i + 1, binds[i]);
    qint64 cents = 0;
    while (s.next()) {
        (void)s.columnText(0);
        cents = qRound64(s.columnDouble(1) * 100);
    }
    return cents;
}

// Invoices saved by the bench take numbers far above the store's own, each
// side its own range, and are taken away after the path.
constexpr qint64 kOursFrom = 2'000'000'000;
constexpr qint64 kBareFrom = 2'100'000'000;

void removeSaved(Connection* db)
{
    for (const char* table : {"Factura", "FacturaDetalle", "cxc", "creditos", "Datostarjeta", "EvaluadoTemporal"}) {
        Stmt del(db, QStringLiteral("DELETE FROM %1 WHERE factura >= ?").arg(QLatin1String(table)));
        del.bind(1, kOursFrom);
        while (del.next()) {
        }
    }
}

// Saving a 5-line invoice charged to the insurer, as the bare store would:
// the number checked, the invoice, its lines, cxc, the first instalment, and
// one work-table row per unit (the first line at two units).
qint64 saveFloor(Connection* db, qint64 number, int patient, const std::vector<int>& exams)
{
    execBare(db, "BEGIN");
    qint64 rows = 0;
    auto step = [&rows](Stmt& s) {
        while (s.next()) {
        }
        ++rows;
    };
    Stmt taken(db, "SELECT 1 FROM Factura WHERE factura = ? LIMIT 1");
    taken.bind(1, number);
    while (taken.next()) {
    }
    const QDate today = QDate::currentDate();
    Stmt inv(db, "INSERT INTO Factura (factura, fecha, faturado, cod_paciente, sub_total, total, efectivo, "
                 "tarjeta, cheque, credito, Abono, edad_paciente) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    inv.bind(1, number);
    inv.bind(2, today);
    inv.bind(3, "bench");
    inv.bind(4, patient);
    inv.bind(5, "500.00");
    inv.bind(6, "500.00");
    inv.bind(7, ".00");
    inv.bind(8, ".00");
    inv.bind(9, ".00");
    inv.bind(10, true);
    inv.bind(11, ".00");
    inv.bind(12, "40 Años 1 meses");
    step(inv);
    Stmt line(db, "INSERT INTO FacturaDetalle (factura, cantidad, cod_descripcionexamen, subtotal) VALUES (?, ?, ?, ?)");
    for (std::size_t i = 0; i < exams.size(); ++i) {
        line.bind(1, number);
        line.bind(2, i == 0 ? 2 : 1);
        line.bind(3, exams[i]);
        line.bind(4, "100.00");
        step(line);
    }
    Stmt cxc(db, "INSERT INTO cxc (factura, Cod_paciente) VALUES (?, ?)");
    cxc.bind(1, number);
    cxc.bind(2, patient);
    step(cxc);
    Stmt cred(db, "INSERT INTO creditos (factura, fecha, abono, numero) VALUES (?, ?, ?, ?)");
    cred.bind(1, number);
    cred.bind(2, today);
    cred.bind(3, ".00");
    cred.bind(4, 1);
    step(cred);
    Stmt fed(db, "SELECT 1 FROM EvaluadoTemporal WHERE factura = ? LIMIT 1");
    fed.bind(1, number);
    while (fed.next()) {
    }
    Stmt join(db, "SELECT FacturaDetalle.factura, FacturaDetalle.cod_descripcionexamen, Examenes.examen, "
                  "FacturaDetalle.cantidad FROM Examenes INNER JOIN FacturaDetalle "
                  "ON Examenes.cod_descripcionexamen = FacturaDetalle.cod_descripcionexamen "
                  "WHERE FacturaDetalle.factura = ?");
    join.bind(1, number);
    std::vector<std::tuple<int, QString, int>> waiting;
    while (join.next())
        waiting.emplace_back(join.columnInt(1), join.columnText(2), join.columnInt(3));
    Stmt work(db, "INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen, examen) VALUES (?, ?, ?)");
    for (const auto& [exam, name, units] : waiting) {
        for (int u = 0; u < std::max(1, units); ++u) {
            work.bind(1, number);
            work.bind(2, exam);
            work.bind(3, name);
            step(work);
        }
    }
    execBare(db, "COMMIT");
    return rows;
}

}  // namespace

void addBillingPaths(Bench& bench, const Context& c)
{
    bench.add({.name = QStringLiteral("invoice opening, number and doctors (factura3)"),
               .run = [] { return invoiceScreen().open(); },
               .floor = [c] {
                   Stmt last(c.bare, "SELECT MAX(factura) FROM Factura");
                   qint64 number = 1;
                   while (last.next())
                       number = last.columnInt(0) + 1;
                   return number + Stmt(c.bare, "SELECT Cod_doctor, Nombre_doctor, Apellido_doctor "
                                                "FROM Doctores ORDER BY Cod_doctor")
                                       .readAll();
               },
               .note = QStringLiteral("the number proposed and the doctor list filled, as on "
                                      "opening; building the widgets is not timed")});

    const int exam = listedExams(c.bare, 1).at(0);
    bench.add({.name = QStringLiteral("invoice line, insured patient (factura3)"),
               .run = [exam] {
                   invoiceScreen().patient(1, QDate(1980, 5, 5));
                   return invoiceScreen().line(exam);
               },
               .floor = [c, exam] {
                   return priceFloor(
                       c.bare,
                       "SELECT Examenes.examen, RelSeguroPrecios.precio "
                       "FROM RelSeguroPrecios, Examenes, seguros "
                       "WHERE RelSeguroPrecios.cod_descripcionexamen = Examenes.cod_descripcionexamen "
                       "AND RelSeguroPrecios.cod_seguro = seguros.cod_seguro "
                       "AND RelSeguroPrecios.cod_seguro = ? "
                       "AND Examenes.cod_descripcionexamen = ? LIMIT 1",
                       {1, exam});
               }});

    bench.add({.name = QStringLiteral("invoice line, uninsured patient (factura3)"),
               .run = [exam] {
                   invoiceScreen().patient(0, QDate(1980, 5, 5));
                   return invoiceScreen().line(exam);
               },
               .floor = [c, exam] {
                   return priceFloor(c.bare,
                                     "SELECT examen, precio FROM Examenes "
                                     "WHERE Cod_descripcionexamen = ? LIMIT 1",
                                     {exam});
               }});

    // A patient of 70 on a screen of its own, its 20 lines keyed once: the
    // totals read the third-age switch and, when it is on, the factor.
    const std::vector<int> twenty = listedExams(c.bare, 20);
    bench.add({.name = QStringLiteral("invoice totals, 20 lines (factura3 generar)"),
               .run = [twenty] {
                   static InvoiceScreen* s = [&] {
                       auto* screen = new InvoiceScreen;
                       screen->patient(0, QDate::currentDate().addYears(-70));
                       screen->lines(twenty);
                       return screen;
                   }();
                   return s->total();
               },
               .floor = [c, twenty] {
                   Stmt price(c.bare, "SELECT precio FROM Examenes WHERE Cod_descripcionexamen = ?");
                   qint64 cents = 0;
                   for (const int exam : twenty) {
                       price.bind(1, exam);
                       while (price.next())
                           cents += qRound64(price.columnDouble(0) * 100);
                   }
                   Stmt sw(c.bare, "SELECT terceraedadauto FROM datos LIMIT 1");
                   bool thirdAge = false;
                   while (sw.next())
                       thirdAge = sw.columnInt(0) != 0;
                   if (thirdAge) {
                       Stmt dte(c.bare, "SELECT DTE FROM DTE LIMIT 1");
                       double factor = 0;
                       while (dte.next())
                           factor = dte.columnDouble(0);
                       cents -= qRound64(cents * factor);
                   }
                   return cents;
               },
               .note = QStringLiteral("the floor reads the 20 catalogue prices besides the "
                                      "switch and factor that the totals read")});

    // A whole save of a 5-line invoice charged to the insurer, with its
    // work-table feed, each save committed as the desk commits it.
    const std::vector<int> five = listedExams(c.bare, 5);
    const int patient = int(scalarBare(c.bare, "SELECT MIN(cod_paciente) FROM Pacientes WHERE Cod_seguro = 1"));
    auto writer = std::make_shared<Connection*>(nullptr);
    Target saveTarget = Target::withinFloor();
    saveTarget.ceilingMs = 50;
    bench.add({.name = QStringLiteral("invoice save, 5 lines to the insurer with the work table (factura3)"),
               .run = [five, patient] {
                   static qint64 next = kOursFrom;
                   tq::PricedDocument doc = benchDocument(next++, patient, five, 2);
                   doc.edad = QStringLiteral("40 Años 1 meses");
                   tq::saveInvoice(doc, tq::Settlement::Insurer, tq::Payment{}, true, nullptr);
                   return qint64(1 + five.size() + 2 + five.size() + 1);
               },
               .floor = [c, five, patient, writer] {
                   static qint64 next = kBareFrom;
                   if (!*writer)
                       *writer = openBare(c.store, false);
                   return saveFloor(*writer, next++, patient, five);
               },
               .target = saveTarget,
               .note = QStringLiteral("both sides commit every save to the disk; the saved invoices "
                                      "are taken away afterwards"),
               .after = [c, writer] {
                   if (!*writer)
                       *writer = openBare(c.store, false);
                   removeSaved(*writer);
                   closeBare(*writer);
                   *writer = nullptr;
               }});
}

}  // namespace bench
