// The order screen FOrden beside the invoice screen, and an order imported into an invoice.
#include "billing_fixture.h"
#include "testsupport.h"

#include "billing/invoice/factura3.h"
#include "billing/invoice/payment.h"
#include "billing/orders/ordersave.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/flexgrid.h"

#include <QComboBox>
#include <QLabel>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

struct Lab {
    int urea = 0, glucosa = 0, gratis = 0;
    int particular = 0, asegurada = 0;
};

// A doctor, three exams (one free), insurer 7 listing Urea at 75.50, and two patients.
Lab fillLab()
{
    amb1().insert("Doctores", {"Nombre_doctor", "Apellido_doctor"}, {"Rosa", "Mejía"});
    const int type = addExamType("Química");
    Lab lab{addExam(type, "Urea", 120), addExam(type, "Glucosa", 10.5), addExam(type, "Gratis", 0)};
    addInsurer(7, "Palic");
    addListPrice(7, lab.urea, 75.5);
    lab.particular = addPatient("Particular", "Paz");
    lab.asegurada = addPatient("Asegurada", "Paz", 7);
    return lab;
}

QString label(QWidget* w, const char* name) { return control<QLabel>(w, name)->text(); }
bool on(QWidget* w, const char* name) { return control<QWidget>(w, name)->isEnabled(); }

// An order of `lines` (quantity, exam, unit price) for `patient`, saved as the screen saves it.
int saveAnOrder(int patient, const QList<std::tuple<int, int, double>>& lines, const QString& extra = {},
                double extraValue = 0)
{
    PricedDocument doc;
    doc.numero = nextOrderNumber();
    doc.fecha = QDate::currentDate();
    doc.faturado = "Recepcion";
    doc.codPaciente = patient;
    double subtotal = 0;
    for (const auto& [quantity, exam, price] : lines) {
        doc.lines << PricedLine{quantity, exam, money(quantity * price), money(price)};
        subtotal += quantity * price;
    }
    doc.subtotal = money(subtotal);
    doc.total = money(extra == "Recargo" ? subtotal + extraValue : subtotal - extraValue);
    if (!extra.isEmpty()) {
        doc.adicional = extra;
        doc.valAdicional = money(extraValue);
    }
    return saveOrder(doc).numero;
}

// How the order stands: closed, by whom, billed by which invoice.
QStringList orderState(int n)
{
    return row("SELECT anulada, quien_anulo, factura FROM orden WHERE orden = ?", {n});
}

// What one screen does at each point where the invoice and the order part ways.
QMap<QString, QString> observe(const QString& screen, const Lab& lab, ScriptedPrompts& sp)
{
    QMap<QString, QString> seen;
    QPointer<QWidget> w = openScreen(screen);
    seen["number at opening"] = label(w, "Txt_numfact");
    seen["import button"] = control<QWidget>(w, "importaOrden") ? "yes" : "no";

    // The exam picker's title, for a patient on normal prices and for an insured one.
    QStringList titles;
    for (const char* who : {"Particular", "Asegurada"}) {
        pickPatient(w, sp, who);
        sp.onModal("FBuscarArticulo", [&titles](QWidget* p) { titles << control<QLabel>(p, "Label2")->text(); });
        auto* g = control<FlexGrid>(w, "Factura");
        g->setRow(1);
        g->setCol(0);
        typeKeys(g, "1");
        pressKey(g, Qt::Key_Return);
    }
    seen["exam picker title"] = titles.join(" / ");

    // "+/-" reached with no totals (the button forced on: the screens keep it off).
    sp.clear();
    control<QWidget>(w, "Command1")->setEnabled(true);
    clickNamed(w, "Command1");
    seen["+/- before totals"] = sp.messages().join(" | ");
    w->close();

    // A zero total is refused by both.
    w = composed(sp, screen, "Particular", {{"1", lab.gratis}}, 0);
    sp.clear();
    sp.onModal("Fcobrar", [w](QWidget*) { dynamic_cast<PaymentTarget*>(w.data())->savePaid(Payment{}, false); });
    clickNamed(w, "guardarfact");
    seen["zero total"] = sp.messages().join(" | ");
    w->close();

    // Totalled: is the doctor still open; then "Guardar".
    w = composed(sp, screen, "Particular", {{"2", lab.urea}}, 0);
    seen["doctor after totals"] = on(w, "Combo1") ? "open" : "closed";
    sp.clear();
    const int feedBefore = rowsIn("EvaluadoTemporal");
    sp.onModal("Fcobrar", [w](QWidget*) { dynamic_cast<PaymentTarget*>(w.data())->savePaid(Payment{240}, false); });
    clickNamed(w, "guardarfact");
    QStringList shown;
    for (const Prompt& p : sp.prompts)
        shown << (p.kind == Prompt::Modal ? "[" + p.text + "]" : p.text);
    seen["save"] = shown.join(" | ");
    seen["work table rows"] = QString::number(rowsIn("EvaluadoTemporal") - feedBefore);
    seen["number after save"] = label(w, "Txt_numfact");

    // Printing: the invoice's print box, the order straight to its report.
    sp.clear();
    clickNamed(w, "imprimir");
    const ReportRun& run = lastReportRun();
    const QString shownModal = sp.prompts.size() && sp.prompts.last().kind == Prompt::Modal ? sp.prompts.last().text : "";
    seen["printing"] = "[" + shownModal + "]"
                       + (run.report == shownModal ? " " + run.filter + " " + QString::number(run.heading) : "");

    // Another document.
    sp.clear();
    sp.answers.push_back(Answer::No);
    clickNamed(w, "Otrafact");
    seen["another"] = sp.prompts.last().text + " / " + sp.prompts.last().title;
    w->close();
    return seen;
}

}  // namespace

