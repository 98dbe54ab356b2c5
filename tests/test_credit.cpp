// Credit instalments (Mabonos) and the insurers' receivables listing (Fcxc).
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
    const int exam = addExam(addExamType("Química"), "Glucosa", 10);
    // Number 1 takes the next free number.
    const PricedDocument doc{.numero = 1, .fecha = day, .faturado = "caja", .codPaciente = patient,
                             .subtotal = money(total), .total = money(total),
                             .lines = {PricedLine{1, exam, money(total), money(total)}}};
    const Payment paid{.efectivo = paidNow, .pagado = paidNow};
    return saveInvoice(doc, how, paid, how == Settlement::Insurer, nullptr).numero;
}

// What the named boxes and labels show.
QStringList shown(QWidget* w, const QStringList& names)
{
    QStringList out;
    for (const QString& n : names)
        out << (edit(w, n) ? edit(w, n)->text() : control<QLabel>(w, n)->text());
    return out;
}

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

void choose(QWidget* w, int factura)
{
    auto* g = control<FlexGrid>(w, "Grid1");
    clickGridRow(g, findRow(g, 0, QString::number(factura)));
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
    // Every credit invoice not paid off stands, voided and insured ones too, by
    // name then number, and takes payments (the insurer's receivable stays open).
    // Refusals write nothing; each payment is numbered after the last, dated as
    // given (earlier than the invoice is allowed); one of exactly the balance
    // closes the invoice and takes it off the list. "Imprimir" prints the ticket,
    // or shows a voided invoice's copy with the voiding box, gone with the screen.
    void instalments()
    {
        TempStore store;
        ScriptedPrompts sp;
        addInsurer(3, "Palic");
        const int beto = addPatient("Beto", "Lanza"), ana = addPatient("Ana", "López", 3);
        const int n = saveCredit(beto, 100, 40);
        const int insured = saveCredit(ana, 80, 0, Settlement::Insurer);
        const int voided = saveCredit(ana, 50.5, 10);
        saveCredit(ana, 30, 30, Settlement::Paid);
        const int paidOff = saveCredit(beto, 20, 5);
        amb1().execute("UPDATE Factura SET anulada = TRUE WHERE factura = ?", {voided});
        amb1().execute("UPDATE Factura SET pagada = TRUE WHERE factura = ?", {paidOff});

        QPointer<QWidget> w = openScreen("Mabonos");
        FlexGrid* g = control<FlexGrid>(w, "Grid1");
        const QString i = QString::number(insured), v = QString::number(voided);
        QCOMPARE(column(g, 0), (QStringList{i, v, QString::number(n)}));
        QCOMPARE((QStringList{g->textMatrix(2, 1), g->textMatrix(2, 2), g->textMatrix(2, 3)}),
                 (QStringList{"Ana López", dateLong(kDay), "50.50"}));

        choose(w, n);
        QVERIFY(press(w, "Command4", sp).isEmpty());
        QCOMPARE(lastRun(), QString("DataReport20 rsrfact1 «factura =%1» 20 impresora").arg(n));
        QCOMPARE(shown(w, {"Text1", "Text2", "Text3", "Label7", "Label10", "Label11"}),
                 (QStringList{"100.00", "40.00", "60.00", "1", QString::number(n), "Beto Lanza"}));
        const QString refused = tq::test::refusals(
            w, sp, "Command3",
            {{"debe igresar la cantidad a abonar", "Text4", "0"},
             {"debe igresar la cantidad a abonar", "Text4", "60.01"},
             {"la cuota no puede ser mayor que el saldo", "Text4", "12.345"},
             {"El abono no puede tener más de dos decimales.", "Text4", "99999999999"},
             {"El abono es demasiado grande: no puede pasar de 9999999999.99.", "Text4", "25"}},
            "creditos", Icon::Exclamation);
        QVERIFY2(refused.isEmpty(), qPrintable(refused));
        control<QDateEdit>(w, "DT1")->setDate(kDay.addDays(-3));
        QCOMPARE(press(w, "Command3", sp), QStringList{"el pago de abono se efectuo con exito"});
        QCOMPARE(shown(w, {"Text2", "Text3", "Label7", "Text4"}), (QStringList{"65.00", "35.00", "2", ""}));
        QCOMPARE(column(control<FlexGrid>(w, "Grid2"), 0),
                 (QStringList{dateLong(kDay), dateLong(kDay.addDays(-3))}));
        QCOMPARE(invoiceState(n), QString("65.00 false true 1:40.00 2:25.00"));
        QCOMPARE(pay(w, sp, "35"), (QStringList{"el pago de abono se efectuo con exito",
                                                "la factura se cancelo completamente"}));
        QCOMPARE(invoiceState(n), QString("100.00 true true 1:40.00 2:25.00 3:35.00"));
        QCOMPARE(column(g, 0), (QStringList{i, v}));

        choose(w, voided);
        QVERIFY(press(w, "Command4", sp).isEmpty());
        QCOMPARE(lastRun(), QString("DataReport15 rsrfact1 «factura=%1» 15 pantalla").arg(voided));
        QWidget* box = visibleWindow("Form31");
        QVERIFY(visibleWindow("DataReport15") && box && box->parentWidget() == w.data());
        // "Cancelar" forgets the invoice chosen; "Abonar" then asks for one.
        QVERIFY(press(w, "Command2", sp).isEmpty());
        QCOMPARE(pay(w, sp, "5"), QStringList{"Elija primero en la lista de facturas pendientes la "
                                              "factura a la que se abona."});
        for (const auto& [factura, amount, state] :
             {std::tuple{voided, "40.50", "50.50 true true 1:10.00 2:40.50"},
              {insured, "80", "80.00 true true 1:.00 2:80.00"}}) {
            choose(w, factura);
            QCOMPARE(pay(w, sp, amount).size(), 2);
            QCOMPARE(invoiceState(factura), QString(state));
        }
        QVERIFY(!value("SELECT estado FROM cxc WHERE factura = ?", {insured}).toBool());
        delete w;
        QVERIFY(!visibleWindow("Form31"));
    }

    // Two stations, each within the balance it read, save one after the other:
    // the second reads balance and count again under the write lock, and is
    // refused, writing nothing, when the two together pass the balance.
    void racingSaves()
    {
        TempStore store;
        const QString refused = "la cuota no puede ser mayor que el saldo | ";
        for (const auto& [first, second, expected] :
             {std::tuple{60.0, 60.0, refused + "100.00 true true 1:40.00 2:60.00"},
              {40.0, 40.0, refused + "80.00 false true 1:40.00 2:40.00"},
              {20.0, 40.0, QString("cuota 3 cierra | 100.00 true true 1:40.00 2:20.00 3:40.00")}}) {
            const int n = saveCredit(addPatient("Beto", "Lanza"), 100, 40);
            saveInstalment(n, kDay, first);
            QString outcome;
            try {
                const InstalmentSaved s = saveInstalment(n, kDay, second);
                outcome = QString("cuota %1%2").arg(s.numero).arg(s.closed ? " cierra" : "");
            } catch (const InstalmentTooLarge& e) {
                outcome = e.message();
            }
            QCOMPARE(outcome + " | " + invoiceState(n), expected);
            QCOMPARE(amb1().transactionDepth(), 0);
        }
    }

    // Fcxc by insurer (none chosen asks for all of them) or by the invoices'
    // dates (refused reversed); voided and settled invoices never stand.
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

        const QString ask = "No ha seleccionado empresa, desea ver el reporte en general?";
        const QString prompt = ">>>Seleccione una<<<", report = "DataReport17 %1 «%2» 17 pantalla";
        const struct {
            QString insurer;   // the combo's entry; none: by the dates
            QDate from, to;
            std::optional<Answer> answer;
            QString message, run;   // no run: nothing shown, the screen left open
            QStringList invoices;
        } cases[] = {
            {prompt, {}, {}, Answer::No, ask, {}, {}},
            {{}, kDay, kDay.addDays(-1), {}, "Laprimera fecha no puede ser mayor que la segunda", {}, {}},
            {prompt, {}, {}, Answer::Yes, ask, report.arg("rsrcuentas", ""), {i1, i2, i3}},
            {"5 3M Salud", {}, {}, {}, {}, report.arg("rsrcuentas", "Cod_Seguro =5"), {i2}},
            {{}, kDay.addDays(-1), kDay, {}, {}, report.arg("rsmultiusos", ""), {i1, i2}},
        };
        for (const auto& c : cases) {
            QPointer<QWidget> w = openScreen("Fcxc");
            if (c.insurer.isEmpty())
                tick(control<QRadioButton>(w, "Option2"));
            else
                pickEntry(control<QComboBox>(w, "Combo1"), c.insurer);
            control<QDateEdit>(w, "DT1")->setDate(c.from);
            control<QDateEdit>(w, "DT2")->setDate(c.to);
            const QString before = lastRun();
            QCOMPARE(press(w, "Command2", sp, c.answer).join(""), c.message);
            QCOMPARE(lastRun(), c.run.isEmpty() ? before : c.run);
            QCOMPARE(w && w->isVisible(), c.run.isEmpty());
            if (!c.run.isEmpty())
                QCOMPARE(invoicesIn(lastReportRun().command), c.invoices);
            for (QWidget* top : QApplication::topLevelWidgets())
                top->close();
        }
    }
};

QTEST_MAIN(TestCredit)
#include "test_credit.moc"
