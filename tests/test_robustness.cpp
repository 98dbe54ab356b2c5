// Every screen and the main window under a random user on a demo laboratory:
// no crash, failures told in whole Spanish sentences, no exception reaching
// Qt's loop, no window or transaction left behind, the store whole.
// TQ_ROBUSTEZ=Form1:3 replays one screen and seed (TQ_ROBUSTEZ=Form1: all its
// seeds), telling each event and what it showed.
#include "invariants.h"
#include "random_user.h"
#include "store_faults.h"
#include "testsupport.h"

#include "billing/invoice/demoinvoices.h"
#include "lab/demoresults.h"
#include "foundation/base/apperror.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/data/demo.h"
#include "foundation/reports/layout.h"
#include "foundation/ui/registry.h"
#include "frame/MDIForm1.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QElapsedTimer>
#include <QFile>
#include <QHashSeed>
#include <QPointer>
#include <QRegularExpression>
#include <QTimer>
#include <QtTest>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <utility>

using namespace tq;
using namespace tq::test;

namespace {

// Per screen: seeds and events (a modal screen gets kModalEvents more).
// TQ_ROBUSTEZ_SEMILLAS=50 hunts with more seeds.
constexpr int kSeeds = 4;
constexpr int kEvents = 250;
constexpr int kModalEvents = 12;
// The main window joins the run as the administrator finds it.
const QString kMainWindow = QStringLiteral("MDIForm1");

// Exceptions that reached Qt's event delivery; the run takes them as faults.
QStringList g_escaped;

class GuardedApplication : public QApplication {
public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& e) {   // our AppError among them
            g_escaped << QStringLiteral("%1 (%2)").arg(QString::fromUtf8(e.what()), receiver->objectName());
        } catch (...) {
            g_escaped << QStringLiteral("excepción desconocida (%1)").arg(receiver->objectName());
        }
        return false;
    }
};

// Where the run is, ready to be written by the crash handler.
char g_where[512] = "antes de la primera pantalla\n";

void sayWhere(const QString& screen, int seed, int event, const QString& what)
{
    const QByteArray w = what.left(120).toUtf8();
    std::snprintf(g_where, sizeof g_where,
                  "pantalla %s, semilla %d, evento %d (%s)\nrepítalo con TQ_ROBUSTEZ=%s:%d\n",
                  screen.toUtf8().constData(), seed, event, w.constData(),
                  screen.toUtf8().constData(), seed);
}

extern "C" void onFatalSignal(int sig)
{
    const auto put = [](const char* text) { (void)!write(STDERR_FILENO, text, std::strlen(text)); };
    put("\n*** El programa se cayó (");
    put(sig == SIGSEGV ? "SIGSEGV" : sig == SIGABRT ? "SIGABRT" : "SIGFPE");
    put(") en ");
    put(g_where);
    std::signal(sig, SIG_DFL);   // once only: the default ends the program as it would have
    std::raise(sig);
}

// Words of a driver's or the runtime's own (English) text.
const QRegularExpression kForeign(
    QStringLiteral("\\b(the|failed|unable|cannot|could not|invalid|no such|constraint|syntax|"
                   "driver|exception|mismatch|database|parameter|not an error|out of memory|"
                   "std|bad_alloc|QSql\\w*)\\b"),
    QRegularExpression::CaseInsensitiveOption);

// Our own failure sentences read as whole Spanish sentences.
QString unnatural(const QString& text)
{
    const QString first = text.section(QLatin1Char('\n'), 0, 0);
    if (!first.endsWith(QLatin1Char('.')))
        return QStringLiteral("la frase no termina");
    for (const char* bad : {" de el ", " a el ", " de la lista de el", " de el."})
        if (first.contains(QLatin1String(bad)))
            return QStringLiteral("dice \"%1\"").arg(QString::fromLatin1(bad).trimmed());
    return {};
}

QString excerpt(const QString& text) { return text.left(160).replace(QLatin1Char('\n'), QLatin1Char(' ')); }

void flushPosted()
{
    for (int i = 0; i < 3; ++i)
        QCoreApplication::sendPostedEvents();
}

QList<QPointer<QWidget>> ownerlessWindows()
{
    QList<QPointer<QWidget>> out;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (!w->parentWidget())
            out << w;
    return out;
}

