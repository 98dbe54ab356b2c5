// The cash cuts and sales listings: the period screens (Form8,
// Fcorteventastarjeta, interfactanuladas, Form29), the receivables reports
// (Form33, Form35), the reports the menu and the start panel run straight,
// and Form30's report. Each is checked by what it asked to show and by the
// rows its recordset holds afterwards.
#include "testsupport.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "frame/Form4.h"
#include "frame/MDIForm1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/flexgrid.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QPointer>
#include <QRadioButton>
#include <QToolButton>

using namespace tq;
using namespace tq::test;

namespace {

// Far from any day the tests run on, whose invoices the day's cut reads.
const QDate kDay(2021, 3, 22);

int addPatient(const QString& name, const QString& surname, int insurer)
{
    return amb1()
        .insert("Pacientes", {"nombre_paciente", "apellido_paciente", "Cod_seguro"},
                {name, surname, insurer})
        .toInt();
}

// An invoice paid `card` by card (with its card details) and the rest in cash,
// with one line of exam 1.
void addInvoice(int factura, const QDate& fecha, int patient, double total, double card = 0,
                bool voided = false)
{
    amb1().insert("Factura",
                  {"factura", "fecha", "cod_paciente", "faturado", "sub_total", "total",
                   "efectivo", "tarjeta", "cheque", "anulada", "motivo_anulacion"},
                  {factura, fecha, patient, "admin", money(total), money(total),
                   money(total - card), money(card), money(0.0), voided,
                   voided ? QVariant("1") : QVariant()});   // "1": true, as a text
    amb1().insert("FacturaDetalle", {"factura", "cod_descripcionexamen", "cantidad", "subtotal"},
                  {factura, 1, 1, money(total)});
    if (card > 0)
        amb1().insert("Datostarjeta", {"factura", "num_autorizacion", "num_tarjeta"},
                      {factura, 4411, "Ana López"});
}

void addReceivable(int factura, int patient, bool paid)
{
    amb1().insert("cxc", {"factura", "Cod_paciente", "estado"}, {factura, patient, paid});
}

struct Lab {
    int ana = 0, beto = 0, carla = 0;
};

// Insurers 3 Palic and 5 "3M Salud"; Ana (Palic), Beto (3M Salud), Carla
// (no insurer). Invoices around 22/03/2021, one voided that day.
Lab fillLab()
{
    amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa) VALUES (3, 'Palic'), (5, '3M Salud')");
    amb1().execute("INSERT INTO Examenes (cod_descripcionexamen, examen, precio, valor) "
                   "VALUES (1, 'Hemograma', 150, 60)");
    Lab lab;
    lab.ana = addPatient("Ana", "López", 3);
    lab.beto = addPatient("Beto", "O'Neil", 5);
    lab.carla = addPatient("Carla", "Pérez", 0);
    addInvoice(1, kDay.addDays(-1), lab.ana, 100);
    addInvoice(2, kDay, lab.beto, 200, 200);
    addInvoice(3, kDay, lab.carla, 50, 50, true);
    addInvoice(4, kDay, lab.ana, 80);
    addInvoice(5, kDay.addDays(1), lab.carla, 30, 30);
    addInvoice(6, kDay.addDays(-1), lab.carla, 40, 0, true);
    addInvoice(7, kDay.addDays(-2), lab.beto, 90, 0, true);
    addReceivable(1, lab.ana, false);
    addReceivable(2, lab.beto, false);
    addReceivable(4, lab.ana, true);
    addReceivable(7, lab.beto, true);
    return lab;
}

// The invoice numbers a report's recordset holds now, below its groups or
// parents when it has them.
QStringList invoicesIn(const QString& command)
{
    Recordset& rs = amb1().rs(command);
    QStringList out;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        if (rs.childNames().isEmpty()) {
            out << rs.text("factura");
            continue;
        }
        Recordset rows = rs.child(rs.childNames().first());
        for (rows.moveFirst(); !rows.eof(); rows.moveNext())
            out << rows.text("factura");
    }
    out.sort();
    return out;
}

