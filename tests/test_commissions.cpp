// Doctors' commissions: the unpaid invoices of a doctor and their payment
// (Fpagocomisiones), and the commissions report of a period (FreporComision).
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "accounts/commissions/commissionpay.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
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
const QDate kPayDay(2026, 4, 10);

struct Lab {
    int soto = 0, cero = 0, lara = 0;
};

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

Lab fillLab()
{
    const QStringList doctorColumns{"Nombre_doctor", "Apellido_doctor", "porsentaje"};
    Lab lab;
    lab.soto = amb1().insert("Doctores", doctorColumns, {"Raúl", "Soto", 10}).toInt();
    lab.cero = amb1().insert("Doctores", doctorColumns, {"Inés", "Cerrato", 0}).toInt();
    lab.lara = amb1().insert("Doctores", doctorColumns, {"Luis", "Lara", 12.5}).toInt();
    const int patient = addPatient("Ana", "Paz");
    for (const Made& m : kInvoices) {
        const QVariant doctor = m.doctor == Soto ? QVariant(lab.soto)
                                : m.doctor == Cero ? QVariant(lab.cero)
                                                   : QVariant();
        amb1().insert("Factura",
                      {"factura", "fecha", "cod_paciente", "faturado", "sub_total", "total",
                       "Cod_doctor", "anulada", "credito", "pagada", "pagada_doc",
                       "fecha_pag_doc", "comision_pagada", "tipo_factura"},
                      {m.factura, kDay.addDays(m.days), patient, "caja", m.total, m.total, doctor,
                       m.voided, m.credit, !m.credit, m.commissionPaid,
                       m.commissionPaid ? QVariant(kDay) : QVariant(), m.commissionPaid ? 1.5 : 0,
                       "Contado"});
    }
    return lab;
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

// Chooses the doctor whose entry begins with his code, as a user picks it.
void chooseDoctor(QWidget* w, int code)
{
    auto* combo = control<QComboBox>(w, "Combo1");
    pickEntry(combo, combo->findData(code));
}

// Moves the listed invoices to the right list, a click and ">" each.
void moveInvoices(QWidget* w, const QStringList& numbers)
{
    for (const QString& n : numbers) {
        const int row = findRow(grid(w, "Grid1"), 0, n);
        QVERIFY2(row > 0, qPrintable(n));
        clickGridRow(grid(w, "Grid1"), row);
        QVERIFY(clickNamed(w, "Command1"));
    }
}

// The commission columns of every invoice: paid, date, amount.
QStringList commissionState()
{
    QStringList out;
    for (const Made& m : kInvoices)
        out << QString::number(m.factura) + ": "
                   + row("SELECT pagada_doc, fecha_pag_doc, comision_pagada FROM Factura "
                         "WHERE factura = ?",
                         {m.factura})
                         .join('|');
    return out;
}

bool paid(int factura)
{
    return value("SELECT pagada_doc FROM Factura WHERE factura = ?", {factura}).toBool();
}

}  // namespace

class TestCommissions : public QObject {
    Q_OBJECT

private slots:
    // The currency text the grids show reads back as the amount it shows,
    // whatever the workstation's locale writes as symbol, point and groups.
    void currencyReadsBack_data()
    {
        QTest::addColumn<QString>("locale");
        for (const char* name : {"C", "en_US", "es_HN", "de_DE", "fr_FR", "es_PE", "de_CH"})
            QTest::newRow(name) << QString(name);
    }
    void currencyReadsBack()
    {
        QFETCH(QString, locale);
        const QLocale l(locale);
        for (const double v : {0.0, 0.5, 8.05, 1234.5, 1234567.89}) {
            const QString shown = currencyText(v, l);
            QVERIFY2(qAbs(currencyValue(shown, l) - v) < 0.001, qPrintable(shown));
            if (!l.currencySymbol().isEmpty())
                QVERIFY2(shown.contains(l.currencySymbol()), qPrintable(shown));
        }
        QVERIFY(currencyText(0.5, l).contains(l.decimalPoint() + "50"));
        QCOMPARE(currencyValue(currencyText(-12.25, l), l), -12.25);
    }