class TestOrders : public QObject {
    Q_OBJECT

private slots:
    // Point by point, the invoice screen and the order screen composing the same document.
    void differencesBetweenTheTwoScreens()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        const QMap<QString, QString> invoice = observe("factura3", lab, sp);
        const QMap<QString, QString> order = observe("FOrden", lab, sp);

        struct Point {
            const char* point;
            QString invoice, order;
        };
        const QList<Point> table = {
            {"number at opening", "1", ""},
            {"exam picker title", "PRECIOS NORMALES / Palic", " / "},
            {"doctor after totals", "closed", "open"},
            {"+/- before totals", "Primero debe Generar a factura", "Primero debe Generar la Orden"},
            {"zero total", "La factura no puede ser Cero (0)", "La factura no puede ser Cero (0)"},
            {"save",
             "[Fcobrar] | Desea Guardar la factura.  | La factura se guardo Satisfactoriamente. | [semaforo]",
             "La Orden se guardo Satisfactoriamente."},
            {"work table rows", "2", "0"},
            {"number after save", "1", "1"},
            {"printing", "[FImpresion]", "[reporOrden] Orden =1 25"},
            {"another", "Desea Ingresar Otra factura / Ingresar Factura...",
             "Desea Ingresar Otra Orden / Ingresar Orden..."},
            {"import button", "yes", "no"},
        };
        for (const Point& p : table) {
            QVERIFY2(invoice.value(p.point) == p.invoice,
                     qPrintable(QString("%1, invoice: %2").arg(p.point, invoice.value(p.point))));
            QVERIFY2(order.value(p.point) == p.order,
                     qPrintable(QString("%1, order: %2").arg(p.point, order.value(p.point))));
        }
        // The order keeps its unit prices beside the amounts.
        QCOMPARE(row("SELECT cantidad, cod_descripcionexamen, precio, subtotal FROM ordenDetalle WHERE orden = 1"),
                 (QStringList{"2", QString::number(lab.urea), "120", "240"}));
        QCOMPARE(row("SELECT faturado, cod_paciente, sub_total, total, anulada FROM orden"),
                 (QStringList{state().currentUser, QString::number(lab.particular), "240", "240", "0"}));
    }

    // The number is the last one plus 1 when the order is saved, not when the screen opened;
    // one taken meanwhile inside the save moves on.
    void orderNumberTakenAtTheSave()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        QPointer<QWidget> w = composed(sp, "FOrden", "Particular", {{"1", lab.glucosa}});
        saveAnOrder(lab.asegurada, {{1, lab.urea, 75.5}});
        saveAnOrder(lab.asegurada, {{1, lab.urea, 75.5}});
        QVERIFY(label(w, "Txt_numfact").isEmpty());
        sp.clear();
        clickNamed(w, "guardarfact");
        QCOMPARE(label(w, "Txt_numfact"), QString("3"));
        QCOMPARE(value("SELECT cod_paciente FROM orden WHERE orden = 3").toInt(), lab.particular);

        PricedDocument doc;
        doc.numero = 3;   // proposed by a station that read the orders before the last save
        doc.fecha = QDate::currentDate();
        doc.codPaciente = lab.particular;
        doc.subtotal = doc.total = "10.50";
        doc.lines << PricedLine{1, lab.glucosa, "10.50", "10.50"};
        const SaveOutcome out = saveOrder(doc);
        QVERIFY(out.renumbered);
        QCOMPARE(out.numero, 4);
        QCOMPARE(count("SELECT COUNT(*) FROM ordenDetalle WHERE orden = 4"), 1);
    }

    // Imported, the invoice shows the order as it was saved, whatever the catalogue says today,
    // and goes straight to saving; the save bills the order and closes it. Leaving the payment
    // screen closes it too, and an order billed at one station can't be billed at another.
    void importingAnOrder()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        const int n = saveAnOrder(lab.particular, {{2, lab.urea, 120}, {1, lab.glucosa, 10.5}}, "Recargo", 25);
        amb1().execute("UPDATE Examenes SET precio = 999");

        QPointer<QWidget> w = openScreen("factura3");
        auto* invoice = qobject_cast<factura3*>(w.data());
        // "Importar Orden": the search lists the order; a click on it brings it in.
        sp.onModal("FbuscarOrden", [n](QWidget* search) {
            auto* list = control<FlexGrid>(search, "Grid1");
            clickGridRow(list, findRow(list, 0, QString::number(n)));
        });
        QVERIFY(clickNamed(w, "importaOrden"));
        QCOMPARE(invoice->importedOrder(), n);
        auto* g = control<FlexGrid>(w, "Factura");
        QCOMPARE(column(g, 3), (QStringList{"120.00", "10.50", ""}));
        QCOMPARE(column(g, 4), (QStringList{"240.00", "10.50", ""}));
        QCOMPARE((QStringList{edit(w, "subtfact")->text(), edit(w, "Text1")->text(), edit(w, "totfact")->text(),
                              label(w, "Label10"), label(w, "Label12"), edit(w, "clinom")->text()}),
                 (QStringList{"250.50", "25.00", "275.50", "Recargo:", "Precios Normales", "Particular Paz"}));
        QVERIFY(!g->isEnabled() && on(w, "guardarfact") && on(w, "Command1") && on(w, "agregar"));

        // Leaving the payment screen saves nothing, but the order is closed all the same.
        sp.onModal("Fcobrar", [](QWidget*) {});
        clickNamed(w, "guardarfact");
        QCOMPARE(rowsIn("Factura"), 0);
        QCOMPARE(orderState(n), (QStringList{"1", state().currentUser, "NULL"}));

        // A second station imported it as well; the first to save bills it.
        QPointer<QWidget> other = openScreen("factura3");
        qobject_cast<factura3*>(other.data())->importar(n);
        sp.onModal("Fcobrar", [other](QWidget*) {
            dynamic_cast<PaymentTarget*>(other.data())->savePaid(Payment{275.5}, false);
        });
        clickNamed(other, "guardarfact");
        QCOMPARE(row("SELECT sub_total, total, adicional, valadicional FROM Factura WHERE factura = 1"),
                 (QStringList{"250.5", "275.5", "Recargo", "25"}));
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE factura = 1 AND subtotal = 240"), 1);
        QCOMPARE(orderState(n).at(2), QString("1"));

        // The first station tries again: nothing written, told where the order went.
        const int work = rowsIn("EvaluadoTemporal");
        sp.clear();
        sp.onModal("Fcobrar", [w](QWidget*) { dynamic_cast<PaymentTarget*>(w.data())->savePaid(Payment{275.5}, false); });
        clickNamed(w, "guardarfact");
        QCOMPARE(sp.lastMessage(), QString("La orden %1 ya fue facturada en la factura 1. Esta factura no se guardó.").arg(n));
        QCOMPARE(rowsIn("Factura"), 1);
        QCOMPARE(rowsIn("EvaluadoTemporal"), work);
        QVERIFY(on(w, "guardarfact"));

        // An order without an extra brings none.
        const int plain = saveAnOrder(lab.particular, {{1, lab.glucosa, 10.5}});
        invoice->importar(plain);
        QCOMPARE((QStringList{label(w, "Label10"), edit(w, "Text1")->text(), edit(w, "totfact")->text()}),
                 (QStringList{"Extras:", "", "10.50"}));

        // A new patient on the screen leaves the order behind.
        pickPatient(w, sp, "Asegurada");
        QCOMPARE(invoice->importedOrder(), 0);
        // An order whose patient is gone imports nothing.
        const int orphan = saveAnOrder(9999, {{1, lab.urea, 120}});
        invoice->importar(orphan);
        QCOMPARE(invoice->importedOrder(), 0);
        QCOMPARE(edit(w, "clinom")->text(), QString("Asegurada, Paz"));
    }
};

QTEST_MAIN(TestOrders)
#include "test_orders.moc"
