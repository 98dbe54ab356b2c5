#include "lab/results/Form37.h"

#include "ui_Form37.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/ui/registry.h"
#include "lab/corrections.h"
#include "lab/results/menucambio.h"
#include "lab/sheets.h"
#include "lab/sheets/gridsheet.h"
#include "lab/sheets/opensheet.h"

#include <QPointer>
#include <QScopeGuard>
#include <QShortcut>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <functional>

TQ_REGISTER_SCREEN(Form37)

using namespace tq;
using namespace tq::results;

namespace {

// The reason window at the right of the sheet, inside the display; where
// both don't fit side by side the sheet moves left first.
void putBeside(QWidget* reason, QWidget* sheet)
{
    const QScreen* screen = sheet->screen();
    const QRect room = screen ? screen->availableGeometry() : sheet->frameGeometry();
    const QSize size = reason->frameGeometry().size();
    const int overflow = sheet->frameGeometry().right() + 1 + size.width() - (room.right() + 1);
    if (overflow > 0)
        sheet->move(std::max(room.left(), sheet->frameGeometry().left() - overflow),
                    sheet->frameGeometry().top());
    const QRect s = sheet->frameGeometry();
    const int x = std::max(room.left(), std::min(s.right() + 1, room.right() + 1 - size.width()));
    const int y = std::max(room.top(), std::min(s.top(), room.bottom() + 1 - size.height()));
    reason->move(x, y);
}

// Runs once, when `window` first becomes the active window (after the
// window system has given it the keyboard).
class FirstActivation : public QObject {
public:
    FirstActivation(QWidget* window, std::function<void()> then)
        : QObject(window), m_then(std::move(then))
    {
        window->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::WindowActivate) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, this, [this] {
                m_then();
                deleteLater();
            });
        }
        return false;
    }

private:
    std::function<void()> m_then;
};

}  // namespace

Form37::Form37(QWidget* parent) : InvoiceSheetList(parent), ui(std::make_unique<Ui::Form37>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form37"));
    attachList(ui->Text1, ui->Grid1, ui->Command4);
}

Form37::~Form37() = default;

void Form37::open(const ListedSheet& listed)
{
    state().facturaCambio = listed.factura;
    state().numformatoCambio = listed.numFormato;
    state().plantillaCambio = toInt16(listed.codPlantilla);

    const sheets::StoredHeading heading = headingOf(listed.factura);
    const sheets::StoredSheet sheet =
        sheets::readSheet(listed.factura, listed.numFormato, listed.codPlantilla);
    corrections::Target target;
    target.factura = listed.factura;
    target.numFormato = listed.numFormato;
    target.codPlantilla = listed.codPlantilla;
    target.plantilla = listed.plantilla;
    target.autorizo = state().authorisingAdmin;
    target.tecnico = state().currentUser;

    QPointer<menucambio> reason = new menucambio(this);
    reason->show();
    // Whatever becomes of the sheet, the reason window goes with it.
    const auto closeReason = qScopeGuard([reason] {
        if (reason)
            reason->close();
    });
    // The sheet opens modally, which leaves usable only the windows that
    // stand on it: the reason window moves onto the sheet, at its right,
    // and goes with it.
    const auto standOnSheet = [this, reason](QWidget* screen) {
        if (!reason)
            return;
        // Both windows exist before the sheet shows, each known to stand on
        // the one before it (sheet on this list, reason on the sheet), for
        // the window system and for the modal sheet, which blocks every
        // window but those standing on it.
        screen->winId();
        if (QWindow* list = window()->windowHandle())
            screen->windowHandle()->setTransientParent(list);
        reason->setParent(screen, reason->windowFlags());
        reason->winId();
        reason->windowHandle()->setTransientParent(screen->windowHandle());
        reason->show();
        // The reason comes first, and F6 goes from one window to the other,
        // so that the keyboard reaches both.
        QTimer::singleShot(0, reason, [reason, sheet = QPointer<QWidget>(screen)] {
            if (reason && sheet)
                putBeside(reason, sheet);
        });
        new FirstActivation(screen, [reason] {
            if (reason)
                reason->takeFocus();
        });
        new QShortcut(QKeySequence(Qt::Key_F6), screen, reason.data(), [reason] { reason->takeFocus(); });
        new QShortcut(QKeySequence(Qt::Key_F6), reason.data(), screen, [screen] {
            screen->raise();
            screen->activateWindow();   // back to the field it left
        });
    };
    sheets::correctStoredSheet(
        sheet, heading, target, [reason] { return reason ? reason->descripcion() : QString(); },
        standOnSheet);
    // The gate waits for this list and closes after it.
    close();
}
