#include "frame/MDIForm1.h"
#include "frame/frame.h"

#include "ui_MDIForm1.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/reports/report.h"
#include "foundation/ui/placement.h"
#include "foundation/ui/registry.h"
#include "frame/Form4.h"
#include "frame/accesos.h"
#include "foundation/base/values.h"
#include "foundation/ui/widgets.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoopLocker>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QShortcut>

namespace {

QPointer<MDIForm1> g_main;

// Entries that open one screen by its name.
enum class Opens { Modal, Modeless };
struct ScreenEntry {
    const char* action;
    Opens how;
    const char* screen;
};

const ScreenEntry kScreenEntries[] = {
    {"llenaresul", Opens::Modal, "Form3view"},
    {"imprere", Opens::Modal, "FImpresionResult"},
    {"impresul", Opens::Modal, "Form25"},
    {"Ord", Opens::Modal, "FOrden"},
    {"canord", Opens::Modal, "FanularOrden"},
    {"busord", Opens::Modal, "FbuscarOrden"},
    {"refactura", Opens::Modeless, "FImpresion"},
    {"anular", Opens::Modeless, "Form32"},
    {"imprifactanu", Opens::Modeless, "interfactanuladas"},
    {"busqueda", Opens::Modal, "Form9"},
    {"doc", Opens::Modal, "Fdoctores"},
    {"comi", Opens::Modal, "Fpagocomisiones"},
    {"Contseg", Opens::Modal, "Fseguro"},
    {"PRESEG", Opens::Modal, "FSegurosPrecios"},
    {"factpar", Opens::Modal, "Mabonos"},
    {"faccob", Opens::Modal, "Fcxc"},
    {"pagad", Opens::Modal, "Fpagarfacturas"},
    {"corteintervalo", Opens::Modeless, "Form8"},
    {"FMRVT", Opens::Modal, "Fcorteventastarjeta"},
    {"FMDIRAN", Opens::Modeless, "interfactanuladas"},
    {"facxcob", Opens::Modal, "Form33"},
    {"rcomi", Opens::Modal, "FreporComision"},
    {"segpag", Opens::Modal, "Form35"},
    {"repexpa", Opens::Modal, "Form30"},
    {"repexamas", Opens::Modal, "FESTADISTICO"},
    {"rer", Opens::Modal, "Form38"},
    {"cumple", Opens::Modal, "cumples"},
    // Form342 places itself and, when the administrator is accepted, opens Form37.
    {"modifval", Opens::Modal, "Form342"},
    {"histcam", Opens::Modal, "historial"},
    {"valant", Opens::Modal, "valoresanteriores"},
    {"FMIIP", Opens::Modal, "Proveedores"},
    {"FMDIIinsumos", Opens::Modal, "Form16"},
    {"contra", Opens::Modal, "FcambioContrasena"},
    {"dat", Opens::Modal, "FDatos"},
    {"agreforresul", Opens::Modeless, "Form19"},
    {"parametros", Opens::Modal, "mparametros"},
    {"modresul", Opens::Modal, "relplapar"},
    {"LMT", Opens::Modal, "Flimpiatemporales"},
    {"MNMIST", Opens::Modal, "FInpuestoTarjeta"},
    {"MNDTE", Opens::Modal, "FdescuentoTedad"},
    {"respaldo", Opens::Modal, "frmBackup"},
};

// Closed to a limited user.
const char* const kLimitedEntries[] = {"exa",  "emple",    "cortedia", "corteintervalo",
                                       "blanc", "lista",   "respaldo", "repexpa",
                                       "dat",   "MNMIST",  "FMRVT",    "comi"};

// Separators of the menu, in the order they stand.
const char* const kSeparators[] = {"SEPA1", "SEPA2", "sepa3", "sepa4", "sepa5",
                                   "sepa6", "sepa7", "sepa8", "sepa9"};

void collectSeparators(QMenu* menu, QList<QAction*>& out)
{
    for (QAction* a : menu->actions()) {
        if (a->isSeparator())
            out << a;
        else if (a->menu())
            collectSeparators(a->menu(), out);
    }
}

QString entryCaption(const QAction* a) { return a->text().trimmed(); }

}  // namespace

