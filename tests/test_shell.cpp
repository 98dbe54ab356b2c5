// The program's shell: splash, sign-on, main window and menu, start panel, pause.
#include "testsupport.h"

#include "foundation/base/apperror.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/base/appstate.h"
#include "foundation/ui/registry.h"
#include "frame/Form4.h"
#include "frame/MDIForm1.h"
#include "frame/accesos.h"
#include "frame/frmSplash.h"
#include "frame/frame.h"
#include "frame/semaforo.h"
#include "frame/storeopening.h"
#include "foundation/base/values.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPointer>
#include <QTimer>
#include <QToolButton>

using namespace tq;
using namespace tq::test;

namespace {

// The stand-in screens the shell has made.
QStringList created;

// A sample of entries and their screens (test_wiring opens more, real ones);
// kModeless open inside the main window.
const QList<QPair<const char*, const char*>> kOpens = {
    {"llenaresul", "Form3view"}, {"RIMorden", "Freimprimir"}, {"refactura", "FImpresion"},
    {"busqueda", "Form9"}, {"cortedia", "DataReport2"}, {"corteintervalo", "Form8"},
};
const QStringList kModeless = {"refactura", "corteintervalo", "cortedia"};
// What a limited user (rol 2) finds grey.
const QStringList kLimited = {"exa",      "emple",   "cortedia", "corteintervalo", "blanc", "lista",
                              "respaldo", "repexpa", "dat",      "MNMIST",         "FMRVT", "comi"};

const QString kNoRights = QStringLiteral("No tiene permisos para accesar al modulo indicado");

QList<QWidget*> openWindows(const QString& name)
{
    QList<QWidget*> out;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == name && !w->isHidden())
            out << w;
    return out;
}

