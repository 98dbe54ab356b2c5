// Menu entries and the panel shortcut reach the real screens (test_shell uses stand-ins).
#include "testsupport.h"

#include "foundation/base/appstate.h"
#include "frame/MDIForm1.h"
#include "frame/accesos.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QToolButton>

using namespace tq;
using namespace tq::test;

class TestWiring : public QObject {
    Q_OBJECT
private slots:
    void menuEntriesAndShortcutOpenTheirScreens()
    {
        TempStore store;
        ScriptedPrompts sp;
        QCOMPARE(signOn(QStringLiteral("admin"), QStringLiteral("admin")), SignOnOutcome::Granted);
        MDIForm1* main = MDIForm1::instance();

        // Entry, the screen it opens, and a control only the real screen has.
        const struct {
            const char *entry, *screen, *control;
        } cases[] = {
            {"contra", "FcambioContrasena", "Text4"}, {"dat", "FDatos", "boton2"},
            {"MNMIST", "FInpuestoTarjeta", "boton2"}, {"MNDTE", "FdescuentoTedad", "boton2"},
            {"doc", "Fdoctores", "DataGrid1"},        {"respaldo", "frmBackup", "Command1"},
            {"modifval", "Form342", "Combo1"},
        };
        for (const auto& c : cases) {
            bool real = false;
            sp.onModal(c.screen, [&](QWidget* w) { real = control<QWidget>(w, c.control) != nullptr; });
            auto* entry = main->findChild<QAction*>(c.entry);
            QVERIFY2(entry && entry->isEnabled(), c.entry);
            entry->trigger();
            QVERIFY2(real, c.entry);
        }
        // An empty store of doctors is the only message on the way.
        QCOMPARE(sp.messages(), QStringList{QStringLiteral("No existen Doctores ingresados")});

        // Employees open inside the main window, from the panel or the menu, and
        // asked again the open screen comes forward.
        auto* image3 = main->findChild<QToolButton*>("Image3");
        QVERIFY(image3 && image3->isEnabled());
        image3->click();
        QMdiSubWindow* sub = main->findChild<QMdiArea*>()->activeSubWindow();
        QCOMPARE(sub ? sub->widget()->objectName() : QString(), QStringLiteral("Form1"));
        QVERIFY(control<QWidget>(sub->widget(), "DataGrid1"));
        QCOMPARE(state().screenNumber, std::int16_t(1));
        image3->click();
        main->findChild<QAction*>("emple")->trigger();
        int copies = 0;
        for (QMdiSubWindow* w : main->findChild<QMdiArea*>()->subWindowList())
            copies += w->widget() && w->widget()->objectName() == QLatin1String("Form1");
        QCOMPARE(copies, 1);
        main->close();
    }
};

QTEST_MAIN(TestWiring)
#include "test_wiring.moc"
