// Credit instalments (Mabonos) and the insurers' receivables listing (Fcxc):
// the pending list, payments until an invoice is paid off, the refusals, two
// stations paying one invoice, the print-outs and the listing's filters.
#include "billing_fixture.h"
#include "testsupport.h"

#include "accounts/credit/instalments.h"
#include "billing/invoice/invoicesave.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/flexgrid.h"

#include <QApplication>
#include <QDateEdit>
#include <QLabel>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

const QDate kDay(2026, 3, 10);

// An invoice of one exam at `total`, saved as the desk saves it: on credit
// with `paidNow` paid, or charged to the insurer (with its receivable).
int saveCredit(int patient, double total, double paidNow, Settlement how = Settlement::Credit,
               const QDate& day = kDay)
{
    int exam = value("SELECT MAX(cod_descripcionexamen) FROM Examenes").toInt();
    if (!exam)
        exam = addExam(addExamType("Química"), "Glucosa", 10);
    PricedDocument doc;
    doc.numero = 1;   // the next free number is taken
    doc.fecha = day;
    doc.faturado = "caja";
    doc.codPaciente = patient;
    doc.subtotal = doc.total = money(total);
    doc.lines << PricedLine{1, exam, money(total), money(total)};
    Payment paid;
    paid.efectivo = paid.pagado = paidNow;
    return saveInvoice(doc, how, paid, how == Settlement::Insurer, nullptr).numero;
}

FlexGrid* grid(QWidget* w, const char* name) { return control<FlexGrid>(w, name); }
QString text(QWidget* w, const char* name) { return edit(w, name)->text(); }
QString label(QWidget* w, const char* name) { return control<QLabel>(w, name)->text(); }

// The invoice's abono, pagada and credito, and its instalments as "numero:abono".
QString invoiceState(int factura)
{
    QStringList parts = row("SELECT Abono, pagada, credito FROM Factura WHERE factura = ?", {factura});
    parts[0] = money(Val(parts[0]));
    Recordset rs;
    rs.open("SELECT numero, abono FROM creditos WHERE factura = ? ORDER BY numero", {factura});
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        parts << rs.text("numero") + ":" + money(rs.field("abono"));
    for (QString& p : parts)
        p = p == "1" ? "true" : p == "0" ? "false" : p.toLower();
    return parts.join(' ');
}

// Chooses the invoice's row in the pending list.
void choose(QWidget* w, int factura)
{
    FlexGrid* g = grid(w, "Grid1");
    const int r = findRow(g, 0, QString::number(factura));
    QVERIFY2(r > 0, qPrintable(QString("factura %1 no está en la lista").arg(factura)));
    clickGridRow(g, r);
}

// Types the amount and presses "Abonar"; the messages shown.
QStringList pay(QWidget* w, ScriptedPrompts& sp, const QString& amount)
{
    retype(edit(w, "Text4"), amount);
    return press(w, "Command3", sp);
}

// The invoice numbers the report's recordset holds, below its insurers.
QStringList invoicesIn(const QString& command)
{
    Recordset& rs = amb1().rs(command);
    QStringList out;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        Recordset rows = rs.child("rcuentasdetalle");
        for (rows.moveFirst(); !rows.eof(); rows.moveNext())
            out << rows.text("factura");
    }
    out.sort();
    return out;
}

QString lastRun()
{
    const ReportRun& r = lastReportRun();
    const char* how = r.show == ReportRun::Show::Printer ? "impresora" : "pantalla";
    return QString("%1 %2 «%3» %4 %5").arg(r.report, r.command, r.filter).arg(r.heading).arg(how);
}

}  // namespace

