// The pending orders: the order search (FbuscarOrden) and its use by the invoice, the order
// cancelling screen (FanularOrden) and the order reprint box (Freimprimir).
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "billing/orders/orderpicker.h"
#include "billing/orders/ordersave.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"

#include <QApplication>
#include <QDateEdit>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

// The dates cross a month, so that "dd/mm" text order is not date order.
const QDate kDay(2026, 3, 28);

// Orders saved out of number order (the server keeps rows in the order saved), their dates
// in neither order. Order 11 is cancelled before each test.
struct Made {
    int numero, days;
    const char* patient;
};
const QList<Made> kOrders = {{10, 4, "beto"}, {4, 0, "Ana"},   {8, 2, "Carla"}, {2, 0, "Carla"},
                             {5, 9, "Carla"}, {1, 5, "Ana"},   {3, 2, "beto"},  {6, 1, "Ana"},
                             {9, 7, "Ana"},   {7, 3, "beto"},  {11, 6, "Carla"}};
// Pending, by date and then by number; and by number.
const QStringList kByDate = {"2", "4", "6", "3", "8", "7", "10", "1", "9", "5"};
const QStringList kByNumber = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"};

void fillOrders()
{
    const QHash<QString, int> patients = {{"Ana", addPatient("Ana", "Paz")},
                                          {"beto", addPatient("beto", "Lanza")},
                                          {"Carla", addPatient("Carla", "Ríos")}};
    for (const Made& m : kOrders) {
        PricedDocument doc;
        doc.numero = m.numero;
        doc.fecha = kDay.addDays(m.days);
        doc.faturado = "caja";
        doc.codPaciente = patients.value(m.patient);
        doc.subtotal = doc.total = "100.00";
        QCOMPARE(saveOrder(doc).numero, m.numero);
    }
    QCOMPARE(closeOrders({11}, "antes"), 1);
}

FlexGrid* grid(QWidget* w, const char* name = "Grid1") { return control<FlexGrid>(w, name); }
QStringList headers(FlexGrid* g) { return {g->textMatrix(0, 0), g->textMatrix(0, 1), g->textMatrix(0, 2)}; }

QString cancelledBy(int n)
{
    return row("SELECT anulada, anulacion, quien_anulo FROM orden WHERE orden = ?", {n}).join('|');
}

}  // namespace

class TestOrderLists : public QObject {
    Q_OBJECT
    std::optional<TempStore> m_store;
    std::optional<ScriptedPrompts> m_sp;

private slots:
    void init()
    {
        m_store.emplace();
        m_sp.emplace();
        fillOrders();
    }
    void cleanup()
    {
        for (QWidget* w : QApplication::topLevelWidgets())
            w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_sp.reset();
        m_store.reset();
    }

    // The opening list and both searches: pending orders only, each with its own headers.
    void searchListsPendingOrdersOnly()
    {
        ScriptedPrompts& sp = *m_sp;
        QWidget* w = openScreen("FbuscarOrden");
        FlexGrid* g = grid(w);
        QCOMPARE(headers(g), (QStringList{"ORDEN   ", "          FECHA", "     CLIENTE"}));
        QCOMPARE(column(g, 0), kByDate);
        QCOMPARE(g->textMatrix(1, 1) + " " + g->textMatrix(1, 2), QString("28/03/2026 Carla Ríos"));
        QVERIFY(sp.prompts.isEmpty());

        // Each key searches the start of the number; what is not a number finds nothing.
        const QList<std::pair<QString, QStringList>> byNumber = {
            {"1", {"1", "10"}}, {"10", {"10"}}, {"11", {}},     {"", kByNumber},
            {"1a", {}},         {"%", {}},      {"_", {}},      {"1'", {}}};
        for (const auto& [typed, expected] : byNumber) {
            retype(edit(w, "Textb"), typed);
            QVERIFY2(column(g, 0) == expected, qPrintable(typed + ": " + column(g, 0).join(',')));
        }
        QCOMPARE(headers(g), (QStringList{"ORDEN   ", "  FECHA", "  CLIENTE"}));
        QVERIFY(sp.prompts.isEmpty());

        // Dates: both days included, refused when reversed, said when nothing is there.
        tick(control<QRadioButton>(w, "Option2"));
        QVERIFY(!edit(w, "Textb")->isEnabled());
        struct Range {
            int from, to;
            QStringList expected;
            QString message;
        };
        const QList<Range> ranges = {
            {0, 0, {"2", "4"}, {}},
            {2, 3, {"3", "7", "8"}, {}},
            {4, 5, {"1", "10"}, {}},
            {6, 6, {}, "no hay ordenes para esa fecha"},   // only the cancelled one
            {3, 2, {}, "Laprimera fecha no puede ser mayor que la segunda"},
        };
        for (const Range& r : ranges) {
            control<QDateEdit>(w, "DT1")->setDate(kDay.addDays(r.from));
            control<QDateEdit>(w, "DT2")->setDate(kDay.addDays(r.to));
            const QStringList said = press(w, "Command1", sp);
            QCOMPARE(said, r.message.isEmpty() ? QStringList() : QStringList{r.message});
            if (r.from <= r.to)
                QVERIFY2(column(g, 0) == r.expected, qPrintable(column(g, 0).join(',')));
        }
        QCOMPARE(headers(g), (QStringList{"COTIZACION", "  FECHA", "  CLIENTE"}));
    }

