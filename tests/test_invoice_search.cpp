// Printing an invoice (FImpresion), the invoice search (Form9, Form12) and voiding (Form32,
// Form31); what a screen decided to print or show is read from the last report run.
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "billing/invoice/factura3.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/registry.h"

#include <QApplication>
#include <QDateEdit>
#include <QPointer>
#include <QRadioButton>
#include <QScrollBar>
#include <functional>

using namespace tq;
using namespace tq::test;

namespace {

// Invoice 1 without extra (two lines, three exams waiting), 2 with a discount, 3 voided,
// 4 of another day for a patient whose name has an apostrophe.
const QDate kDay(2026, 3, 14);

void fillInvoices()
{
    const int type = addExamType("Química");
    const int urea = addExam(type, "Urea", 120), gluc = addExam(type, "Glucosa", 80);
    const int ana = addPatient("Ana", "Paz"), darcy = addPatient("D'Arcy", "Lanza");
    const QStringList cols = {"factura", "fecha", "cod_paciente", "sub_total", "total", "Abono",
                              "adicional", "valadicional", "anulada", "faturado"};
    amb1().insert("Factura", cols, {1, kDay, ana, "200.00", "200.00", "200.00", QVariant(), ".00", false, "caja"});
    amb1().insert("Factura", cols, {2, kDay, ana, "120.00", "108.00", "108.00", "Descuento", "12.00", false, "caja"});
    amb1().insert("Factura", cols, {3, kDay, darcy, "80.00", "80.00", ".00", QVariant(), ".00", true, "caja"});
    amb1().insert("Factura", cols, {4, kDay.addDays(1), darcy, "80.00", "80.00", "80.00", "", ".00", false, "caja"});
    for (const auto& [n, code, price] : {std::tuple{1, urea, "120.00"}, {1, gluc, "80.00"}, {2, urea, "120.00"},
                                         {3, gluc, "80.00"}, {4, gluc, "80.00"}})
        amb1().insert("FacturaDetalle", {"factura", "cod_descripcionexamen", "cantidad", "subtotal"},
                      {n, code, 1, price});
    for (const auto& [code, name] : {std::pair{urea, "Urea"}, {gluc, "Glucosa"}, {gluc, "Glucosa"}})
        amb1().insert("EvaluadoTemporal", {"factura", "cod_descripcionexamen", "examen"}, {1, code, name});
}

// A stand-in for a report preview, so that the windows the screens keep can be seen and closed.
class Preview : public QWidget {
public:
    explicit Preview(const QString& name) { setObjectName(name); }
};
const bool kPreviews = [] {
    for (const char* name : {"DataReport13", "DataReport15"})
        ScreenRegistry::instance().add(QString::fromLatin1(name),
                                       [n = QString::fromLatin1(name)](QWidget*) { return new Preview(n); });
    return true;
}();

void closeAll()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The last report run asked for, as one comparable line.
QString lastRun()
{
    const ReportRun& r = lastReportRun();
    QStringList captions;
    for (auto it = r.captions.cbegin(); it != r.captions.cend(); ++it)
        captions << it.key() + "=" + it.value();
    const char* show[] = {"Modeless", "Modal", "Printer"};
    return QStringLiteral("%1|%2|%3|%4|%5|%6")
        .arg(r.report, r.command, r.filter)
        .arg(r.heading)
        .arg(captions.join(','), QLatin1String(show[int(r.show)]));
}

void resetLastRun() { runReport({.report = "ninguno", .command = "rsrfact1", .filter = "factura =0"}); }

// The invoice screen with a saved invoice's number, as after its save.
class SavedInvoice : public factura3 {
public:
    explicit SavedInvoice(std::int32_t n) { m_numero = n; }
    using factura3::imprimir;
};

bool voided(int n) { return value("SELECT anulada FROM Factura WHERE factura = ?", {n}).toBool(); }
QList<int> waiting(int n)
{
    QList<int> out;
    Recordset rs;
    rs.open("SELECT correlativo FROM EvaluadoTemporal WHERE factura = ? ORDER BY correlativo", {n});
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        out << rs.field("correlativo").toInt();
    return out;
}

// "ANULAR" answered Yes, with the reason typed (the motive box cancelled when none).
void voidWith(QWidget* box, ScriptedPrompts& sp, std::optional<QString> reason)
{
    sp.clear();
    sp.answers.push_back(Answer::Yes);
    if (reason)
        sp.inputs.push_back(reason);
    QVERIFY(clickNamed(box, "Command1"));
}

}  // namespace