class TestCredit : public QObject {
    Q_OBJECT

private slots:
    // Every credit invoice not paid off stands, voided and insured ones too,
    // by the patient's name and then by number; paid and cash ones do not.
    // The voided and the insured invoice take payments like any other, and
    // the insurer's receivable is left as it was.
    void pendingListAndVoidedOrInsured()
    {
        TempStore store;
        ScriptedPrompts sp;
        addInsurer(3, "Palic");
        const int beto = addPatient("Beto", "Lanza"), ana = addPatient("Ana", "López", 3);
        const int b1 = saveCredit(beto, 100, 40);
        const int insured = saveCredit(ana, 80, 0, Settlement::Insurer);
        const int voided = saveCredit(ana, 50.5, 10);
        saveCredit(ana, 30, 30, Settlement::Paid);
        const int paidOff = saveCredit(beto, 20, 5);
        amb1().execute("UPDATE Factura SET anulada = TRUE WHERE factura = ?", {voided});
        amb1().execute("UPDATE Factura SET pagada = TRUE WHERE factura = ?", {paidOff});

        QPointer<QWidget> w = openScreen("Mabonos");
        FlexGrid* g = grid(w, "Grid1");
        QStringList rows;
        for (int r = 1; r < g->rows(); ++r)
            rows << QStringList{g->textMatrix(r, 0), g->textMatrix(r, 1), g->textMatrix(r, 2),
                                g->textMatrix(r, 3)}.join('|');
        const QString day = dateLong(kDay);
        QCOMPARE(rows, (QStringList{QString("%1|Ana López|%2|80.00").arg(insured).arg(day),
                                    QString("%1|Ana López|%2|50.50").arg(voided).arg(day),
                                    QString("%1|Beto Lanza|%2|100.00").arg(b1).arg(day)}));
        QVERIFY(!control<QWidget>(w, "Command4")->isEnabled());

        for (const auto& [factura, amount, state] :
             {std::tuple{voided, "40.50", "50.50 true true 1:10.00 2:40.50"},
              {insured, "80", "80.00 true true 1:.00 2:80.00"}}) {
            choose(w, factura);
            QCOMPARE(pay(w, sp, amount).size(), 2);
            QCOMPARE(invoiceState(factura), QString(state));
        }
        QCOMPARE(column(g, 0), QStringList{QString::number(b1)});
        QVERIFY(!value("SELECT estado FROM cxc WHERE factura = ?", {insured}).toBool());
        delete w;
    }

    // An invoice paid off in two payments at the desk: each payment numbered
    // after the last with the date given (earlier than the invoice's, which
    // nothing forbids), the sums shown again after the first, and the last,
    // of exactly the balance, closing the invoice and taking it off the list.
    void paidOffInTwoPayments()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int n = saveCredit(addPatient("Beto", "Lanza"), 100, 40);
        const int other = saveCredit(addPatient("Ana", "López"), 70, 0);
        QPointer<QWidget> w = openScreen("Mabonos");
        choose(w, n);
        QCOMPARE((QStringList{text(w, "Text1"), text(w, "Text2"), text(w, "Text3"), label(w, "Label7"),
                              label(w, "Label10"), label(w, "Label11")}),
                 (QStringList{"100.00", "40.00", "60.00", "1", QString::number(n), "Beto Lanza"}));
        QVERIFY(control<QWidget>(w, "Command4")->isEnabled());

        control<QDateEdit>(w, "DT1")->setDate(kDay.addDays(-3));
        QCOMPARE(pay(w, sp, "25"), QStringList{"el pago de abono se efectuo con exito"});
        QCOMPARE((QStringList{text(w, "Text2"), text(w, "Text3"), label(w, "Label7"), text(w, "Text4")}),
                 (QStringList{"65.00", "35.00", "2", ""}));
        QCOMPARE(column(grid(w, "Grid2"), 0), (QStringList{dateLong(kDay), dateLong(kDay.addDays(-3))}));
        QCOMPARE(column(grid(w, "Grid2"), 2), (QStringList{"1", "2"}));
        QCOMPARE(invoiceState(n), QString("65.00 false true 1:40.00 2:25.00"));

        QCOMPARE(pay(w, sp, "35"), (QStringList{"el pago de abono se efectuo con exito",
                                                "la factura se cancelo completamente"}));
        QCOMPARE(invoiceState(n), QString("100.00 true true 1:40.00 2:25.00 3:35.00"));
        QCOMPARE(column(grid(w, "Grid1"), 0), QStringList{QString::number(other)});
        QVERIFY(!control<QWidget>(w, "Command4")->isEnabled());