    // A doctor's unpaid invoices, voided and credit ones among them, by date then number,
    // each commission at his rate of today; an invoice without doctor never shows.
    void listsADoctorsUnpaidInvoices_data()
    {
        QTest::addColumn<int>("doctor");
        QTest::addColumn<QString>("rate");
        QTest::addColumn<QStringList>("numbers");
        QTest::addColumn<QStringList>("dates");
        QTest::addColumn<QList<double>>("commissions");
        QTest::addColumn<QList<double>>("totals");   // of the totals, of the commissions
        QTest::newRow("rate 10") << int(Soto) << "10%" << QStringList{"2", "5", "7", "3"}
                                 << QStringList{"01/03/2026", "30/03/2026", "30/03/2026", "02/04/2026"}
                                 << QList<double>{4, 20, 15, 8.05} << QList<double>{470.5, 47.05};
        QTest::newRow("rate 0") << int(Cero) << "0%" << QStringList{"4"} << QStringList{"31/03/2026"}
                                << QList<double>{0} << QList<double>{60, 0};
        QTest::newRow("nothing to pay") << int(Lara) << "12.5%" << QStringList{} << QStringList{}
                                        << QList<double>{} << QList<double>{};
    }
    void listsADoctorsUnpaidInvoices()
    {
        QFETCH(int, doctor);
        QFETCH(QString, rate);
        QFETCH(QStringList, numbers);
        QFETCH(QStringList, dates);
        QFETCH(QList<double>, commissions);
        QFETCH(QList<double>, totals);
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        const int code = doctor == Soto ? lab.soto : doctor == Cero ? lab.cero : lab.lara;

        QPointer<QWidget> w = openScreen("Fpagocomisiones");
        QCOMPARE(control<QLabel>(w, "Label7")->text(), QString("0%"));
        chooseDoctor(w, code);
        QCOMPARE(control<QLabel>(w, "Label7")->text(), rate);
        QCOMPARE(column(grid(w, "Grid1"), 0), numbers);
        QCOMPARE(column(grid(w, "Grid1"), 1), dates);
        QCOMPARE(column(grid(w, "Grid1"), 3), amounts(commissions));
        if (numbers.isEmpty()) {
            QCOMPARE(sp.lastMessage(), QString("No hay facturas pendientes"));
            for (const char* box : {"Text1", "Text2", "txttotal"})
                QVERIFY2(text(w, box).isEmpty(), box);
        } else {
            QCOMPARE(sp.messages(), QStringList{});
            QCOMPARE(text(w, "Text1"), currencyText(totals[0]));
            QCOMPARE(text(w, "Text2"), currencyText(totals[1]));
        }
    }

    // Several invoices paid at once: only those chosen, with the date and the amount shown,
    // a voided one and one at rate 0 among them; paid, they leave the doctor's list.
    void payingSeveralAtOnce()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        QPointer<QWidget> w = openScreen("Fpagocomisiones");
        control<QDateEdit>(w, "DT1")->setDate(kPayDay);

        chooseDoctor(w, lab.soto);
        moveInvoices(w, {"5", "3"});
        QCOMPARE(text(w, "txttotal"), QString("2"));
        QCOMPARE(press(w, "Command3", sp, Answer::Yes),
                 (QStringList{"Confirma el pago de las facturas", "Las facturas se pagaron exitosamente"}));
        QCOMPARE(sp.prompts.first().buttons, Buttons::YesNo);
        QVERIFY(paid(5));
        QCOMPARE(storedDate(value("SELECT fecha_pag_doc FROM Factura WHERE factura = 5")), kPayDay);
        QCOMPARE(value("SELECT comision_pagada FROM Factura WHERE factura = 5").toDouble(), 20.0);
        QCOMPARE(value("SELECT comision_pagada FROM Factura WHERE factura = 3").toDouble(), 8.05);
        QVERIFY(!paid(2) && !paid(7));

        // The screen starts again; the doctor's list has lost what was paid.
        QCOMPARE(control<QLabel>(w, "Label7")->text(), QString("0%"));
        QCOMPARE(grid(w, "Grid1")->rows(), 1);
        QCOMPARE(grid(w, "Grid2")->rows(), 1);
        chooseDoctor(w, lab.soto);
        QCOMPARE(column(grid(w, "Grid1"), 0), (QStringList{"2", "7"}));

        chooseDoctor(w, lab.cero);
        moveInvoices(w, {"4"});
        QCOMPARE(press(w, "Command3", sp, Answer::Yes).last(), QString("Las facturas se pagaron exitosamente"));
        QVERIFY(paid(4));
        QCOMPARE(value("SELECT comision_pagada FROM Factura WHERE factura = 4").toDouble(), 0.0);