// Every window goes, so that the next run starts alike.
int closeEveryWindow()
{
    for (int pass = 0; pass < 3; ++pass) {
        for (const QPointer<QWidget>& w : ownerlessWindows())
            if (w && w->isVisible())
                w->close();
        flushPosted();
        for (const QPointer<QWidget>& w : ownerlessWindows())
            delete w.data();
        flushPosted();
    }
    return int(ownerlessWindows().size());
}

QtMessageHandler g_testlogHandler = nullptr;

}  // namespace

class TestRobustness : public QObject {
    Q_OBJECT

    QTemporaryDir m_templateDir;
    QString m_template;   // a demo laboratory, copied afresh for every run
    QStringList m_faults;
    QTimer m_watchdog;
    QStringList m_ownLoops;

    QWidget* open(const QString& screen)
    {
        if (screen == kMainWindow) {   // the run may have changed the administrator's account
            state().currentUser = QStringLiteral("admin");
            return MDIForm1::showMain();
        }
        QWidget* w = ScreenRegistry::instance().create(screen, nullptr);
        if (!w)
            return nullptr;
        w->setAttribute(Qt::WA_DeleteOnClose);
        w->show();
        return w;
    }

    // A label's accessible name must not hide what it shows from a screen reader.
    void readLabels(const QString& screen, int seed, const QWidget* window)
    {
        if (!window)
            return;
        for (const QLabel* label : window->findChildren<QLabel*>())
            if (!label->accessibleName().isEmpty() && !label->text().isEmpty()
                && !label->accessibleName().contains(label->text()))
                fault(screen, seed, QStringLiteral("la etiqueta %1 muestra «%2», pero un lector de "
                                                   "pantalla lee «%3»")
                                        .arg(label->objectName(), excerpt(label->text()),
                                             label->accessibleName()));
    }

    void fault(const QString& screen, int seed, const QString& text)
    {
        const QString line = QStringLiteral("%1, semilla %2, %3").arg(screen).arg(seed).arg(text);
        if (m_faults.contains(line))
            return;
        qWarning().noquote() << "FALLO:" << line;
        m_faults << line;
    }