        // "Cancelar" forgets the invoice; "Abonar" then asks for one.
        QVERIFY(press(w, "Command2", sp).isEmpty());
        QCOMPARE(text(w, "Text3"), QString());
        QCOMPARE(grid(w, "Grid2")->rows(), 1);
        QCOMPARE(pay(w, sp, "5"), QStringList{"Elija primero en la lista de facturas pendientes la "
                                              "factura a la que se abona."});
        delete w;
    }

    // Each refusal of "Abonar" says why, puts the focus back on the amount
    // and writes nothing; the balance itself may be paid.
    void refusals()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int n = saveCredit(addPatient("Beto", "Lanza"), 100, 40);
        QPointer<QWidget> w = openScreen("Mabonos");
        choose(w, n);
        const QString refused = tq::test::refusals(
            w, sp, "Command3",
            {{"debe igresar la cantidad a abonar", "Text4", "0"},
             {"debe igresar la cantidad a abonar", "Text4", "60.01"},
             {"la cuota no puede ser mayor que el saldo", "Text4", "12.345"},
             {"El abono no puede tener más de dos decimales.", "Text4", "99999999999"},
             {"El abono es demasiado grande: no puede pasar de 9999999999.99.", "Text4", "60"}},
            "creditos", Icon::Exclamation);
        QVERIFY2(refused.isEmpty(), qPrintable(refused));
        QCOMPARE(invoiceState(n), QString("40.00 false true 1:40.00"));
        QCOMPARE(press(w, "Command3", sp).size(), 2);
        QCOMPARE(invoiceState(n), QString("100.00 true true 1:40.00 2:60.00"));
        delete w;
    }

    // Two stations read the same balance and save one after the other: the
    // second save reads the balance and the count again under the write lock,
    // numbers after the first, and is refused, writing nothing, when the two
    // together would pass the balance.
    void racingSaves_data()
    {
        QTest::addColumn<double>("first");
        QTest::addColumn<double>("second");
        QTest::addColumn<QString>("outcome");
        const QString refused = "la cuota no puede ser mayor que el saldo | ";
        QTest::newRow("both the whole balance") << 60.0 << 60.0 << refused + "100.00 true true 1:40.00 2:60.00";
        QTest::newRow("together past it") << 40.0 << 40.0 << refused + "80.00 false true 1:40.00 2:40.00";
        QTest::newRow("together within it")
            << 20.0 << 40.0 << QString("cuota 3 cierra | 100.00 true true 1:40.00 2:20.00 3:40.00");
    }
    void racingSaves()
    {
        QFETCH(double, first);
        QFETCH(double, second);
        TempStore store;
        const int n = saveCredit(addPatient("Beto", "Lanza"), 100, 40);
        const long long seen = creditStanding(n).balance();   // by both stations, before either saves
        QVERIFY(centsOf(first) <= seen && centsOf(second) <= seen);
        saveInstalment(n, kDay, first);
        QString outcome;
        try {
            const InstalmentSaved s = saveInstalment(n, kDay, second);
            outcome = QString("cuota %1%2").arg(s.numero).arg(s.closed ? " cierra" : "");
        } catch (const InstalmentTooLarge& e) {
            outcome = e.message();
        }
        QTEST(outcome + " | " + invoiceState(n), "outcome");
        QCOMPARE(amb1().transactionDepth(), 0);
    }

    // "Imprimir": the ticket on the printer, naming the extra; a voided
    // invoice is shown instead, in its voided copy beside the voiding box,
    // both within reach while the screen stays open.
    void printing()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int ana = addPatient("Ana", "López");
        const int n = saveCredit(ana, 100, 40);
        const int voided = saveCredit(ana, 50, 10);
        amb1().execute("UPDATE Factura SET anulada = TRUE WHERE factura = ?", {voided});
        QPointer<QWidget> w = openScreen("Mabonos");

        choose(w, n);
        QVERIFY(press(w, "Command4", sp).isEmpty());
        QCOMPARE(lastRun(), QString("DataReport20 rsrfact1 «factura =%1» 20 impresora").arg(n));
        QCOMPARE(lastReportRun().captions.value("Etiqueta3"), QString("Otros"));

        choose(w, voided);
        QVERIFY(press(w, "Command4", sp).isEmpty());
        QCOMPARE(lastRun(), QString("DataReport15 rsrfact1 «factura=%1» 15 pantalla").arg(voided));
        QWidget* box = visibleWindow("Form31");
        QVERIFY(box && visibleWindow("DataReport15"));
        QCOMPARE(box->parentWidget(), w.data());
        delete w;
        QVERIFY(!visibleWindow("Form31"));
    }

    // Fcxc: by insurer (none chosen asks for the general report: No shows
    // nothing, Yes every insurer's) or by the invoices' dates (refused
    // reversed, with the screen left open). Voided and settled invoices never
    // stand.
    void receivablesListing()
    {
        TempStore store;
        ScriptedPrompts sp;
        addInsurer(3, "Palic");
        addInsurer(5, "3M Salud");
        const int ana = addPatient("Ana", "López", 3), beto = addPatient("Beto", "Lanza", 5);
        const QString i1 = QString::number(saveCredit(ana, 10, 0, Settlement::Insurer, kDay.addDays(-1)));
        const QString i2 = QString::number(saveCredit(beto, 20, 0, Settlement::Insurer, kDay));
        const QString i3 = QString::number(saveCredit(ana, 30, 0, Settlement::Insurer, kDay.addDays(5)));
        const int settled = saveCredit(beto, 40, 0, Settlement::Insurer, kDay);
        const int voided = saveCredit(ana, 50, 0, Settlement::Insurer, kDay);
        amb1().execute("UPDATE cxc SET estado = TRUE WHERE factura = ?", {settled});
        amb1().execute("UPDATE Factura SET anulada = TRUE WHERE factura = ?", {voided});

        const QString before = "antes rsrcuentas «Cod_Seguro =3» 0 pantalla";
        const QString ask = "No ha seleccionado empresa, desea ver el reporte en general?";
        const QString prompt = ">>>Seleccione una<<<", report = "DataReport17 %1 «%2» 17 pantalla";
        const struct {
            QString insurer;   // the combo's entry; empty: by dates
            QDate from, to;
            std::optional<Answer> answer;
            QString message, run;   // no run: the run before stays
            QStringList invoices;
        } cases[] = {
            {prompt, {}, {}, Answer::No, ask, {}, {}},
            {prompt, {}, {}, Answer::Yes, ask, report.arg("rsrcuentas", ""), {i1, i2, i3}},
            {"5 3M Salud", {}, {}, {}, {}, report.arg("rsrcuentas", "Cod_Seguro =5"), {i2}},
            {{}, kDay.addDays(-1), kDay, {}, {}, report.arg("rsmultiusos", ""), {i1, i2}},
            {{}, kDay, kDay.addDays(-1), {}, "Laprimera fecha no puede ser mayor que la segunda", {}, {}},
        };
        for (const auto& c : cases) {
            runReport(ReportRun{.report = "antes", .command = "rsrcuentas", .filter = "Cod_Seguro =3"});
            QPointer<QWidget> w = openScreen("Fcxc");
            if (!c.insurer.isEmpty()) {
                pickEntry(control<QComboBox>(w, "Combo1"), c.insurer);
            } else {
                tick(control<QRadioButton>(w, "Option2"));
                control<QDateEdit>(w, "DT1")->setDate(c.from);
                control<QDateEdit>(w, "DT2")->setDate(c.to);
            }
            QCOMPARE(press(w, "Command2", sp, c.answer).join(""), c.message);
            if (c.run.isEmpty()) {
                QVERIFY2(lastRun() == before && w && w->isVisible(), qPrintable(c.message));
                if (c.insurer.isEmpty())   // the last report's filter is gone all the same
                    QCOMPARE(amb1().rs("rsrcuentas").filter(), QString());
                delete w;
                continue;
            }
            QCOMPARE(lastRun(), c.run);
            QCOMPARE(invoicesIn(lastReportRun().command), c.invoices);
            QVERIFY2(!w || !w->isVisible(), qPrintable(c.run));
            for (QWidget* top : QApplication::topLevelWidgets())
                top->close();
        }
    }
};

QTEST_MAIN(TestCredit)
#include "test_credit.moc"