class TestInvoiceSearch : public QObject {
    Q_OBJECT
    // Every test on a fresh store holding the invoices of fillInvoices.
    std::optional<TempStore> m_store;
    std::optional<ScriptedPrompts> m_sp;

private slots:
    void init()
    {
        m_store.emplace();
        m_sp.emplace();
        fillInvoices();
    }
    void cleanup()
    {
        closeAll();
        m_sp.reset();
        m_store.reset();
    }

    // The print box refuses what names no invoice; opened by the invoice screen it holds that
    // invoice, the form chosen by the ticket printer setting and still a choice per print. Voiding.
    void printBoxAndVoiding()
    {
        ScriptedPrompts& sp = *m_sp;
        resetLastRun();
        QPointer<QWidget> w = openScreen("FImpresion");
        const QString runBefore = lastRun();
        QCOMPARE(press(w, "Command1", sp), QStringList{"Ingrese el numero de factura"});
        for (const char* typed : {"999", "1.5"}) {
            retype(edit(w, "Text1"), typed);
            QCOMPARE(press(w, "Command1", sp), QStringList{"el numero de factura no existe verifique el dato"});
        }
        // Beyond 32 bits: refused in words, never wrapped onto another invoice.
        retype(edit(w, "Text1"), "4294967297");
        const QStringList tooLarge = press(w, "Command1", sp);
        QVERIFY2(tooLarge.size() == 1 && tooLarge[0].contains("demasiado grande"), qPrintable(tooLarge.join('|')));
        QVERIFY(w && w->isVisible());
        QCOMPARE(lastRun(), runBefore);
        // "Cancelar" clears the number.
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(edit(w, "Text1")->text(), QString());
        w->close();

        for (const bool ticket : {false, true}) {
            amb1().execute("UPDATE datos SET ticketera = ?", {ticket});
            SavedInvoice invoice(2);
            QStringList seen;
            sp.onModal("FImpresion", [&](QWidget* box) {
                seen << (control<QRadioButton>(box, "Option1")->isChecked() ? "Tiket" : "Media Carta");
                seen << edit(box, "Text1")->text();
                QVERIFY(!edit(box, "Text1")->isEnabled() && !control<QWidget>(box, "Command2")->isEnabled());
                tick(control<QRadioButton>(box, "Option2"));
                QVERIFY(clickNamed(box, "Command1"));
            });
            invoice.imprimir();
            QCOMPARE(seen, (QStringList{ticket ? "Tiket" : "Media Carta", "2"}));
            QCOMPARE(lastRun(), QString("DataReport1|rsrfact1|factura =2|1|Etiqueta14=Descuento|Printer"));
        }

        // The number box refuses what names no invoice and shows the one it names beside the voiding
        // box. Voiding asks, takes a reason and marks the invoice in one save with its exam's removal.
        const QList<int> before = waiting(1);
        w = openScreen("Form32");
        QCOMPARE(press(w, "Command1", sp), QStringList{"Ingrese el numero de factura"});
        retype(edit(w, "Text1"), "999");
        QCOMPARE(press(w, "Command1", sp), QStringList{"El numero de Factura no existe"});
        QVERIFY(w);
        retype(edit(w, "Text1"), "1");
        QVERIFY(press(w, "Command1", sp).isEmpty());
        QCOMPARE(lastRun(), QString("DataReport13|rsrfact1|factura=1|13||Modeless"));
        QVERIFY(gone(w));
        QWidget* box = visibleWindow("Form31");
        QVERIFY(box && control<QWidget>(box, "Command1")->isEnabled());
        QVERIFY(visibleWindow("DataReport13"));

        // Anything but Yes leaves it alone.
        QCOMPARE(press(box, "Command1", sp, Answer::No), QStringList{"Esta seguro que desea anular la factura"});
        QVERIFY(!voided(1) && sp.prompts.size() == 1);

        // The store fails on the work table after the invoice row: nothing stays, the plain copy stays.
        StoreFaults faults;
        faults.failAfter(1);
        voidWith(box, sp, "Error de digitación");
        faults.heal();
        QVERIFY2(sp.lastMessage().startsWith("La factura 1 no se anuló"), qPrintable(sp.lastMessage()));
        QVERIFY(!voided(1));
        QVERIFY(value("SELECT motivo_anulacion FROM Factura WHERE factura = 1").isNull());
        QCOMPARE(waiting(1), before);
        QCOMPARE(amb1().transactionDepth(), 0);
        QVERIFY(visibleWindow("DataReport13"));

        // Healed, the same press voids it.
        voidWith(box, sp, "Paciente O'Neil se retiró");
        QCOMPARE(sp.prompts[1].title + ": " + sp.prompts[1].text,
                 QString("Anulacion de factura: Ingrese el motivo de anulacion de la factura"));
        QVERIFY(voided(1));
        QCOMPARE(value("SELECT motivo_anulacion FROM Factura WHERE factura = 1").toString(),
                 QString("Paciente O'Neil se retiró"));
        QCOMPARE(storedDate(value("SELECT fecha_anulacion FROM Factura WHERE factura = 1")), QDate::currentDate());
        // The first waiting exam leaves; no other invoice is touched.
        QCOMPARE(waiting(1), before.mid(1));
        QVERIFY(!voided(2));

        // Voided again with the motive box cancelled: an empty reason, one more exam off.
        voidWith(box, sp, std::nullopt);
        QVERIFY(voided(1));
        QCOMPARE(value("SELECT motivo_anulacion FROM Factura WHERE factura = 1").toString(), QString());
        QCOMPARE(waiting(1), before.mid(2));
        closeAll();

        // An invoice already voided comes with its voided copy, and may be voided again.
        w = openScreen("Form32");
        retype(edit(w, "Text1"), "3");
        press(w, "Command1", sp);
        box = visibleWindow("Form31");
        QCOMPARE(lastRun(), QString("DataReport15|rsrfact1|factura=3|15||Modeless"));
        QVERIFY(box && control<QWidget>(box, "Command1")->isEnabled() && visibleWindow("DataReport15"));
        // "SALIR" takes the box and its copy away.
        QVERIFY(clickNamed(box, "Command2"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!visibleWindow("DataReport15"));
    }

    // Narrowed in the store by date, name or number; every invoice, the voided too, in each of
    // the three orders, a row's click showing its lines; a long list read as it is scrolled.
    void searchNarrowsListsAndPages()
    {
        ScriptedPrompts& sp = *m_sp;
        QWidget* w = openScreen("Form9");
        auto* grid = control<DataGrid>(w, "DataGrid1");
        auto numbers = [grid] {
            QList<int> out;
            for (int r = 0; r < grid->rows(); ++r)
                out << grid->value(r, "factura").toInt();
            std::sort(out.begin(), out.end());
            return out;
        };
        auto filter = [] { return amb1().rs("rsconsultas").filter(); };
        // Typing before the list is loaded narrows nothing.
        tick(control<QRadioButton>(w, "Option2"));
        typeKeys(edit(w, "Text1"), "D");
        QCOMPARE(grid->rows(), 0);

        tick(control<QRadioButton>(w, "Option1"));
        press(w, "Command1", sp);
        control<QDateEdit>(w, "DTPicker1")->setDate(kDay.addDays(1));
        QCOMPARE(filter(), QString("fecha =15/03/2026"));
        QCOMPARE(numbers(), QList<int>{4});
        control<QDateEdit>(w, "DTPicker1")->setDate(kDay);
        QCOMPARE(numbers(), (QList<int>{1, 2, 3}));

        tick(control<QRadioButton>(w, "Option2"));
        press(w, "Command1", sp);
        retype(edit(w, "Text1"), "d'a");
        QCOMPARE(filter(), QString("nombre_paciente like '*d''a*'"));
        QCOMPARE(numbers(), (QList<int>{3, 4}));
        // A blank criterion keeps the list as it was.
        retype(edit(w, "Text1"), "");
        QCOMPARE(numbers(), (QList<int>{3, 4}));

        tick(control<QRadioButton>(w, "Option3"));
        press(w, "Command1", sp);
        retype(edit(w, "Text1"), "2");
        QCOMPARE(filter(), QString("factura =2"));
        sp.clear();
        retype(edit(w, "Text1"), "99999999999");
        // Refused in words from the first digit too many; the last number that fits stands.
        QVERIFY(!sp.messages().isEmpty());
        for (const QString& m : sp.messages())
            QVERIFY2(m.contains("demasiado grande"), qPrintable(m));
        QCOMPARE(filter(), QString("factura =999999999"));

        const QList<QPair<const char*, QStringList>> orders = {
            {"Option1", {"fecha", "factura", "cod_paciente", "nombre_paciente"}},
            {"Option2", {"nombre_paciente", "apellido_paciente", "fecha", "factura"}},
            {"Option3", {"factura", "fecha", "cod_paciente", "nombre_paciente"}},
        };
        for (const auto& [option, first] : orders) {
            tick(control<QRadioButton>(w, option));
            // By date the criterion is the picker's.
            QCOMPARE(edit(w, "Text1")->isEnabled(), QString(option) != "Option1");
            QVERIFY(press(w, "Command1", sp).isEmpty());
            QCOMPARE(grid->columnNames().mid(0, 4), first);
            QCOMPARE(grid->rows(), 4);

            QStringList shown;
            QString filterWhileOpen;
            sp.onModal("Form12", [&](QWidget* detail) {
                auto* lines = control<DataGrid>(detail, "DataGrid1");
                for (int r = 0; r < lines->rows(); ++r)
                    shown << lines->text(r, "examen");
                filterWhileOpen = amb1().rs("rsDetallefact").filter();
            });
            clickRow(grid, grid->findRow("factura", 1));
            shown.sort();
            QCOMPARE(shown, (QStringList{"Glucosa", "Urea"}));
            QCOMPARE(filterWhileOpen, QString("factura =1"));
            // Closing the detail clears its narrowing.
            QCOMPARE(amb1().rs("rsDetallefact").filter(), QString());
        }

        // A long list is read as it is scrolled.
        sp.clear();
        const int ana = value("SELECT cod_paciente FROM Pacientes WHERE nombre_paciente = 'Ana'").toInt();
        const int darcy = value("SELECT cod_paciente FROM Pacientes WHERE nombre_paciente = 'D''Arcy'").toInt();
        {
            Transaction t;
            for (int n = 10; n < 2510; ++n)
                amb1().insert("Factura", {"factura", "fecha", "cod_paciente", "total"},
                              {n, kDay, n % 2 ? darcy : ana, "10.00"});
            t.commit();
        }
        w->resize(800, 400);
        auto toTheEnd = [grid] {
            QCoreApplication::processEvents();
            QScrollBar* bar = grid->verticalScrollBar();
            QVERIFY(bar->maximum() > 0);
            bar->setValue(bar->maximum());
            QCoreApplication::processEvents();
        };
        tick(control<QRadioButton>(w, "Option2"));
        press(w, "Command1", sp);
        const int first = grid->rows();
        QVERIFY(first < 2504);
        toTheEnd();
        QCOMPARE(grid->rows(), 2504);
        // Narrowed, the rows beyond the first read are reached the same way, still narrowed.
        press(w, "Command1", sp);
        retype(edit(w, "Text1"), "d'a");
        QCOMPARE(grid->rows(), std::min(first, 1252));
        toTheEnd();
        QCOMPARE(grid->rows(), 1252);
        QCOMPARE(grid->findRow("nombre_paciente", "Ana"), -1);
        QVERIFY(sp.messages().isEmpty());
    }

    // The list reads in invoice number order whatever order the store keeps: invoices stored out of
    // number order, more than a first reading, in each of the three orders, as first read, after
    // scrolling, and narrowed.
    void searchReadsInNumberOrder()
    {
        ScriptedPrompts& sp = *m_sp;
        const int ana = value("SELECT cod_paciente FROM Pacientes WHERE nombre_paciente = 'Ana'").toInt();
        const int darcy = value("SELECT cod_paciente FROM Pacientes WHERE nombre_paciente = 'D''Arcy'").toInt();
        // Names whose index order is not the number order; Beto's take no "a".
        const int patients[] = {addPatient("Zoila", "Cruz"), ana, addPatient("Beto", "Mejia"), darcy};
        {
            // 2600 numbers, stored in a scattered order: 7919 is prime to 2600.
            Transaction t;
            for (int k = 0; k < 2600; ++k) {
                const int n = 10 + (k * 7919) % 2600;
                amb1().insert("Factura", {"factura", "fecha", "cod_paciente", "total"},
                              {n, n % 5 ? kDay : kDay.addDays(1), patients[n % 4], "10.00"});
            }
            t.commit();
        }
        QWidget* w = openScreen("Form9");
        w->resize(800, 400);
        auto* grid = control<DataGrid>(w, "DataGrid1");
        auto shown = [grid] {
            QList<int> out;
            for (int r = 0; r < grid->rows(); ++r)
                out << grid->value(r, "factura").toInt();
            return out;
        };
        auto toTheEnd = [grid] {
            QCoreApplication::processEvents();
            grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum());
            QCoreApplication::processEvents();
        };
        // What each case must show, as the store answers when asked for the order.
        auto expected = [](const QString& where, const QVariantList& binds = {}) {
            QList<int> out;
            Recordset rs;
            rs.open("SELECT Factura.factura FROM Factura INNER JOIN Pacientes ON Pacientes.cod_paciente = "
                    "Factura.cod_paciente" + where + " ORDER BY Factura.factura",
                    binds);
            for (rs.moveFirst(); !rs.eof(); rs.moveNext())
                out << rs.field("factura").toInt();
            return out;
        };
        const QList<int> all = expected("");
        QCOMPARE(all.size(), 2604);

        struct Case {
            const char* option;
            std::function<void()> narrow;
            QList<int> narrowed;
        };
        const Case cases[] = {
            {"Option1", [w] { control<QDateEdit>(w, "DTPicker1")->setDate(kDay); },
             expected(" WHERE Factura.fecha = ?", {kDay})},
            {"Option2", [w] { retype(edit(w, "Text1"), "a"); },
             expected(" WHERE Pacientes.nombre_paciente <> 'Beto'")},
            {"Option3", [w] { retype(edit(w, "Text1"), "1500"); }, {1500}},
        };
        for (const Case& c : cases) {
            tick(control<QRadioButton>(w, c.option));
            control<QDateEdit>(w, "DTPicker1")->blockSignals(true);
            control<QDateEdit>(w, "DTPicker1")->setDate(kDay.addDays(-1));
            control<QDateEdit>(w, "DTPicker1")->blockSignals(false);
            press(w, "Command1", sp);
            const int first = grid->rows();
            QVERIFY2(first > 0 && first < all.size(), c.option);
            QCOMPARE(shown(), all.mid(0, first));
            toTheEnd();
            QCOMPARE(shown(), all);

            press(w, "Command1", sp);
            c.narrow();
            QCOMPARE(shown(), c.narrowed.mid(0, first));
            if (c.narrowed.size() > first) {
                toTheEnd();
                QCOMPARE(shown(), c.narrowed);
            }
        }
        // A day chosen after a name narrows the whole list again, not the name's invoices.
        tick(control<QRadioButton>(w, "Option2"));
        press(w, "Command1", sp);
        retype(edit(w, "Text1"), "a");
        QCOMPARE(shown(), cases[1].narrowed.mid(0, grid->rows()));
        control<QDateEdit>(w, "DTPicker1")->setDate(kDay.addDays(-1));
        control<QDateEdit>(w, "DTPicker1")->setDate(kDay);
        QCOMPARE(shown(), cases[0].narrowed.mid(0, grid->rows()));
        QVERIFY(grid->rows() > 0);
        QVERIFY(sp.messages().isEmpty());
    }
};

QTEST_MAIN(TestInvoiceSearch)
#include "test_invoice_search.moc"