        // Nothing chosen: nothing is asked.
        QCOMPARE(press(w, "Command3", sp).size(), 1);
        QCOMPARE(sp.prompts.first().icon, Icon::Exclamation);
    }

    // A payment that does not go through writes nothing: No at the question, the store
    // failing halfway, or one of the invoices paid meanwhile at another station, which is
    // named and taken off both lists. The user then pays what is left.
    void aPaymentNotMadeWritesNothing_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QStringList>("left");   // the right list afterwards
        const QString question = "Confirma el pago de las facturas";
        QTest::newRow("No") << "No" << QStringList{question} << QStringList{"5", "7", "3"};
        QTest::newRow("store fails") << "fails"
                                     << QStringList{question, "No se pudieron pagar las comisiones."}
                                     << QStringList{"5", "7", "3"};
        QTest::newRow("paid elsewhere")
            << "elsewhere"
            << QStringList{question,
                           "No se pudieron pagar las comisiones.\n\nLa comisión de la factura 7 ya se "
                           "pagó en otra estación, por eso no se pagó ninguna de las facturas. Las "
                           "demás siguen en la lista: vuelva a pagarlas."}
            << QStringList{"5", "3"};
    }
    void aPaymentNotMadeWritesNothing()
    {
        QFETCH(QString, how);
        QFETCH(QStringList, messages);
        QFETCH(QStringList, left);
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        QPointer<QWidget> w = openScreen("Fpagocomisiones");
        chooseDoctor(w, lab.soto);
        moveInvoices(w, {"5", "7", "3"});

        if (how == "elsewhere")
            amb1().execute("UPDATE Factura SET pagada_doc = TRUE, fecha_pag_doc = ?, comision_pagada = 15 "
                           "WHERE factura = 7",
                           {kDay});
        const QStringList before = commissionState();
        std::optional<StoreFaults> faults;
        if (how == "fails") {
            faults.emplace();
            faults->failAfter(1);
        }
        QStringList seen = press(w, "Command3", sp, how == "No" ? Answer::No : Answer::Yes);
        if (faults)
            faults->heal();
        if (how == "fails")
            seen.last() = seen.last().section('\n', 0, 0);
        QCOMPARE(seen, messages);
        QCOMPARE(commissionState(), before);
        QCOMPARE(amb1().transactionDepth(), 0);
        QCOMPARE(column(grid(w, "Grid2"), 0), left);
        QCOMPARE(text(w, "txttotal"), QString::number(left.size()));
        if (how == "elsewhere")
            QCOMPARE(column(grid(w, "Grid1"), 0), (QStringList{"2", "5", "3"}));

        QCOMPARE(press(w, "Command3", sp, Answer::Yes).last(), QString("Las facturas se pagaron exitosamente"));
        for (const QString& n : left)
            QVERIFY2(paid(n.toInt()), qPrintable(n));
        QVERIFY(!paid(2));
    }

    // The report of a period: pending or paid, of one doctor or of all; voided invoices
    // and invoices without doctor never stand in it.
    void reportFilters_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<bool>("oneDoctor");
        QTest::addColumn<QString>("filter");   // %1 the doctor's code
        QTest::addColumn<QStringList>("invoices");
        const QString period = "fecha >= '30/03/2026' and fecha <= '02/04/2026'";
        QTest::newRow("pending, one doctor") << "Option1" << true
                                             << "pagada_doc = 0 and cod_doctor = %1 and " + period
                                             << QStringList{"5", "7"};
        QTest::newRow("pending, all") << "Option1" << false << "pagada_doc = 0 and  " + period
                                      << QStringList{"4", "5", "7"};
        QTest::newRow("paid, one doctor") << "Option2" << true
                                          << "pagada_doc = 1 and cod_doctor = %1 and " + period
                                          << QStringList{"12"};
        QTest::newRow("paid, all") << "Option2" << false << "pagada_doc = 1 and  " + period
                                   << QStringList{"12", "6"};
    }
    void reportFilters()
    {
        QFETCH(QString, option);
        QFETCH(bool, oneDoctor);
        QFETCH(QString, filter);
        QFETCH(QStringList, invoices);
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        QPointer<QWidget> w = openScreen("FreporComision");
        tick(control<QRadioButton>(w, option));
        if (oneDoctor)
            chooseDoctor(w, lab.soto);
        auto* dt1 = control<QDateEdit>(w, "DT1");
        auto* dt2 = control<QDateEdit>(w, "DT2");
        dt1->setDate(kDay.addDays(4));
        dt2->setDate(kDay.addDays(3));
        QCOMPARE(press(w, "Command1", sp),
                 QStringList{"La primera fecha no puede ser mayor que la segunda"});
        dt1->setDate(kDay);

        QVERIFY(clickNamed(w, "Command1"));
        const ReportRun& run = lastReportRun();
        QCOMPARE(run.report + " " + run.command + " " + QString::number(run.heading),
                 QString("ReporComision rscomision_Grouping 26"));
        QCOMPARE(run.filter, oneDoctor ? filter.arg(lab.soto) : filter);
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
};

QTEST_MAIN(TestCommissions)
#include "test_commissions.moc"