// A run asked for before the screen acts, with a filter of its own on the
// command: a screen that refuses must leave the run alone and the filter gone.
void runBefore(const QString& command, const QString& filter)
{
    ReportRun before;
    before.report = "antes";
    before.command = command;
    before.filter = filter;
    runReport(before);
}

bool closed(const QPointer<QWidget>& w) { return !w || w->isHidden(); }

// The last run asked for, in one line: report, command, «filter», heading, how.
QString lastRun()
{
    const ReportRun& r = lastReportRun();
    const char* how = r.show == ReportRun::Show::Modal ? "modal"
                      : r.show == ReportRun::Show::Printer ? "impresora" : "aparte";
    return QString("%1 %2 «%3» %4 %5").arg(r.report, r.command, r.filter).arg(r.heading).arg(how);
}

}  // namespace

class TestCuts : public QObject {
    Q_OBJECT

private slots:
    void periodScreens_data()
    {
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("head");
        QTest::addColumn<int>("heading");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QStringList>("rows");
        const QString ownWords = "La primera fecha no puede ser mayor que la segunda";
        const QString joined = "Laprimera fecha no puede ser mayor que la segunda";
        QTest::newRow("Form8") << "Form8" << "DataReport2" << "rsrcorte_Grouping"
                               << "anulada =0 and " << 2 << joined << QStringList{"2", "4"};
        QTest::newRow("Fcorteventastarjeta")
            << "Fcorteventastarjeta" << "ReporVentasTarjeta" << "rsrepventastarjeta_Grouping"
            << "" << 23 << ownWords << QStringList{"2", "3"};
        QTest::newRow("interfactanuladas") << "interfactanuladas" << "DataReport23"
                                           << "rsfactanuladas" << "anulada =1 and " << 24
                                           << joined << QStringList{"3"};
        QTest::newRow("Form29") << "Form29" << "DataReport10" << "rsRepFacgan" << "anulada=0 and "
                                << 10 << ownWords << QStringList{"2", "4"};
    }

    // A first date after the second is refused in the screen's own words,
    // the screen stays open and the last report's filter is gone; a period of
    // one day runs the screen's report on that day's rows, and the screen
    // closes.
    void periodScreens()
    {
        QFETCH(QString, screen);
        QFETCH(QString, report);
        QFETCH(QString, command);
        QFETCH(QString, head);
        QFETCH(int, heading);
        QFETCH(QString, refusal);
        QFETCH(QStringList, rows);
        TempStore store;
        ScriptedPrompts sp;
        fillLab();

        QPointer<QWidget> w = openScreen(screen);
        QVERIFY(w);
        auto* dt1 = control<QDateEdit>(w, "DT1");
        auto* dt2 = control<QDateEdit>(w, "DT2");
        QCOMPARE(dt1->displayFormat(), QString("dd/MM/yy"));
        QCOMPARE(dt2->displayFormat(), QString("dd/MM/yy"));
        QCOMPARE(dt1->date(), QDate::currentDate());

        runBefore(command, "fecha = 01/01/2000");
        sp.clear();
        dt1->setDate(kDay.addDays(1));
        dt2->setDate(kDay);
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(sp.messages(), QStringList{refusal});
        QVERIFY(!closed(w));
        QCOMPARE(lastReportRun().report, QString("antes"));
        QCOMPARE(amb1().rs(command).filter(), QString());

        dt1->setDate(kDay);
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(lastRun(), QString("%1 %2 «%3fecha >= '22/03/2021' and fecha <= '22/03/2021'» %4 "
                                    "aparte").arg(report, command, head).arg(heading));
        QCOMPARE(invoicesIn(command), rows);
        QVERIFY(closed(w));
    }

