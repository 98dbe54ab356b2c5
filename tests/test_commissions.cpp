// Doctors' commissions: the unpaid invoices of a doctor and their payment
// (Fpagocomisiones), and the commissions report of a period (FreporComision).
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "accounts/commissions/commissionpay.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"

#include <QDateEdit>
#include <QLabel>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

// The dates cross a month, so that text order is not date order.
const QDate kDay(2026, 3, 30);

enum Doctor { None, Soto, Cero, Lara };

struct Made {
    int factura, days;
    double total;
    Doctor doctor;
    bool voided = false, credit = false, commissionPaid = false;
};

// Soto (10%): 2 before the report's period, 5 on credit and unpaid, 3 voided, 12 already
// paid. Cero (0%): 4, and 6 already paid. Lara (12.5%) referred nobody; 9 has no doctor.
const QList<Made> kInvoices = {
    {7, 0, 150.00, Soto}, {3, 3, 80.50, Soto, true}, {5, 0, 200.00, Soto, false, true},
    {12, 2, 99.99, Soto, false, false, true}, {2, -29, 40.00, Soto}, {9, 1, 300.00, None},
    {4, 1, 60.00, Cero}, {6, 2, 45.00, Cero, false, false, true}};

// The store above; returns the doctors' codes, indexed by Doctor.
QList<int> fillLab()
{
    QList<int> code{0};
    for (const QVariantList& d :
         {QVariantList{"Raúl", "Soto", 10}, {"Inés", "Cerrato", 0}, {"Luis", "Lara", 12.5}})
        code << amb1().insert("Doctores", {"Nombre_doctor", "Apellido_doctor", "porsentaje"}, d).toInt();
    const int patient = addPatient("Ana", "Paz");
    for (const Made& m : kInvoices)
        amb1().insert("Factura",
                      {"factura", "fecha", "cod_paciente", "faturado", "sub_total", "total",
                       "Cod_doctor", "anulada", "credito", "pagada", "pagada_doc",
                       "fecha_pag_doc", "comision_pagada", "tipo_factura"},
                      {m.factura, kDay.addDays(m.days), patient, "caja", m.total, m.total,
                       m.doctor == None ? QVariant() : QVariant(code[m.doctor]), m.voided, m.credit,
                       !m.credit, m.commissionPaid, m.commissionPaid ? QVariant(kDay) : QVariant(),
                       m.commissionPaid ? 1.5 : 0, "Contado"});
    return code;
}

FlexGrid* grid(QWidget* w, const char* name) { return control<FlexGrid>(w, name); }
QString text(QWidget* w, const char* name) { return control<QLineEdit>(w, name)->text(); }

QStringList amounts(const QList<double>& values)
{
    QStringList out;
    for (const double v : values)
        out << currencyText(v);
    return out;
}

void chooseDoctor(QWidget* w, int code)
{
    auto* combo = control<QComboBox>(w, "Combo1");
    pickEntry(combo, combo->findData(code));
}

// Moves the listed invoices to the right list, a click and ">" each.
void moveInvoices(QWidget* w, const QStringList& numbers)
{
    for (const QString& n : numbers) {
        clickGridRow(grid(w, "Grid1"), findRow(grid(w, "Grid1"), 0, n));
        QVERIFY2(clickNamed(w, "Command1"), qPrintable(n));
    }
}

// The invoices whose commission is paid, in the order above.
QStringList paidInvoices()
{
    QStringList out;
    for (const Made& m : kInvoices)
        if (value("SELECT pagada_doc FROM Factura WHERE factura = ?", {m.factura}).toBool())
            out << QString::number(m.factura);
    return out;
}

}  // namespace

class TestCommissions : public QObject {
    Q_OBJECT

private slots:
    // A payment stores the commission read back from the grid's text, so that text must
    // read as the amount it shows whatever the locale writes as symbol, point and groups.
    void currencyReadsBack()
    {
        for (const char* name : {"C", "en_US", "es_HN", "de_DE", "fr_FR", "es_PE", "de_CH"}) {
            const QLocale l(name);
            for (const double v : {0.0, 0.5, 8.05, 1234567.89, -12.25}) {
                const QString shown = currencyText(v, l);
                QVERIFY2(qAbs(currencyValue(shown, l) - v) < 0.001, qPrintable(name + (": " + shown)));
            }
        }
    }

    // A doctor's unpaid invoices, voided and credit ones among them, by date then number,
    // each commission at his rate of today; an invoice without doctor never shows. The
    // doctor chosen before leaves nothing behind.
    void listsADoctorsUnpaidInvoices()
    {
        // totals: the sum of the totals, of the commissions
        struct Case { Doctor doctor; QString rate; QStringList numbers; QList<double> commissions, totals; };
        const QList<Case> cases{{Soto, "10%", {"2", "5", "7", "3"}, {4, 20, 15, 8.05}, {470.5, 47.05}},
                                {Cero, "0%", {"4"}, {0}, {60, 0}},
                                {Lara, "12.5%", {}, {}, {}}};
        TempStore store;
        ScriptedPrompts sp;
        const QList<int> code = fillLab();
        QPointer<QWidget> w = openScreen("Fpagocomisiones");
        for (const Case& c : cases) {
            chooseDoctor(w, code[c.doctor]);
            QCOMPARE(control<QLabel>(w, "Label7")->text(), c.rate);
            QCOMPARE(column(grid(w, "Grid1"), 0), c.numbers);
            QCOMPARE(column(grid(w, "Grid1"), 3), amounts(c.commissions));
            QCOMPARE((QStringList{text(w, "Text1"), text(w, "Text2")}),
                     (c.totals.isEmpty() ? QStringList{"", ""} : amounts(c.totals)));
        }
        QCOMPARE(sp.messages(), QStringList{"No hay facturas pendientes"});
    }