    void runOne(const QString& screen, int seed, bool replay)
    {
        QTemporaryDir dir;
        resetState();
        setDataFolder(dir.path());
        if (onServer()) {   // a copy of the template database
            amb1().closeStore();
            amb1().openServer(serverDatabase(QStringLiteral("prueba"), QStringLiteral("plantilla")));
        } else {
            const QString db = QDir(dir.path()).filePath(QStringLiteral("lab.db"));
            QVERIFY(QFile::copy(m_template, db));
            amb1().openStore(db);
        }
        state().currentUser = QStringLiteral("admin");
        state().workingDate = dateLong(QDate::currentDate());

        StoreFaults store;
        Dice dice(quint32(seed) * 7919u + quint32(qHash(screen, 0)));   // the same every run
        RandomPrompts prompts(dice, dir.path());
        RandomUser user(dice);
        int event = 0;
        user.announce = [&](const QString& what) {
            sayWhere(screen, seed, event, what);
            if (replay)
                qInfo().noquote() << QStringLiteral("  %1: %2").arg(event).arg(what);
        };
        int told = 0;

        int depth = 0;   // steps inside a modal screen opened by another step
        auto step = [&](QWidget* window) {
            sayWhere(screen, seed, event, QStringLiteral("sin elegir"));
            // What the step of an outer window had seen stays its own.
            const QStringList outerEscaped = std::exchange(g_escaped, {});
            const QStringList outerLoops = std::exchange(m_ownLoops, {});
            ++depth;
            m_watchdog.start();
            try {
                user.act(window);
                flushPosted();
            } catch (const std::exception& e) {
                g_escaped << QString::fromUtf8(e.what());
            }
            if (--depth == 0)
                m_watchdog.stop();
            for (int i = 0; i < 5 && QApplication::activePopupWidget(); ++i)
                QApplication::activePopupWidget()->close();
            for (const QString& e : std::as_const(g_escaped))
                fault(screen, seed, QStringLiteral("evento %1: una excepción llegó al bucle de eventos "
                                                   "de Qt: %2").arg(event).arg(excerpt(e)));
            for (const QString& w : std::as_const(m_ownLoops))
                fault(screen, seed, QStringLiteral("evento %1: %2 abrió su propio bucle en vez de pasar "
                                                   "por el servicio de avisos").arg(event).arg(w));
            for (; replay && told < prompts.prompts.size(); ++told)
                qInfo().noquote() << "     aviso:" << excerpt(prompts.prompts[told].text);
            g_escaped = outerEscaped;
            m_ownLoops = outerLoops;
            ++event;
        };
        prompts.onModal = [&](QWidget* modal) {
            QPointer<QWidget> alive(modal);
            for (int i = 0; i < kModalEvents && alive && alive->isVisible(); ++i)
                step(modal);
        };

        QPointer<QWidget> target;
        for (int i = 0; i < kEvents; ++i) {
            // Now and then the store fails, from the first, second or third write on, and heals later.
            if (dice.chance(3)) {
                const int writes = dice.below(3);
                user.announce(store.failing()
                                  ? QStringLiteral("la base de datos vuelve a aceptar cambios")
                                  : QStringLiteral("la base de datos falla después de %1 escrituras").arg(writes));
                store.failing() ? store.heal() : store.failAfter(writes);
            }
            if (!target || !target->isVisible()) {
                sayWhere(screen, seed, event, QStringLiteral("abre la pantalla"));
                target = open(screen);
                flushPosted();
                if (!target) {
                    fault(screen, seed, QStringLiteral("evento %1: la pantalla no se pudo abrir").arg(event));
                    break;
                }
                readLabels(screen, seed, target);
            }
            step(target);
        }
        readLabels(screen, seed, target);
        sayWhere(screen, seed, event, QStringLiteral("cierra las ventanas"));
        const int left = closeEveryWindow();
        if (left)
            fault(screen, seed, QStringLiteral("quedaron %1 ventanas sin cerrar").arg(left));

        for (const Prompt& p : std::as_const(prompts.prompts))
            if (const auto m = kForeign.match(p.text); m.hasMatch()
                && (p.kind == Prompt::Message || p.kind == Prompt::Input))
                fault(screen, seed, QStringLiteral("el usuario leyó texto que no es del laboratorio "
                                                   "(\"%1\"): %2").arg(m.captured(), excerpt(p.text)));
        for (const QString& text : std::as_const(prompts.boundaryMessages))
            if (const QString why = unnatural(text); !why.isEmpty())
                fault(screen, seed, QStringLiteral("mensaje de error poco natural (%1): %2")
                                        .arg(why, excerpt(text)));
        if (amb1().inTransaction())
            fault(screen, seed, QStringLiteral("quedó una transacción abierta"));
        for (const QString& broken : brokenInvariants())
            fault(screen, seed, QStringLiteral("la base de datos quedó mal: %1").arg(broken));

        amb1().closeStore();
    }

private slots:
    void initTestCase()
    {
        for (int sig : {SIGSEGV, SIGABRT, SIGFPE})
            std::signal(sig, onFatalSignal);
        // The offscreen platform's notice on every new window says nothing of the program.
        g_testlogHandler = qInstallMessageHandler([](QtMsgType t, const QMessageLogContext& c,
                                                     const QString& s) {
            if (!s.startsWith(QLatin1String("This plugin does not support")))
                g_testlogHandler(t, c, s);
        });
        m_template = QDir(m_templateDir.path()).filePath(QStringLiteral("lab.db"));
        setDataFolder(m_templateDir.path());
        onServer() ? amb1().openServer(serverDatabase(QStringLiteral("plantilla")))
                   : amb1().openStore(m_template);
        fillDemo(amb1().connection());
        addDemoInvoices();
        addDemoResults();
        amb1().closeStore();

        // Our own runs never spin an event loop; a screen that opens a dialog
        // with its own (exec) instead of the prompt service is caught here.
        m_watchdog.setInterval(1000);
        connect(&m_watchdog, &QTimer::timeout, this, [this] {
            QWidget* stuck = QApplication::activeModalWidget();
            if (!stuck && !(stuck = QApplication::activePopupWidget()))
                return;   // a long step that lets events through, not a dialog
            m_ownLoops << QString::fromLatin1(stuck->metaObject()->className());
            stuck->close();
        });
    }