MDIForm1::MDIForm1(QWidget* parent) : QMainWindow(parent), ui(std::make_unique<Ui::MDIForm1>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("MDIForm1"));
    setAttribute(Qt::WA_DeleteOnClose);
    // Windows of their own open centred over this one.
    tq::setPlacementCentre(this);

    QList<QAction*> separators;
    for (QAction* top : ui->menubar->actions())
        if (top->menu())
            collectSeparators(top->menu(), separators);
    for (int i = 0; i < separators.size() && i < int(std::size(kSeparators)); ++i)
        separators[i]->setObjectName(QString::fromLatin1(kSeparators[i]));

    // F10 reaches the menu from the keyboard, as on the laboratory's old desks.
    auto* toMenu = new QShortcut(QKeySequence(Qt::Key_F10), this);
    connect(toMenu, &QShortcut::activated, this, [this] {
        const QList<QAction*> top = ui->menubar->actions();
        if (!top.isEmpty()) {
            ui->menubar->setFocus(Qt::ShortcutFocusReason);
            ui->menubar->setActiveAction(top.first());
        }
    });

    // The start panel lies at the top of the working area.
    m_panel = new Form4();
    m_panelWindow = ui->mdiArea->addSubWindow(m_panel, Qt::FramelessWindowHint);
    m_panelWindow->setObjectName(QStringLiteral("Form4Window"));
    m_panelWindow->installEventFilter(this);
    ui->mdiArea->viewport()->installEventFilter(this);
    m_panelWindow->show();
    fitPanel();

    // The panel's pictures, named in messages by their captions.
    auto panelEntry = [this](void (Form4::*signal)(), const char* caption,
                             std::function<void()> fn) {
        const QString what = QStringLiteral("abrir «%1»").arg(QString::fromUtf8(caption));
        connect(m_panel, signal, this, [what, fn = std::move(fn)] { tq::guarded(what, fn); });
    };
    panelEntry(&Form4::pacientes, "Pacientes", [this] { openPacientes(); });
    panelEntry(&Form4::examenes, "Examenes", [this] { openExamenes(); });
    panelEntry(&Form4::empleados, "Empleados", [this] { openEmpleados(); });
    panelEntry(&Form4::facturacion, "Facturación", [this] { openFacturacion(true); });
    panelEntry(&Form4::resultados, "Resultados", [this] { openResultados(); });
    connect(m_panel, &Form4::salirSistema, this, &QWidget::close);

    wireMenu();
    readCardPercentage();
}

MDIForm1::~MDIForm1()
{
    if (g_main == this)
        g_main = nullptr;
}

MDIForm1* MDIForm1::instance() { return g_main.data(); }

QWidget* tq::mainWindow() { return MDIForm1::instance(); }

bool tq::openInvoiceOnPanel(bool restart)
{
    MDIForm1* main = MDIForm1::instance();
    if (!main)
        return false;
    main->openFacturacion(restart);
    return true;
}

MDIForm1* MDIForm1::showMain()
{
    if (!g_main)
        g_main = new MDIForm1();
    if (g_main->isHidden())
        g_main->showMaximized();
    g_main->raise();
    g_main->activateWindow();
    return g_main.data();
}

QMdiArea* MDIForm1::area() const { return ui->mdiArea; }

