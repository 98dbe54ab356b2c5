// The print module: the printer dialog and the printer itself. It is a
// library of its own, loaded by the prompt service the first time something
// is printed, so that Qt's printing libraries are not loaded at start-up.
#include "foundation/ui/prompt.h"

#include <QPrintDialog>
#include <QPrinter>

extern "C" Q_DECL_EXPORT bool tarvenquil_print_pages(QWidget* parent, const QString& title,
                                                     const tq::PaintPages& paint)
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(title);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    paint(printer);
    return printer.printerState() != QPrinter::Error;
}