// Deletions asked for while others run come out on a second pass.
void flushDeletes()
{
    for (int i = 0; i < 3; ++i)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Every entry and separator of the main window's menu bar, submenus included.
QList<QAction*> menuActions(QWidget* main)
{
    QList<QAction*> out, todo = main->findChild<QMenuBar*>()->actions();
    while (!todo.isEmpty()) {
        out << todo.takeFirst();
        if (out.last()->menu())
            todo << out.last()->menu()->actions();
    }
    return out;
}

// Signs on through the keyboard (the focus starts in Text1, Tab leads to
// Text2), then clicks "Ingresar" or presses Enter.
void submit(QWidget* f, const QString& user, const QString& password, bool enter = false)
{
    QVERIFY(QTest::qWaitForWindowExposed(f));
    QTest::keyClicks(f->focusWidget(), user);
    QTest::keyClick(f->focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(f->focusWidget(), password);
    if (enter)
        QTest::keyClick(f->focusWidget(), Qt::Key_Return);
    else
        QVERIFY(clickNamed(f, "Command1"));
    flushDeletes();
}

// Closes what is open and shows the sign-on screen while the store opens
// anew, at once or once the window is painted, as the start-up does.
QWidget* startSignOn(bool oncePainted, const QString& folderProblem)
{
    QApplication::closeAllWindows();
    flushDeletes();
    amb1().closeStore();
    (oncePainted ? beginOpeningStoreOncePainted : beginOpeningStore)(folderProblem);
    return showSignOn();
}

QAction* entry(const QString& name) { return MDIForm1::instance()->findChild<QAction*>(name); }

// A stand-in screen that records its making.
void registerStandIn(const QString& name)
{
    ScreenRegistry::instance().add(name, [name](QWidget* parent) -> QWidget* {
        auto* w = new QWidget(parent);
        w->setObjectName(name);
        created << name;
        return w;
    });
}

}  // namespace

class TestShell : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TempStore> store;
    std::unique_ptr<ScriptedPrompts> sp;

private slots:
    void initTestCase()
    {
        QStringList fakes = {"Form5", "Form6", "Form1", "factura3"};   // the panel screens
        for (const auto& [action, screen] : kOpens)
            fakes << screen;
        fakes.removeDuplicates();
        for (const QString& name : fakes)
            registerStandIn(name);
    }

    void init()
    {
        store = std::make_unique<TempStore>();
        sp = std::make_unique<ScriptedPrompts>();
        created.clear();
    }

    void cleanup()
    {
        QApplication::closeAllWindows();
        flushDeletes();
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->objectName() == "MDIForm1" || w->objectName() == "Form7")
                delete w;
        sp.reset();
        store.reset();
    }

    void signOn_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("message");   // empty when let in
        QTest::addColumn<bool>("withoutData");
        auto row = [](const char* tag, const QString& user, const QString& password,
                      const QString& message, bool withoutData = false) {
            QTest::newRow(tag) << user << password << message << withoutData;
        };
        row("administrador", "admin", "admin", {});
        // The right 1 of the last "eva", the password of the first one.
        row("nombre repetido, derecho en el último", "eva", "uno", {});
        row("dos filas, la última limitada", "lia", "clave", {});
        row("apóstrofos", "O'Brien", "d'Arc", {});
        row("contraseña errada", "admin", "Admin", "Usuario o contraseña incorrectos");
        row("nombre desconocido", "nadie", "admin", kNoRights);
        row("sin derecho 1", "sinmod", "x", kNoRights);
        row("blancos no cuentan", "admin ", "admin", kNoRights);
        row("nombre repetido, derecho en el primero", "ana", "uno", kNoRights);
        row("sin datos", "admin", "admin", "Debe ingresar los datos del Laboratorio Primero", true);
        row("derechos antes que datos", "nadie", "x", kNoRights, true);
    }

    // Form7 goes either way: a refusal shows its message and ends the program,
    // a success leaves one main window with the user on the panel.
    void signOn()
    {
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(QString, message);
        QFETCH(bool, withoutData);
        amb1().execute("UPDATE tarjeta SET tarjeta = ?", {7});
        addEmployee("eva", "uno", 1, {2});
        addEmployee("eva", "dos", 1, {1});
        addEmployee("lia", "clave", 1, {1});
        addEmployee("lia", "clave", 2, {1});
        addEmployee("O'Brien", "d'Arc", 1, {1, 2, 3});
        addEmployee("sinmod", "x", 1, {2, 3});
        addEmployee("ana", "uno", 1, {1});
        addEmployee("ana", "dos", 1, {2});
        if (withoutData)
            amb1().execute("DELETE FROM datos");
        QPointer<QWidget> f = showSignOn();
        submit(f, user, password);
        QVERIFY(!f);
        if (!message.isEmpty()) {
            QCOMPARE(sp->messages(), QStringList{message});
            QCOMPARE(sp->prompts.first().icon, message == kNoRights ? Icon::Critical : Icon::None);
            QVERIFY(sp->ended && !MDIForm1::instance());
            QCOMPARE(state().currentUser, QString("Ussname"));
            return;
        }
        QVERIFY2(sp->messages().isEmpty() && !sp->ended, qPrintable(sp->lastMessage()));
        QCOMPARE(openWindows("MDIForm1").size(), 1);
        QCOMPARE(state().currentUser, user);
        QCOMPARE(state().cardPercentage, std::int16_t(7));
        QCOMPARE(entry("exa")->isEnabled(), user != "lia");   // the role of the last "lia"
        QCOMPARE(state().workingDate, dateLong(QDate::currentDate()));
        QCOMPARE(control<QLabel>(MDIForm1::instance()->panel(), "Label2")->text(), user);
    }

    // A store that can't be opened (a data folder not made, a server out of
    // reach) leaves the sign-on screen standing with the reason, never the password.
    void storeOpeningAtSignOn()
    {
        const QString why = QStringLiteral("No se pudo crear la carpeta de datos /sin/permiso.");
        QPointer<QWidget> f = startSignOn(false, why);
        QVERIFY(QTest::qWaitForWindowExposed(f));
        QTRY_COMPARE(sp->messages().size(), 1);
        QVERIFY(sp->lastMessage().startsWith("No se puede abrir la base de datos del laboratorio"));
        QVERIFY(sp->lastMessage().contains(why));
        submit(f, "admin", "admin");
        QCOMPARE(sp->messages().size(), 2);
        QVERIFY(sp->lastMessage().contains(why) && !f->isHidden() && !sp->ended);
        setStoreProblem(QString());
        QVERIFY(clickNamed(f, "Command2"));   // "Salir" is the way out
        QVERIFY(sp->ended);

        // servidor.conf names a server that isn't there.
        QFile conf(serverConfPath());
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("# servidor del laboratorio\nhost=/tmp/tq-no-existe dbname=laboratorio\n"
                   "user=caja password=secreta\n");
        conf.close();
        sp->clear();
        f = startSignOn(false, QString());
        QTRY_COMPARE(sp->messages().size(), 1);
        const QString said = sp->lastMessage();
        QVERIFY2(said.contains("No se pudo conectar con el servidor de la base de datos "
                               "(servidor /tmp/tq-no-existe, base laboratorio)"),
                 qPrintable(said));
        QVERIFY(said.contains("servidor.conf") && !said.contains("secreta"));
        QVERIFY(!amb1().isOpen() && f->isVisible());
        setStoreProblem(QString());

        if (onServer()) {   // the test's own server, through the same file
            QVERIFY(conf.open(QIODevice::WriteOnly | QIODevice::Truncate));
            conf.write(testDatabase().toUtf8());
            conf.close();
            sp->clear();
            startSignOn(false, QString());
            awaitStore();
            QVERIFY2(amb1().isOpen() && amb1().engine() == Engine::Server,
                     qPrintable(storeProblem()));
            QCOMPARE(sp->messages(), QStringList());
        }
        QFile::remove(serverConfPath());

        // At start-up the store opens once the sign-on is painted; "Ingresar" pressed
        // sooner begins it at once and waits; the laboratory's name comes when it is open.
        sp->clear();
        f = startSignOn(true, QString());
        QVERIFY(!amb1().isOpen());   // nothing painted yet, nothing begun
        submit(f, "admin", "admin");
        QVERIFY2(sp->messages().isEmpty() && amb1().isOpen(), qPrintable(sp->lastMessage()));
        QCOMPARE(openWindows("MDIForm1").size(), 1);

        QPointer<QWidget> again = startSignOn(true, QString());
        QVERIFY(QTest::qWaitForWindowExposed(again));
        QTRY_COMPARE(control<QLabel>(again, "Label2")->text(),
                     QStringLiteral("Laboratorio Clinico (configure sus datos)"));
        QVERIFY(amb1().isOpen() && sp->messages().isEmpty());
    }

    // A folder problem is told once painted with no earlier opening queued
    // (the sign-on once waited for ever).
    void folderProblemToldOncePainted()
    {
        awaitStore();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        const QString why = QStringLiteral("No se pudo crear la carpeta de datos /sin/permiso.");
        QPointer<QWidget> f = startSignOn(true, why);
        QTRY_COMPARE(sp->messages().size(), 1);
        QVERIFY(sp->lastMessage().contains(why) && f->isVisible());
        setStoreProblem(QString());
    }

    // A limited user finds exactly the listed entries grey; after "Cerrar Sesion"
    // an administrator has it all and uses it.
    void limitedRoleThenAdministrator()
    {
        addEmployee("lim", "lim", 2, {1, 2, 3});
        submit(showSignOn(), "lim", "lim");
        QPointer<MDIForm1> main(MDIForm1::instance());
        QVERIFY(main);
        for (QAction* a : menuActions(main)) {
            const QString name = a->menu() ? a->menu()->objectName() : a->objectName();
            QCOMPARE(a->isEnabled(), !kLimited.contains(name));
        }
        Form4* panel = main->panel();
        for (const char* picture : {"Image2", "Image3"}) {
            QVERIFY(!control<QToolButton>(panel, picture)->isEnabled());
            QTest::mouseClick(control<QToolButton>(panel, picture), Qt::LeftButton);
        }
        QVERIFY(created.isEmpty());
        QVERIFY(control<QLabel>(panel, "Label8")->isHidden());
        QVERIFY(control<QToolButton>(panel, "Image4")->isEnabled());   // the rest stay open

        entry("sesion")->trigger();
        flushDeletes();
        QVERIFY(!main && !sp->ended);
        QCOMPARE(state().currentUser, QString("Ussname"));
        QCOMPARE(openWindows("Form7").size(), 1);
        submit(openWindows("Form7").first(), "admin", "admin", true);   // Enter in Text2
        main = MDIForm1::instance();
        QVERIFY(main);
        for (QAction* a : menuActions(main))
            QVERIFY2(a->isEnabled(), qPrintable(a->objectName()));
        panel = main->panel();
        QVERIFY(control<QToolButton>(panel, "Image3")->isEnabled());
        QVERIFY(!control<QLabel>(panel, "Label8")->isHidden());

        // The administrator's session: the panel's screens make way for each other,
        // menu entries open theirs, a failed picture is named, leaving asks first.
        auto openNames = [main] {
            QStringList names;
            for (QMdiSubWindow* sw : main->area()->subWindowList())
                if (!sw->isHidden() && sw->widget() && sw->widget() != main->panel())
                    names << sw->widget()->objectName();
            names.sort();
            return names;
        };
        auto press = [&](const QString& what) {   // a panel picture or caption, or a menu entry
            if (QAction* a = entry(what))
                a->trigger();
            else
                QTest::mouseClick(control<QWidget>(panel, what), Qt::LeftButton);
            flushDeletes();
        };

        // Billing leaves patients open, exams close the other three, a caption
        // does what its picture does, billing from the menu closes the others.
        const QList<QPair<QString, QStringList>> steps = {
            {"Image1", {"Form5"}}, {"Image4", {"Form5", "factura3"}}, {"Image2", {"Form6"}},
            {"Label8", {"Form1"}}, {"fac", {"factura3"}},
        };
        for (const auto& [what, open] : steps) {
            press(what);
            QCOMPARE(openNames(), open);
        }
        // A screen that closes itself takes its frame along; results open modally.
        main->panelScreen("factura3")->close();
        flushDeletes();
        QCOMPARE(main->area()->subWindowList().size(), 1);
        press("Image5");
        QCOMPARE(sp->prompts.last().kind, Prompt::Modal);
        QCOMPARE(sp->prompts.last().text, QString("Form3view"));

        // Each entry opens its screen: modally, or inside the main window.
        bool reprinting = false;
        int heading = 0;
        sp->onModal("Freimprimir",
                    [&](QWidget* w) { reprinting = w->property("reimprimir").toBool(); });
        for (const auto& [name, screen] : kOpens) {
            created.clear();
            entry(name)->trigger();
            QCOMPARE(created, QStringList{screen});
            const QList<QWidget*> windows = openWindows(screen);
            if (kModeless.contains(name)) {
                QCOMPARE(windows.size(), 1);
                if (screen == QLatin1String("DataReport2"))
                    heading = windows.first()->property("encabezado").toInt();
                QCOMPARE(windows.first()->parentWidget(), main.data());
                delete windows.first();
            } else {
                QCOMPARE(sp->prompts.last().kind, Prompt::Modal);
                QCOMPARE(sp->prompts.last().text, QString(screen));
                QVERIFY(windows.isEmpty());
            }
        }
        QVERIFY2(sp->messages().isEmpty(), qPrintable(sp->lastMessage()));
        QVERIFY(reprinting);
        QCOMPARE(heading, 2);

        // A failed panel picture is named by its caption.
        ScreenRegistry::instance().add("Form5", [](QWidget*) -> QWidget* {
            throw AppError(QStringLiteral("Falta un archivo de la pantalla."));
        });
        press("Image1");
        registerStandIn("Form5");
        QCOMPARE(sp->lastMessage(),
                 QString("No se pudo abrir «Pacientes».\n\nFalta un archivo de la pantalla."));
        QCOMPARE(sp->prompts.last().icon, Icon::Critical);

        // Leaving asks first, from the panel as from the menu.
        sp->answers = {Answer::No};
        control<QToolButton>(panel, "Command1")->click();
        flushDeletes();
        QCOMPARE(sp->lastMessage(), QString("Esta Seguro que Desea Salir del Sistema"));
        QVERIFY(main && !main->isHidden() && !sp->ended);
        sp->answers = {Answer::Yes};
        entry("salir")->trigger();
        flushDeletes();
        QVERIFY(!main && sp->ended);
        QVERIFY(openWindows("Form7").isEmpty());
    }

    // Time leads from the splash to the sign-on; a key or a click on the frame ends without it.
    void splash()
    {
        for (const int way : {0, 1, 2}) {   // key, click on the frame, time
            sp->clear();
            QPointer<frmSplash> s = new frmSplash();
            s->show();
            QVERIFY(QTest::qWaitForWindowExposed(s));
            if (way == 0)
                QTest::keyClick(s, Qt::Key_Escape);
            else if (way == 1)
                QTest::mouseClick(control<QWidget>(s, "Frame1"), Qt::LeftButton);
            else
                s->timer()->setInterval(20);
            QTRY_VERIFY(!s);
            QCOMPARE(sp->ended, way != 2);
            QCOMPARE(openWindows("Form7").size(), way == 2 ? 1 : 0);
        }
        // The pause closes by itself too.
        QPointer<semaforo> pause = new semaforo();
        pause->show();
        QTRY_VERIFY_WITH_TIMEOUT(!pause, 3000);
    }
};

QTEST_MAIN(TestShell)
#include "test_shell.moc"