void MDIForm1::wireMenu()
{
    // A failed entry is named by its caption: "No se pudo abrir «Control Doctores»."
    auto on = [this](QAction* action, std::function<void()> fn, QString what = {}) {
        if (what.isEmpty())
            what = QStringLiteral("abrir «%1»").arg(entryCaption(action));
        connect(action, &QAction::triggered, this,
                [what, fn = std::move(fn)] { tq::guarded(what, fn); });
    };

    for (const ScreenEntry& e : kScreenEntries) {
        QAction* a = findChild<QAction*>(QString::fromLatin1(e.action));
        Q_ASSERT(a);
        if (!a)
            continue;
        const QString screen = QString::fromLatin1(e.screen);
        if (e.how == Opens::Modal)
            on(a, [screen] { tq::openModal(screen); });
        else
            on(a, [this, screen] { openModeless(screen); });
    }

    on(ui->sesion, [this] { signOff(); }, QStringLiteral("cerrar la sesión"));
    // Leaving the system is asked first, as on the start panel.
    on(ui->salir, [this] {
        if (tq::prompts().ask(QStringLiteral("Esta Seguro que Desea Salir del Sistema")))
            quitSystem();
    }, QStringLiteral("salir del sistema"));
    on(ui->paci, [this] { openPacientes(); });
    on(ui->exa, [this] { openExamenes(); });
    on(ui->emple, [this] { openEmpleados(); });
    on(ui->fac, [this] { openFacturacion(false); });
    // The reprint box learns it is reprinting before it shows.
    on(ui->RIMorden, [] {
        tq::openModal(QStringLiteral("Freimprimir"),
                      [](QWidget* w) { w->setProperty("reimprimir", true); });
    });

    // Reports of the menu: today's cut, the exam lists, letterhead and blank invoice.
    on(ui->cortedia, [this] {
        runReport(QStringLiteral("DataReport2"), QStringLiteral("rsrcorte_Grouping"),
                  QStringLiteral("anulada =0 and fecha =") + tq::state().workingDate, 2);
    });
    on(ui->lista, [this] {
        runReport(QStringLiteral("DataReport3"), QStringLiteral("rsrexamenes"), {}, 3);
    });
    on(ui->blanc, [this] {
        runReport(QStringLiteral("DataReport4"), QStringLiteral("rsCommand5"), {}, 4);
    });
    on(ui->listadoc, [this] {
        runReport(QStringLiteral("DataReport14"), QStringLiteral("rsrexamenes"), {}, 14);
    });
    on(ui->membre, [this] {
        runReport(QStringLiteral("DataReport19"), QStringLiteral("rstipoexamen"), {}, 19);
    });
}

void MDIForm1::readCardPercentage()
{
    tq::guarded(QStringLiteral("leer el porcentaje de tarjeta"), [] {
        tq::Recordset& rs = tq::amb1().rs(QStringLiteral("rstarjeta"));
        if (rs.isOpen())
            rs.close();
        rs.open();
        if (rs.recordCount() > 0) {
            rs.moveFirst();
            tq::state().cardPercentage = tq::toInt16(rs.field(QStringLiteral("tarjeta")));
        }
        rs.close();
    });
}

void MDIForm1::applyLimitedRole()
{
    for (const char* name : kLimitedEntries)
        if (QAction* a = findChild<QAction*>(QString::fromLatin1(name)))
            a->setEnabled(false);
    m_panel->applyLimitedRole();
}

QWidget* MDIForm1::panelScreen(const QString& name) const
{
    for (QMdiSubWindow* sw : ui->mdiArea->subWindowList()) {
        if (sw == m_panelWindow || sw->isHidden())
            continue;
        if (QWidget* w = sw->widget(); w && w->objectName() == name)
            return w;
    }
    return nullptr;
}

QPoint MDIForm1::panelScreenPlace() const
{
    // 1120 twips from the top: just under the start panel.
    return QPoint(0, qMax(tq::twips(1120), m_panelWindow ? m_panelWindow->height() : 0));
}

void MDIForm1::fitPanel()
{
    if (!m_panelWindow)
        return;
    const int height = qMax(tq::twips(1120), m_panel->sizeHint().height());
    m_panelWindow->setGeometry(0, 0, qMax(ui->mdiArea->viewport()->width(), 200), height);
}

QWidget* MDIForm1::openPanelScreen(const QString& name, const QStringList& closeFirst)
{
    for (QMdiSubWindow* sw : ui->mdiArea->subWindowList()) {
        if (sw == m_panelWindow || sw->isHidden())
            continue;
        if (QWidget* w = sw->widget(); w && closeFirst.contains(w->objectName()))
            sw->close();
    }
    // A screen already open comes forward; a second copy would hold its own
    // numbers and rows (an invoice number taken twice).
    if (QWidget* open = panelScreen(name)) {
        if (auto* sw = qobject_cast<QMdiSubWindow*>(open->parentWidget()))
            ui->mdiArea->setActiveSubWindow(sw);
        open->setFocus();
        return open;
    }
    QWidget* w = tq::ScreenRegistry::instance().create(name, nullptr);
    if (!w) {
        tq::notBuiltNotice(name);
        return nullptr;
    }
    w->setAttribute(Qt::WA_DeleteOnClose);
    QMdiSubWindow* sw = ui->mdiArea->addSubWindow(w);
    sw->setAttribute(Qt::WA_DeleteOnClose);
    // A screen that closes itself ("Salir") takes its frame with it.
    connect(w, &QObject::destroyed, sw, &QObject::deleteLater);
    sw->move(panelScreenPlace());
    sw->show();
    w->setFocus();
    return w;
}