    // Several invoices paid at once, after the question: only those chosen, on the date
    // chosen, at the amount shown, a voided one and one at rate 0 among them. Paid, they
    // leave the doctor's list. With nothing chosen nothing is asked.
    void payingSeveralAtOnce()
    {
        TempStore store;
        ScriptedPrompts sp;
        const QList<int> code = fillLab();
        const QDate payDay(2026, 4, 10);
        QPointer<QWidget> w = openScreen("Fpagocomisiones");
        control<QDateEdit>(w, "DT1")->setDate(payDay);
        QCOMPARE(press(w, "Command3", sp).size(), 1);
        QCOMPARE(sp.prompts.first().icon, Icon::Exclamation);

        chooseDoctor(w, code[Soto]);
        moveInvoices(w, {"5", "3"});
        QCOMPARE(press(w, "Command3", sp, Answer::Yes),
                 (QStringList{"Confirma el pago de las facturas", "Las facturas se pagaron exitosamente"}));
        QCOMPARE(sp.prompts.first().buttons, Buttons::YesNo);
        chooseDoctor(w, code[Soto]);
        QCOMPARE(column(grid(w, "Grid1"), 0), (QStringList{"2", "7"}));
        chooseDoctor(w, code[Cero]);
        moveInvoices(w, {"4"});
        QCOMPARE(press(w, "Command3", sp, Answer::Yes).size(), 2);

        for (const auto& [factura, amount] : QList<QPair<int, double>>{{5, 20}, {3, 8.05}, {4, 0}}) {
            QCOMPARE(storedDate(value("SELECT fecha_pag_doc FROM Factura WHERE factura = ?", {factura})), payDay);
            QCOMPARE(value("SELECT comision_pagada FROM Factura WHERE factura = ?", {factura}).toDouble(), amount);
        }
        QCOMPARE(paidInvoices(), (QStringList{"3", "5", "12", "4", "6"}));
    }

    // A payment that does not go through writes nothing: No at the question, the store
    // failing halfway, or one of the invoices paid meanwhile at another station, which is
    // named and taken off both lists. The user then pays what is left.
    void aPaymentNotMadeWritesNothing()
    {
        const QString question = "Confirma el pago de las facturas";
        const QString failed = "No se pudieron pagar las comisiones.";
        struct Case { QString how; QStringList messages, left; };   // left: the right list afterwards
        for (const Case& c : QList<Case>{
                 {"No", {question}, {"5", "7", "3"}},
                 {"fails", {question, failed}, {"5", "7", "3"}},
                 {"elsewhere",
                  {question, failed + "\n\nLa comisión de la factura 7 ya se pagó en otra estación, por eso "
                                      "no se pagó ninguna de las facturas. Las demás siguen en la lista: "
                                      "vuelva a pagarlas."},
                  {"5", "3"}}}) {
            TempStore store;
            ScriptedPrompts sp;
            const QList<int> code = fillLab();
            QPointer<QWidget> w = openScreen("Fpagocomisiones");
            chooseDoctor(w, code[Soto]);
            moveInvoices(w, {"5", "7", "3"});
            if (c.how == "elsewhere")
                amb1().execute("UPDATE Factura SET pagada_doc = TRUE, fecha_pag_doc = ?, comision_pagada = 15 "
                               "WHERE factura = 7", {kDay});
            const QStringList before = paidInvoices();
            StoreFaults faults;
            if (c.how == "fails")
                faults.failAfter(1);
            QStringList seen = press(w, "Command3", sp, c.how == "No" ? Answer::No : Answer::Yes);
            faults.heal();
            if (c.how == "fails")
                seen.last() = seen.last().section('\n', 0, 0);
            QCOMPARE(seen, c.messages);
            QCOMPARE(paidInvoices(), before);
            QCOMPARE(amb1().transactionDepth(), 0);
            QCOMPARE(column(grid(w, "Grid2"), 0), c.left);
            if (c.how == "elsewhere")
                QCOMPARE(column(grid(w, "Grid1"), 0), (QStringList{"2", "5", "3"}));

            QCOMPARE(press(w, "Command3", sp, Answer::Yes).size(), 2);   // the question, then done
            QCOMPARE(paidInvoices(), (QStringList{"7", "3", "5", "12", "6"}));
            delete w;
        }
    }

    // The report of a period: pending or paid, of one doctor or of all (the blank entry);
    // voided invoices, invoices without doctor and those outside the period never stand in it.
    void reportFilters()
    {
        TempStore store;
        ScriptedPrompts sp;
        const QList<int> code = fillLab();
        QPointer<QWidget> w = openScreen("FreporComision");
        auto* combo = control<QComboBox>(w, "Combo1");
        control<QDateEdit>(w, "DT1")->setDate(kDay);
        control<QDateEdit>(w, "DT2")->setDate(kDay.addDays(3));

        for (const auto& [option, oneDoctor, invoices] : QList<std::tuple<QString, bool, QStringList>>{
                 {"Option1", true, {"5", "7"}}, {"Option1", false, {"4", "5", "7"}},
                 {"Option2", true, {"12"}}, {"Option2", false, {"12", "6"}}}) {
            tick(control<QRadioButton>(w, option));
            pickEntry(combo, oneDoctor ? combo->findData(code[Soto]) : 0);
            QVERIFY(clickNamed(w, "Command1"));
            QStringList seen;
            Recordset& rs = amb1().rs("rscomision_Grouping");
            for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
                Recordset rows = rs.child("comision");
                for (rows.moveFirst(); !rows.eof(); rows.moveNext())
                    seen << rows.text("factura");
            }
            seen.sort();
            QCOMPARE(seen, invoices);
        }
    }
};

QTEST_MAIN(TestCommissions)
#include "test_commissions.moc"