    // Sorting in place: numbers as numbers, patients as text whatever the capitals, dates as days.
    void sortsReadNumbersAndDates()
    {
        QWidget* w = openScreen("FbuscarOrden");
        FlexGrid* g = grid(w);
        tick(control<QRadioButton>(w, "Option4"));
        QCOMPARE(column(g, 2).mid(0, 4), QStringList(4, "Ana Paz"));
        QCOMPARE(column(g, 2).mid(4, 3), QStringList(3, "beto Lanza"));
        tick(control<QRadioButton>(w, "Option3"));
        QCOMPARE(column(g, 0), kByNumber);
        tick(control<QRadioButton>(w, "Option5"));
        QCOMPARE(column(g, 0), kByDate);
        // The date column moved with its rows.
        QCOMPARE(g->textMatrix(g->rows() - 1, 1), QString("06/04/2026"));

        QWidget* cancel = openScreen("FanularOrden");
        tick(control<QRadioButton>(cancel, "Option1"));
        QCOMPARE(column(grid(cancel), 0), kByNumber);
    }

    // Serving the invoice a row chosen (click or Enter) comes back as its number; opened
    // from the menu a choice only reads.
    void chooseOrderServesTheInvoiceOnly()
    {
        ScriptedPrompts& sp = *m_sp;
        state().clientPicker = 3;
        for (const bool byEnter : {false, true}) {
            std::int16_t selector = 0;
            sp.onModal("FbuscarOrden", [&](QWidget* w) {
                selector = state().clientPicker;
                FlexGrid* g = grid(w);
                const int at = findRow(g, 0, "7");
                if (byEnter) {
                    g->setRow(at);
                    pressKey(g, Qt::Key_Return);
                } else {
                    clickGridRow(g, at);
                }
            });
            QCOMPARE(chooseOrder(), std::optional<std::int32_t>(7));
            QCOMPARE(selector, std::int16_t(1));
            QCOMPARE(state().clientPicker, std::int16_t(3));
        }
        sp.onModal("FbuscarOrden", [](QWidget*) {});
        QCOMPARE(chooseOrder(), std::optional<std::int32_t>());

        state().clientPicker = 0;
        QPointer<QWidget> w = openScreen("FbuscarOrden");
        clickGridRow(grid(w), 2);
        QVERIFY(w && w->isVisible());
    }

