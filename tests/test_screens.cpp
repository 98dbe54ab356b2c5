// Every screen opens whole on the smallest screen the laboratory uses (the
// program runs here on an offscreen display of 1366 x 768): opened as the
// menu, the start panel or its caller opens it, no grid needs a horizontal
// scroll bar to show its columns, no field, label or button lies outside the
// window or under another, and a preview shows a page's whole width and at
// least half its height. A size and place the user gives a screen come back.
#include "testsupport.h"

#include "billing/invoice/demoinvoices.h"
#include "lab/demoresults.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/data/demo.h"
#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/layout.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/placement.h"
#include "foundation/ui/registry.h"
#include "frame/MDIForm1.h"

#include <QtWidgets>
#include <QtTest>

using namespace tq;
using namespace tq::test;

namespace {

// What a person reads or uses on a screen; its insides are its own.
bool isLeaf(const QWidget* w)
{
    if (const auto* label = qobject_cast<const QLabel*>(w))
        return !label->text().isEmpty() || !label->pixmap().isNull();
    return qobject_cast<const QAbstractButton*>(w) || qobject_cast<const QLineEdit*>(w)
           || qobject_cast<const QComboBox*>(w) || qobject_cast<const QAbstractSpinBox*>(w)
           || qobject_cast<const QAbstractScrollArea*>(w);
}

void collectLeaves(QWidget* under, QWidget* screen, QList<QWidget*>& out)
{
    for (QWidget* w : under->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (w->isWindow() || !w->isVisibleTo(screen))
            continue;
        if (isLeaf(w))
            out << w;
        else
            collectLeaves(w, screen, out);
    }
}

QString nameOf(const QWidget* w)
{
    return w->objectName().isEmpty() ? QString::fromLatin1(w->metaObject()->className())
                                     : w->objectName();
}

QString text(const QRect& r)
{
    return QStringLiteral("%1x%2 en %3,%4").arg(r.width()).arg(r.height()).arg(r.x()).arg(r.y());
}

}  // namespace