    // A period of several days takes both ends; "Salir" leaves without a report.
    void periodEndsAndLeaving()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        QPointer<QWidget> w = openScreen("Form8");
        control<QDateEdit>(w, "DT1")->setDate(kDay.addDays(-1));
        control<QDateEdit>(w, "DT2")->setDate(kDay.addDays(1));
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(invoicesIn("rsrcorte_Grouping"), (QStringList{"1", "2", "4", "5"}));
        w = openScreen("Fcorteventastarjeta");
        QVERIFY(clickNamed(w, "Command2"));
        QVERIFY(closed(w));
        QCOMPARE(lastReportRun().report, QString("DataReport2"));
    }

    // The menu's day cut runs with the laboratory's heading, the panel's cut
    // and list without it; the menu's, the panel's and Form8's cut of one day
    // hold the same invoices. The menu entries open the real screens.
    void menuAndPanelReports()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        const QDate today = QDate::currentDate();
        addInvoice(20, today, lab.ana, 70);
        addInvoice(21, today, lab.beto, 60, 0, true);
        addInvoice(22, today, lab.carla, 55, 55);
        const QString cut = "anulada =0 and fecha =" + dateLong(today);
        const QStringList todays = {"20", "22"};

        MDIForm1* main = MDIForm1::showMain();
        main->findChild<QAction*>("cortedia")->trigger();
        QCOMPARE(lastRun(), "DataReport2 rsrcorte_Grouping «" + cut + "» 2 aparte");
        QCOMPARE(invoicesIn("rsrcorte_Grouping"), todays);

        QWidget* panel = main->panel();
        QVERIFY(clickNamed(panel, "Command2"));
        QCOMPARE(lastRun(), "DataReport2 rsrcorte_Grouping «" + cut + "» 0 aparte");
        QCOMPARE(invoicesIn("rsrcorte_Grouping"), todays);
        QVERIFY(clickNamed(panel, "Command3"));
        QCOMPARE(lastRun(), QString("DataReport3 rsrexamenes «» 0 aparte"));

        QPointer<QWidget> w = openScreen("Form8");
        QVERIFY(clickNamed(w, "Command1"));   // both pickers start on today
        QCOMPARE(invoicesIn("rsrcorte_Grouping"), todays);

        // The entries of these screens open the real screens, beside the main
        // window or modally as each entry says.
        const struct {
            const char *action, *screen, *control;
            bool modal;
        } opens[] = {{"corteintervalo", "Form8", "DT1", false},
                     {"imprifactanu", "interfactanuladas", "DT1", false},
                     {"FMDIRAN", "interfactanuladas", "DT1", false},
                     {"FMRVT", "Fcorteventastarjeta", "DT1", true},
                     {"facxcob", "Form33", "Option2", true},
                     {"segpag", "Form35", "Combo1", true},
                     {"repexpa", "Form30", "Grid1", true}};
        for (const auto& o : opens) {
            bool real = false;
            sp.onModal(o.screen, [&](QWidget* s) { real = control<QWidget>(s, o.control); });
            main->findChild<QAction*>(o.action)->trigger();
            if (!o.modal) {
                QWidget* s = main->findChild<QWidget*>(o.screen, Qt::FindDirectChildrenOnly);
                real = s && s->isWindow() && s->isVisible() && control<QWidget>(s, o.control);
                delete s;
            }
            QVERIFY2(real, o.action);
        }
        delete main;
    }

    // Form33: by insurer (its own code, even for a name that begins with a
    // digit), the prompt line asking for the general report (No shows nothing,
    // Yes everything), by patient through the patient search, and by patient
    // with none chosen; "Cancelar" empties the choice.
    void receivablesByInsurerOrPatient()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        const QString general = "No ha seleccionado empresa, desea ver el reporte en general?";

        QPointer<QWidget> w = openScreen("Form33");
        auto* combo = control<QComboBox>(w, "Combo1");
        QCOMPARE(combo->itemText(0), QString(">>>Seleccione una<<<"));
        QCOMPARE(combo->findText("5   3M Salud"), 3);
        QVERIFY(combo->isEnabled() && !control<QLineEdit>(w, "Text1")->isEnabled());
        pickEntry(combo, "5   3M Salud");
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(lastRun(), QString("DataReport17 rsrcuentas «Cod_Seguro =5» 17 aparte"));
        QCOMPARE(invoicesIn("rsrcuentas"), QStringList{"2"});
        QVERIFY(closed(w));

        runBefore("rsrcuentas", "Cod_Seguro =3");
        w = openScreen("Form33");
        sp.clear();
        sp.answers = {Answer::No};
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(sp.messages(), QStringList{general});
        QCOMPARE(lastReportRun().report, QString("antes"));
        QVERIFY(!closed(w));
        sp.answers = {Answer::Yes};
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(lastRun(), QString("DataReport17 rsrcuentas «» 17 aparte"));
        QCOMPARE(invoicesIn("rsrcuentas"), (QStringList{"1", "2"}));

        w = openScreen("Form33");
        std::int16_t selector = 0;
        const auto chooseAna = [&](QWidget* picker) {
            selector = state().clientPicker;
            auto* g = control<FlexGrid>(picker, "Grid1");
            clickGridRow(g, findRow(g, 0, QString::number(lab.ana)));
        };
        sp.onModal("FBuscarCliente", chooseAna);
        pickEntry(control<QComboBox>(w, "Combo1"), "3   Palic");
        tick(control<QRadioButton>(w, "Option2"));
        QVERIFY(!control<QComboBox>(w, "Combo1")->isEnabled());
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(selector, std::int16_t(4));
        QCOMPARE(control<QLineEdit>(w, "Text1")->text(), QString("Ana, López"));
        // "Cancelar" forgets the patient (the report is then the general one)
        // and puts the combo back at its prompt line.
        QVERIFY(clickNamed(w, "Command3"));
        QCOMPARE(control<QLineEdit>(w, "Text1")->text(), QString());
        QCOMPARE(control<QComboBox>(w, "Combo1")->currentIndex(), 0);
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(lastRun(), QString("DataReport24 rscuentascliente_Grouping «» 27 aparte"));
        QCOMPARE(invoicesIn("rscuentascliente_Grouping"), (QStringList{"1", "2"}));

        w = openScreen("Form33");
        tick(control<QRadioButton>(w, "Option2"));
        sp.onModal("FBuscarCliente", chooseAna);
        QVERIFY(clickNamed(w, "Command2"));
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(lastRun(), QString("DataReport24 rscuentascliente_Grouping «Cod_paciente =%1» 27 "
                                    "aparte").arg(lab.ana));
        QCOMPARE(invoicesIn("rscuentascliente_Grouping"), QStringList{"1"});
        QVERIFY(closed(w));

    }

    // Form35: the settled invoices of one insurer, voided ones included, or of
    // all of them after the question.
    void paidByInsurer()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        QPointer<QWidget> w = openScreen("Form35");
        pickEntry(control<QComboBox>(w, "Combo1"), "5   3M Salud");
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(lastRun(), QString("DataReport18 rsrcpagadas «Cod_Seguro =5» 18 aparte"));
        QCOMPARE(invoicesIn("rsrcpagadas"), QStringList{"7"});
        QVERIFY(closed(w));

        w = openScreen("Form35");
        sp.clear();
        sp.answers = {Answer::Yes};
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(sp.messages().value(0),
                 QString("No ha seleccionado empresa, desea ver el reporte en general?"));
        QCOMPARE(lastRun(), QString("DataReport18 rsrcpagadas «» 18 aparte"));
        QCOMPARE(invoicesIn("rsrcpagadas"), (QStringList{"4", "7"}));
    }

    // Form30 shows the exams of the chosen patient, modally, with its heading.
    void examsOfPatient()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        QPointer<QWidget> w = openScreen("Form30");
        auto* grid = control<DataGrid>(w, "Grid1");
        int row = -1;
        for (int r = 0; r < grid->rows(); ++r)
            if (grid->value(r, "CODIGO").toInt() == lab.ana)
                row = r;
        QVERIFY(row >= 0);
        sp.answers = {Answer::Yes};
        clickRow(grid, row);
        QCOMPARE(lastRun(), QString("DataReport11 rsRepClienteexamen_Grouping «Cod_Paciente =%1» 11 "
                                    "modal").arg(lab.ana));
        QCOMPARE(invoicesIn("rsRepClienteexamen_Grouping"), (QStringList{"1", "4"}));
        w->close();
    }
};

QTEST_MAIN(TestCuts)
#include "test_cuts.moc"