    // Several orders cancelled at once, in one save, by who and when; the rest untouched.
    void cancellingMovesAndClosesInOneSave()
    {
        ScriptedPrompts& sp = *m_sp;
        state().currentUser = "maria";
        QPointer<QWidget> w = openScreen("FanularOrden");
        FlexGrid* all = grid(w);
        FlexGrid* chosen = grid(w, "Grid2");
        QCOMPARE(column(all, 0), kByDate);
        QCOMPARE(headers(chosen), (QStringList{"NUMERO", "FECHA        ", "              CLIENTE                "}));
        QCOMPARE(press(w, "Command3", sp).size(), 1);   // nothing to cancel: said, nothing asked
        QCOMPARE(sp.prompts.first().buttons, Buttons::Ok);

        auto move = [&](const QString& n) {
            clickGridRow(all, findRow(all, 0, n));
            return press(w, "Command1", sp);
        };
        for (const char* n : {"4", "9", "2"})
            QVERIFY(move(n).isEmpty());
        QCOMPARE(move("9"), QStringList{"No puede agregar dos veces el mismo Item"});
        clickGridRow(chosen, findRow(chosen, 0, "2"));
        QVERIFY(press(w, "Command2", sp).isEmpty());
        QCOMPARE(column(chosen, 0), (QStringList{"4", "9"}));
        QCOMPARE(edit(w, "txttotal")->text(), QString("2"));

        const QString untouched = cancelledBy(2), before11 = cancelledBy(11);
        QVERIFY(untouched.endsWith("|NULL|NULL"));
        QCOMPARE(press(w, "Command3", sp, Answer::No), QStringList{"Confirma la cancelacion de las Ordenes"});
        QCOMPARE(count("SELECT COUNT(*) FROM orden WHERE anulada = ?", {true}), 1);

        // The store failing after the first order: none is cancelled, the list stays.
        StoreFaults faults;
        faults.failAfter(1);
        QCOMPARE(press(w, "Command3", sp, Answer::Yes).size(), 2);
        faults.heal();
        QCOMPARE(count("SELECT COUNT(*) FROM orden WHERE anulada = ?", {true}), 1);
        QCOMPARE(column(chosen, 0), (QStringList{"4", "9"}));
        QCOMPARE(amb1().transactionDepth(), 0);

        QCOMPARE(press(w, "Command3", sp, Answer::Yes),
                 (QStringList{"Confirma la cancelacion de las Ordenes", "Las Ordenes se cancelaron exitosamente"}));
        for (const int n : {4, 9}) {
            QVERIFY(value("SELECT anulada FROM orden WHERE orden = ?", {n}).toBool());
            QCOMPARE(storedDate(value("SELECT anulacion FROM orden WHERE orden = ?", {n})), QDate::currentDate());
            QCOMPARE(value("SELECT quien_anulo FROM orden WHERE orden = ?", {n}).toString(), QString("maria"));
        }
        QCOMPARE(cancelledBy(2), untouched);
        QCOMPARE(cancelledBy(11), before11);
        QCOMPARE(column(all, 0), (QStringList{"2", "6", "3", "8", "7", "10", "1", "5"}));
        QCOMPARE(column(chosen, 0), QStringList());
        QCOMPARE(edit(w, "txttotal")->text(), QString("0"));

        // "Limpiar" empties the list to cancel.
        QVERIFY(move("5").isEmpty());
        QVERIFY(clickNamed(w, "Command4"));
        QCOMPARE(column(chosen, 0), QStringList());
    }

    // The reprint box shows the order's report, and says so plainly when there is none.
    void reprintShowsTheOrder()
    {
        ScriptedPrompts& sp = *m_sp;
        // As the menu opens it: switched to reprinting before it shows.
        QString title;
        sp.onModal("Freimprimir", [&title](QWidget* box) { title = box->windowTitle(); });
        openModal("Freimprimir", [](QWidget* box) { box->setProperty("reimprimir", true); });
        QCOMPARE(title, QString("Reimprimir Orden/Cotizacion"));

        QWidget* w = openScreen("Freimprimir");

        const QList<std::pair<QString, QString>> refused = {
            {"", "Ingrese el numero de Orden/Cotizacion."},
            {"999", "No existe la Orden/Cotizacion número 999."},
            {"1.5", "No existe la Orden/Cotizacion número 1.5."},
            {"4294967297", "El número de orden 4294967297 es demasiado grande: los números de orden "
                           "llegan hasta 2147483647."},
        };
        for (const auto& [typed, message] : refused) {
            retype(edit(w, "Text1"), typed);
            QCOMPARE(press(w, "Command1", sp), QStringList{message});
        }

        // Enter accepts; the order shows with the laboratory's heading, whichever form is ticked.
        for (const char* form : {"Option1", "Option2"}) {
            tick(control<QRadioButton>(w, form));
            retype(edit(w, "Text1"), "3");
            sp.clear();
            pressKey(edit(w, "Text1"), Qt::Key_Return);
            QCOMPARE(sp.prompts.size(), 1);
            QCOMPARE(sp.prompts[0].kind, Prompt::Modal);
            QCOMPARE(sp.prompts[0].text, QString("reporOrden"));
            const ReportRun& run = lastReportRun();
            QCOMPARE(run.filter + "|" + QString::number(run.heading), QString("Orden =3|25"));
            Recordset& rs = amb1().rs("rsrorden");
            QCOMPARE(rs.recordCount(), 1);
            rs.moveFirst();
            QCOMPARE(toInt32(rs.field("orden")), 3);
        }
    }
};

QTEST_MAIN(TestOrderLists)
#include "test_orderlists.moc"
