// The cash cuts and sales listings: the period screens (Form8,
// Fcorteventastarjeta, interfactanuladas, Form29), the receivables reports
// (Form33, Form35) and the reports the menu and the start panel run
// straight. Each is checked by what it asked to show and by the rows its
// recordset holds afterwards.
#include "report_fixture.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "frame/Form4.h"
#include "frame/MDIForm1.h"
#include "foundation/ui/flexgrid.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

// Far from any day the tests run on, whose invoices the day's cut reads.
const QDate kDay(2021, 3, 22);

struct Lab {
    int ana = 0, beto = 0, carla = 0;
};

// Insurers 3 Palic and 5 "3M Salud"; Ana (Palic), Beto (3M Salud), Carla
// (no insurer). Invoices of one exam around 22/03/2021, some on a card, one
// voided that day.
Lab fillLab()
{
    amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa) VALUES (3, 'Palic'), (5, '3M Salud')");
    amb1().execute("INSERT INTO Examenes (cod_descripcionexamen, examen, precio, valor) "
                   "VALUES (1, 'Hemograma', 150, 60)");
    const Lab lab{addPatient("Ana", "López", 3), addPatient("Beto", "O'Neil", 5),
                  addPatient("Carla", "Pérez")};
    addInvoice(1, kDay.addDays(-1), lab.ana, {{1, 1}});
    addInvoice(2, kDay, lab.beto, {{1, 1}}, {0, 150});
    addInvoice(3, kDay, lab.carla, {{1, 1}}, {0, 150}, true);
    addInvoice(4, kDay, lab.ana, {{1, 1}});
    addInvoice(5, kDay.addDays(1), lab.carla, {{1, 1}}, {0, 150});
    addInvoice(6, kDay.addDays(-1), lab.carla, {{1, 1}}, {}, true);
    addInvoice(7, kDay.addDays(-2), lab.beto, {{1, 1}}, {}, true);
    amb1().execute("UPDATE Factura SET motivo_anulacion = '1' WHERE anulada = TRUE");   // "1": true, as a text
    for (const auto& [factura, patient, paid] : {std::tuple{1, lab.ana, false}, {2, lab.beto, false},
                                                 {4, lab.ana, true}, {7, lab.beto, true}})
        amb1().insert("cxc", {"factura", "Cod_paciente", "estado"}, {factura, patient, paid});
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
    runReport(ReportRun{.report = "antes", .command = command, .filter = filter});
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
        QTest::addColumn<QString>("run");   // report, command, «filter» with the dates as %1, heading
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QStringList>("rows");
        const QString ownWords = "La primera fecha no puede ser mayor que la segunda";
        const QString joined = "Laprimera fecha no puede ser mayor que la segunda";
        QTest::newRow("Form8") << "Form8" << "DataReport2 rsrcorte_Grouping «anulada =0 and %1» 2"
                               << joined << QStringList{"2", "4"};
        QTest::newRow("Fcorteventastarjeta")
            << "Fcorteventastarjeta" << "ReporVentasTarjeta rsrepventastarjeta_Grouping «%1» 23"
            << ownWords << QStringList{"2", "3"};
        QTest::newRow("interfactanuladas")
            << "interfactanuladas" << "DataReport23 rsfactanuladas «anulada =1 and %1» 24" << joined
            << QStringList{"3"};
        QTest::newRow("Form29") << "Form29" << "DataReport10 rsRepFacgan «anulada=0 and %1» 10"
                                << ownWords << QStringList{"2", "4"};
    }

    // A first date after the second is refused in the screen's own words,
    // the screen stays open and the last report's filter is gone; a period of
    // one day runs the screen's report on that day's rows, both ends
    // included, and the screen closes. "Salir" leaves without a report.
    void periodScreens()
    {
        QFETCH(QString, screen);
        QFETCH(QString, run);
        QFETCH(QString, refusal);
        QFETCH(QStringList, rows);
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        const QString command = run.section(' ', 1, 1);

        QPointer<QWidget> w = openScreen(screen);
        QVERIFY(w);
        auto* dt1 = control<QDateEdit>(w, "DT1");
        auto* dt2 = control<QDateEdit>(w, "DT2");
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
        QCOMPARE(lastRun(),
                 run.arg("fecha >= '22/03/2021' and fecha <= '22/03/2021'") + " aparte");
        QCOMPARE(invoicesIn(command), rows);
        QVERIFY(closed(w));

        runBefore(command, "");
        w = openScreen(screen);
        QVERIFY(clickNamed(w, "Command2"));
        QVERIFY(closed(w));
        QCOMPARE(lastReportRun().report, QString("antes"));
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
        addInvoice(20, today, lab.ana, {{1, 1}});
        addInvoice(21, today, lab.beto, {{1, 1}}, {}, true);
        addInvoice(22, today, lab.carla, {{1, 1}}, {0, 150});
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

    // The invoices an insurer owes (Form33) or has settled, voided ones
    // included (Form35): one insurer by its own code, even for a name that
    // begins with a digit; none chosen asks for the general report, No shows
    // nothing and leaves the last run alone, Yes shows every insurer's.
    void receivablesByInsurer()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        const struct {
            const char *screen, *run;   // the run, its filter as %1
            QStringList insured, all;   // the invoices of 3M Salud, of every insurer
        } cases[] = {{"Form33", "DataReport17 rsrcuentas «%1» 17 aparte", {"2"}, {"1", "2"}},
                     {"Form35", "DataReport18 rsrcpagadas «%1» 18 aparte", {"7"}, {"4", "7"}}};
        for (const auto& c : cases) {
            const QString command = QString(c.run).section(' ', 1, 1);
            QPointer<QWidget> w = openScreen(c.screen);
            pickEntry(control<QComboBox>(w, "Combo1"), "5   3M Salud");
            QVERIFY(clickNamed(w, "Command1"));
            QCOMPARE(lastRun(), QString(c.run).arg("Cod_Seguro =5"));
            QCOMPARE(invoicesIn(command), c.insured);
            QVERIFY(closed(w));

            runBefore(command, "Cod_Seguro =3");
            w = openScreen(c.screen);
            sp.clear();
            sp.answers = {Answer::No, Answer::Yes};
            QVERIFY(clickNamed(w, "Command1"));
            QCOMPARE(sp.messages(),
                     QStringList{"No ha seleccionado empresa, desea ver el reporte en general?"});
            QVERIFY2(lastReportRun().report == "antes" && !closed(w), c.screen);
            QVERIFY(clickNamed(w, "Command1"));
            QCOMPARE(lastRun(), QString(c.run).arg(""));
            QCOMPARE(invoicesIn(command), c.all);
        }
    }

    // Form33 by patient: the patient chosen through the patient search,
    // "Cancelar" forgets the patient (the report is then the general one)
    // and puts the combo back at its prompt line; chosen again, only theirs.
    void receivablesByPatient()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        QPointer<QWidget> w = openScreen("Form33");
        auto* combo = control<QComboBox>(w, "Combo1");
        QCOMPARE(combo->itemText(0), QString(">>>Seleccione una<<<"));
        QCOMPARE(combo->findText("5   3M Salud"), 3);
        QVERIFY(combo->isEnabled() && !control<QLineEdit>(w, "Text1")->isEnabled());
        std::int16_t selector = 0;
        const auto chooseAna = [&](QWidget* picker) {
            selector = state().clientPicker;
            auto* g = control<FlexGrid>(picker, "Grid1");
            clickGridRow(g, findRow(g, 0, QString::number(lab.ana)));
        };
        sp.onModal("FBuscarCliente", chooseAna);
        pickEntry(combo, "3   Palic");
        tick(control<QRadioButton>(w, "Option2"));
        QVERIFY(!combo->isEnabled());
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(selector, std::int16_t(4));
        QCOMPARE(control<QLineEdit>(w, "Text1")->text(), QString("Ana, López"));
        QVERIFY(clickNamed(w, "Command3"));
        QCOMPARE(control<QLineEdit>(w, "Text1")->text(), QString());
        QCOMPARE(combo->currentIndex(), 0);
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
};

QTEST_MAIN(TestCuts)
#include "test_cuts.moc"