void MDIForm1::openModeless(const QString& name)
{
    for (QWidget* open : findChildren<QWidget*>(name, Qt::FindDirectChildrenOnly)) {
        if (open->isWindow() && open->isVisible()) {
            open->raise();
            open->activateWindow();
            return;
        }
    }
    QWidget* w = tq::ScreenRegistry::instance().create(name, nullptr);
    if (!w) {
        tq::notBuiltNotice(name);
        return;
    }
    // Its own window, owned by the main window so that it goes with it.
    w->setParent(this, w->windowFlags() | Qt::Window);
    w->setAttribute(Qt::WA_DeleteOnClose);
    w->show();
    w->raise();
    w->activateWindow();
}

void MDIForm1::runReport(const QString& report, const QString& command, const QString& filter,
                         int heading)
{
    tq::ReportRun run;
    run.report = report;
    run.command = command;
    run.filter = filter;
    run.heading = heading;
    tq::runReport(run, this);
}

void MDIForm1::openPacientes()
{
    openPanelScreen(QStringLiteral("Form5"),
                    {QStringLiteral("Form1"), QStringLiteral("Form6"), QStringLiteral("factura3")});
}

void MDIForm1::openExamenes()
{
    openPanelScreen(QStringLiteral("Form6"),
                    {QStringLiteral("factura3"), QStringLiteral("Form1"), QStringLiteral("Form5")});
}

void MDIForm1::openEmpleados()
{
    tq::state().screenNumber = 1;
    openPanelScreen(QStringLiteral("Form1"), {QStringLiteral("factura3"), QStringLiteral("Form6"),
                                              QStringLiteral("Form5")});
}

// From the panel the invoice restarts (an open one is closed first); from
// the menu the other panel screens make way for it.
void MDIForm1::openFacturacion(bool restart)
{
    if (restart)
        openPanelScreen(QStringLiteral("factura3"), {QStringLiteral("factura3")});
    else
        openPanelScreen(QStringLiteral("factura3"),
                        {QStringLiteral("Form6"), QStringLiteral("Form5"), QStringLiteral("Form1")});
}

void MDIForm1::openResultados() { tq::openModal(QStringLiteral("Form3view")); }

void MDIForm1::signOff()
{
    // The program must not end in the moment between the two windows.
    QEventLoopLocker keepRunning;
    m_signingOff = true;
    if (!close()) {
        m_signingOff = false;   // a screen refused to close; the session goes on
        return;
    }
    tq::state().currentUser = QStringLiteral("Ussname");
    tq::showSignOn();
}

void MDIForm1::quitSystem()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("Form7") && !w->isHidden())
            w->close();
    close();
}

bool MDIForm1::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_panelWindow && event->type() == QEvent::Close && !m_closing) {
        event->ignore();   // the start panel goes only with the main window
        return true;
    }
    if (watched == ui->mdiArea->viewport() && event->type() == QEvent::Resize)
        fitPanel();
    return QMainWindow::eventFilter(watched, event);
}

void MDIForm1::closeEvent(QCloseEvent* event)
{
    // The screens inside and the windows it owns close first; one that
    // refuses keeps the main window open.
    for (QWidget* w : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (w->isWindow() && !w->isHidden())
            w->close();
    bool refused = false;
    for (QMdiSubWindow* sw : ui->mdiArea->subWindowList()) {
        if (sw == m_panelWindow || sw->isHidden())
            continue;
        if (!sw->close())
            refused = true;
    }
    if (refused) {
        event->ignore();
        return;
    }
    m_closing = true;
    m_panelWindow->close();
    QMainWindow::closeEvent(event);
    if (g_main == this)
        g_main = nullptr;
    if (!m_signingOff)
        tq::endProgram();
}
