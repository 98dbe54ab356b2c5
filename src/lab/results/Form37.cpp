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
#include <QScreen>
#include <QTimer>
#include <algorithm>

TQ_REGISTER_SCREEN(Form37)

using namespace tq;
using namespace tq::results;

namespace {

// The reason window at the right of the sheet, inside the display.
void putBeside(QWidget* reason, const QWidget* sheet)
{
    const QRect s = sheet->frameGeometry();
    const QScreen* screen = sheet->screen();
    const QRect room = screen ? screen->availableGeometry() : s;
    const QSize size = reason->frameGeometry().size();
    const int x = std::max(room.left(), std::min(s.right() + 1, room.right() + 1 - size.width()));
    const int y = std::max(room.top(), std::min(s.top(), room.bottom() + 1 - size.height()));
    reason->move(x, y);
}

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
    const auto standOnSheet = [reason](QWidget* screen) {
        if (!reason)
            return;
        reason->setParent(screen, reason->windowFlags());
        reason->show();
        QTimer::singleShot(0, reason, [reason, sheet = QPointer<QWidget>(screen)] {
            if (reason && sheet)
                putBeside(reason, sheet);
        });
    };
    sheets::correctStoredSheet(
        sheet, heading, target, [reason] { return reason ? reason->descripcion() : QString(); },
        standOnSheet);
    // The gate waits for this list and closes after it.
    close();
}
