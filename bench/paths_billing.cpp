// The invoice screen: opening it (number proposal and doctor list), a line
// accepted at the insurer's or the catalogue price, and the totals of a
// 20-line invoice.
#include "bare.h"
#include "bench.h"

#include "billing/invoice/factura3.h"
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

    qint64 open()
    {
        load();
        return findChild<QComboBox*>(QStringLiteral("Combo1"))->count()
               + findChild<QLabel*>(QStringLiteral("Txt_numfact"))->text().toLongLong();
    }

    void patient(std::int32_t insurer, const QDate& birth)
    {
        cancelar();
        setUpGrid(false);
        findChild<QLineEdit*>(QStringLiteral("clinom"))->setText(QStringLiteral("Paciente, Prueba"));
        m_codSeguro = insurer;
        m_fechaNacimiento = birth;
    }

    // One line keyed on a fresh grid; what it shows is the price read.
    qint64 line(int exam)
    {
        tq::FlexGrid* g = grid();
        g->setRows(2);
        g->setTextMatrix(1, 0, QStringLiteral("2"));
        g->setTextMatrix(1, 1, QString::number(exam));
        g->setTextMatrix(1, 2, QString());
        acceptLine(1);
        return qRound64(tq::Val(g->textMatrix(1, 3)) * 100);
    }

    void lines(const std::vector<int>& exams)
    {
        for (const int exam : exams) {
            tq::FlexGrid* g = grid();
            const int r = g->rows() - 1;
            g->setTextMatrix(r, 0, QStringLiteral("1"));
            g->setTextMatrix(r, 1, QString::number(exam));
            acceptLine(r);
        }
    }

    qint64 total()
    {
        generar();
        return qRound64(tq::Val(findChild<QLineEdit*>(QStringLiteral("totfact"))->text()) * 100);
    }
};

InvoiceScreen& invoiceScreen()
{
    static InvoiceScreen* screen = new InvoiceScreen;
    return *screen;
}

// The lowest priced exams of insurer 1's list.
std::vector<int> listedExams(sqlite3* db, int count)
{
    Stmt s(db, "SELECT Cod_descripcionexamen FROM RelSeguroPrecios WHERE cod_seguro = 1 "
               "ORDER BY Cod_descripcionexamen LIMIT ?");
    s.bind(1, count);
    std::vector<int> out;
    while (s.next())
        out.push_back(s.columnInt(0));
    return out;
}

// The price of one exam at two units, in cents, read bare.
qint64 priceFloor(sqlite3* db, const char* sql, const std::vector<int>& binds)
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
}

}  // namespace bench