class TestScreens : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    QStringList m_faults;
    QStringList m_checked;
    QStringList m_tooWide;

    // What is wrong with `screen` as it shows now, in the words of a report.
    QStringList problemsOf(QWidget* screen)
    {
        QCoreApplication::processEvents();
        QStringList out;
        QWidget* window = screen->isWindow() ? screen : screen->parentWidget();
        const QRect space = spaceFor(window);
        const QRect frame = screen->isWindow() ? window->frameGeometry() : window->geometry();
        if (!space.contains(frame))
            out << QStringLiteral("la ventana (%1) sale del espacio que hay (%2)").arg(text(frame), text(space));

        QList<QWidget*> leaves;
        collectLeaves(screen, screen, leaves);
        QList<QRect> places;
        for (QWidget* w : std::as_const(leaves)) {
            const QRect r(w->mapTo(screen, QPoint(0, 0)), w->size());
            places << r;
            if (!screen->rect().contains(r))
                out << QStringLiteral("%1 (%2) queda fuera de la ventana (%3x%4)")
                           .arg(nameOf(w), text(r)).arg(screen->width()).arg(screen->height());
        }
        for (int i = 0; i < leaves.size(); ++i)
            for (int j = i + 1; j < leaves.size(); ++j)
                if (const QRect both = places[i] & places[j]; both.width() > 1 && both.height() > 1)
                    out << QStringLiteral("%1 queda debajo de %2").arg(nameOf(leaves[j]), nameOf(leaves[i]));

        for (QAbstractScrollArea* area : screen->findChildren<QAbstractScrollArea*>()) {
            if (!area->isVisible())
                continue;
            const int all = widthToShowAll(area);
            if (all <= 0)
                continue;
            if (area->horizontalScrollBar()->maximum() > 0)
                out << QStringLiteral("%1 necesita %2 px de ancho para lo que muestra y tiene %3")
                           .arg(nameOf(area)).arg(widthToShowColumns(area)).arg(area->width());
            if (const int drawn = widthToShowColumns(area); all > drawn + 1)
                m_tooWide << QStringLiteral("%1: %2 necesita %3 px; sus columnas se muestran en %4 px")
                                 .arg(screen->objectName(), nameOf(area)).arg(all).arg(drawn);
            if (auto* page = qobject_cast<QScrollArea*>(area); page && page->widget()
                && page->viewport()->height() * 2 < page->widget()->minimumHeight())
                out << QStringLiteral("%1 muestra %2 px de una página de %3")
                           .arg(nameOf(area)).arg(page->viewport()->height())
                           .arg(page->widget()->minimumHeight());
        }
        if (auto* preview = qobject_cast<ReportPreview*>(screen)) {
            auto* zoom = control<QComboBox>(preview, QStringLiteral("Zoom"));
            auto* pages = control<QScrollArea>(preview, QStringLiteral("Hojas"));
            auto* page = control<QLabel>(preview, QStringLiteral("Hoja"));
            const QSizeF shown = page->pixmap().deviceIndependentSize();
            if (zoom->currentText() != QLatin1String("Ajustar al ancho"))
                out << QStringLiteral("la vista previa abre en «%1»").arg(zoom->currentText());
            if (pages->horizontalScrollBar()->maximum() > 0)
                out << QStringLiteral("la página no se ve de lado a lado");
            if (pages->viewport()->height() * 2 < shown.height())
                out << QStringLiteral("la vista previa muestra %1 px de una página de %2")
                           .arg(pages->viewport()->height()).arg(shown.height());
        }
        return out;
    }

    void check(QWidget* screen)
    {
        if (!screen || m_checked.contains(screen->objectName()))
            return;
        m_checked << screen->objectName();
        for (const QString& p : problemsOf(screen))
            m_faults << screen->objectName() + QStringLiteral(": ") + p;
    }

    // The screens shown now, each in its own window or a sub-window of the main one.
    static QList<QWidget*> shownScreens()
    {
        QList<QWidget*> out;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->isVisible() && !qobject_cast<MDIForm1*>(w))
                out << w;
        if (MDIForm1* main = MDIForm1::instance())
            for (QMdiSubWindow* sw : main->area()->subWindowList())
                if (sw->isVisible() && sw->widget() && sw->widget()->objectName() != QLatin1String("Form4"))
                    out << sw->widget();
        return out;
    }

    static void closeShown()
    {
        for (QWidget* w : shownScreens())
            (w->isWindow() ? w : w->parentWidget())->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // Runs `open` and checks every screen it brings up.
    void openAndCheck(const std::function<void()>& open)
    {
        open();
        for (QWidget* w : shownScreens())
            check(w);
        closeShown();
    }

private slots:
    void initTestCase()
    {
        const QRect display = QGuiApplication::primaryScreen()->geometry();
        QCOMPARE(display.size(), QSize(kSmallestScreenWidth, kSmallestScreenHeight));
        QSettings().remove(QStringLiteral("pantallas"));
        setDataFolder(m_dir.path());
        onServer() ? amb1().openServer(serverDatabase(QStringLiteral("demo")))
                   : amb1().openStore(QDir(m_dir.path()).filePath(QStringLiteral("lab.db")));
        fillDemo(amb1().connection());
        addDemoInvoices();
        addDemoResults();
        state().currentUser = QStringLiteral("admin");
        state().workingDate = dateLong(QDate::currentDate());
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_prompts->everyModal = [this](QWidget* screen) { check(screen); };
        MDIForm1::showMain();
        QVERIFY(QTest::qWaitForWindowExposed(MDIForm1::instance()));
    }

    void cleanupTestCase()
    {
        if (MDIForm1* main = MDIForm1::instance())
            delete main;
        m_prompts.reset();
        amb1().closeStore();
    }

    // Every entry of the main menu and of the start panel, then every other
    // screen as its caller opens it (a preview as a window of its own, the
    // rest modally).
    void everyScreenOpensWhole()
    {
        MDIForm1* main = MDIForm1::instance();
        const QStringList leaveAlone{QStringLiteral("sesion"), QStringLiteral("salir")};
        QList<QAction*> entries;
        for (QAction* top : main->menuBar()->actions())
            if (top->menu())
                for (QAction* a : top->menu()->findChildren<QAction*>())
                    if (!a->isSeparator() && !a->menu() && !a->objectName().isEmpty()
                        && !leaveAlone.contains(a->objectName()) && !entries.contains(a))
                        entries << a;
        for (QAction* a : std::as_const(entries))
            openAndCheck([a] { a->trigger(); });
        openAndCheck([main] { click(control<QAbstractButton>(main, QStringLiteral("Command2"))); });

        for (const QString& name : ScreenRegistry::instance().names()) {
            if (m_checked.contains(name))
                continue;
            if (report::findLayout(name))
                openAndCheck([name] { openScreen(name); });
            else
                openAndCheck([name] { openModal(name); });
        }
        QStringList unchecked = ScreenRegistry::instance().names();
        unchecked.removeIf([this](const QString& n) { return m_checked.contains(n); });

        qInfo().noquote() << QStringLiteral("Pantallas revisadas (%1): %2")
                                 .arg(m_checked.size()).arg(m_checked.join(QStringLiteral(", ")));
        qInfo().noquote() << QStringLiteral("Cuadrículas que no caben a su ancho: %1")
                                 .arg(m_tooWide.isEmpty() ? QStringLiteral("ninguna")
                                                          : m_tooWide.join(QStringLiteral("; ")));
        QVERIFY2(unchecked.isEmpty(), qPrintable(QStringLiteral("sin revisar: ") + unchecked.join(", ")));
        QVERIFY2(m_faults.isEmpty(), qPrintable(QStringLiteral("%1 fallos:\n").arg(m_faults.size())
                                                + m_faults.join(QLatin1Char('\n'))));
    }

    // Columns given more width than the display has keep their proportions
    // in the width there is, with no scroll bar across.
    void tooWideColumnsKeepTheirProportions()
    {
        QWidget screen;
        screen.setObjectName(QStringLiteral("anchaPrueba"));
        auto* grid = new FlexGrid(&screen);
        (new QVBoxLayout(&screen))->addWidget(grid);
        grid->setCols(4);
        const int widths[] = {9000, 6000, 3000, 4500};   // twips: 1500 px in all
        for (int c = 0; c < 4; ++c)
            grid->setColWidth(c, widths[c]);
        placeWhenShown(&screen);
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        QVERIFY(screen.frameGeometry().width() <= kSmallestScreenWidth);
        QCOMPARE(grid->horizontalScrollBar()->maximum(), 0);
        for (int c = 1; c < 4; ++c)
            QVERIFY2(qAbs(grid->columnWidth(c) * widths[0] - grid->columnWidth(0) * widths[c])
                         <= widths[0] + widths[c],
                     qPrintable(QStringLiteral("columna %1: %2 px junto a %3").arg(c)
                                    .arg(grid->columnWidth(c)).arg(grid->columnWidth(0))));
        QCOMPARE(grid->colWidth(1), 6000);   // the width given stays what it was
        QCOMPARE(widthToShowAll(grid) > kSmallestScreenWidth, true);
    }

    // A size and place the user gives a screen come back the next time,
    // inside the display even when they were kept on a larger one.
    void sizeAndPlaceComeBack_data()
    {
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QRect>("kept");   // written before it opens; null: the user resizes it
        QTest::newRow("ventana propia") << QStringLiteral("Form9") << QRect();
        QTest::newRow("dentro de la principal") << QStringLiteral("factura3") << QRect();
        QTest::newRow("guardada en una pantalla mayor") << QStringLiteral("Fdoctores")
                                                        << QRect(1800, 1200, 2400, 1600);
    }

    void sizeAndPlaceComeBack()
    {
        QFETCH(QString, screen);
        QFETCH(QRect, kept);
        QSettings().remove(QStringLiteral("pantallas"));
        QSettings().setValue(placementKey(screen), kept);
        auto open = [&](const std::function<void(QWidget*)>& whileShown) {
            MDIForm1* main = MDIForm1::instance();
            if (screen == QLatin1String("factura3")) {
                main->openFacturacion(false);
                QWidget* s = main->panelScreen(screen);
                whileShown(s->parentWidget());
                closeShown();
            } else {
                m_prompts->onModal(screen, whileShown);
                openModal(screen);
            }
        };
        QRect given;
        if (kept.isNull())
            open([&](QWidget* w) {
                given = QRect(w->pos() + QPoint(7, 5), w->size() - QSize(40, 30));
                w->move(given.topLeft());
                w->resize(given.size());
            });
        QRect seen, space;
        open([&](QWidget* w) {
            seen = QRect(w->pos(), w->size());
            space = spaceFor(w);
            QVERIFY(space.contains(w->isWindow() ? w->frameGeometry() : w->geometry()));
        });
        if (kept.isNull())
            QCOMPARE(seen, given);
        else
            QVERIFY2(space.contains(seen) && seen.width() >= space.width() * 3 / 4,
                     qPrintable(text(seen) + QStringLiteral(" en ") + text(space)));
    }
};

QTEST_MAIN(TestScreens)

#include "test_screens.moc"