    // The run's detectors must see what they are there for: a broken row, a
    // failure let out to Qt, a dialog of a screen's own.
    void detectorsSeeTheirFaults()
    {
        TempStore store;
        QCOMPARE(brokenInvariants(), QStringList());
        const auto breakRights = [] {
            amb1().execute(QStringLiteral("INSERT INTO usuariosmodulos (cod_empleado, cod_modulo) "
                                          "VALUES (?, ?), (?, ?)"),
                           {QStringLiteral("1.5"), 1, 2, QStringLiteral("uno")});
        };
        if (onServer()) {   // the server's typed columns refuse such rows themselves
            QVERIFY_THROWS_EXCEPTION(DbError, breakRights());
        } else {
            breakRights();
            QCOMPARE(brokenInvariants(),
                     QStringList{QStringLiteral("usuariosmodulos: pares de números enteros: 2 filas")});
        }

        QWidget window;
        auto* button = new QPushButton(QStringLiteral("Guardar"), &window);
        connect(button, &QPushButton::clicked, [] { throw AppError(QStringLiteral("sin frontera")); });
        window.show();
        Dice dice(1);
        RandomUser user(dice);
        g_escaped.clear();
        for (int i = 0; i < 100 && g_escaped.isEmpty() && window.isVisible(); ++i)
            user.act(&window);
        QCOMPARE(g_escaped.size(), 1);
        QVERIFY(g_escaped.first().startsWith(QStringLiteral("sin frontera")));
        g_escaped.clear();

        QPushButton own(QStringLiteral("Aceptar"));
        connect(&own, &QPushButton::clicked, [] {
            QMessageBox::information(nullptr, QStringLiteral("Tarvenquil"), QStringLiteral("Hola"));
        });
        own.show();
        m_ownLoops.clear();
        m_watchdog.start();
        QTest::mouseClick(&own, Qt::LeftButton);
        m_watchdog.stop();
        QCOMPARE(m_ownLoops, QStringList{QStringLiteral("QMessageBox")});
        m_ownLoops.clear();
    }

    void everyScreenUnderRandomUse()
    {
        const QString only = qEnvironmentVariable("TQ_ROBUSTEZ");
        const QString onlyScreen = only.section(QLatin1Char(':'), 0, 0);
        const QString onlySeed = only.section(QLatin1Char(':'), 1, 1);

        const int seeds = qMax(kSeeds, qEnvironmentVariableIntValue("TQ_ROBUSTEZ_SEMILLAS"));
        QStringList screens = ScreenRegistry::instance().names();
        screens << kMainWindow;
        QElapsedTimer clock;
        clock.start();
        int covered = 0;
        for (const QString& screen : std::as_const(screens)) {
            if (!onlyScreen.isEmpty() && screen != onlyScreen)
                continue;
            ++covered;
            // The report previews are one screen over many layouts: half the seeds each.
            const int ownSeeds = report::findLayout(screen) ? std::max(1, seeds / 2) : seeds;
            for (int seed = 1; seed <= ownSeeds; ++seed)
                if (onlySeed.isEmpty() || QString::number(seed) == onlySeed)
                    runOne(screen, seed, !only.isEmpty());
        }
        qInfo().noquote() << QStringLiteral("Pantallas cubiertas: %1 de %2, %3 semillas cada una "
                                            "(la mitad las vistas previas de informes), %4 s")
                                 .arg(covered).arg(screens.size()).arg(onlySeed.isEmpty() ? seeds : 1)
                                 .arg(clock.elapsed() / 1000.0, 0, 'f', 1);
        QVERIFY2(covered > 0, qPrintable("ninguna pantalla se llama " + onlyScreen));
        QVERIFY2(m_faults.isEmpty(), qPrintable(QStringLiteral("%1 fallos:\n").arg(m_faults.size())
                                                + m_faults.join(QLatin1Char('\n'))));
    }
};

int main(int argc, char** argv)
{
    // The same seed must give the same run: nothing may depend on hash order.
    QHashSeed::setDeterministicGlobalSeed();
    GuardedApplication app(argc, argv);
    TestRobustness test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "test_robustness.moc"
