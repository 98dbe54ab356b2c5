// The print module: the printer dialog and the printer itself. It is a
// library of its own, loaded by the prompt service the first time something
// is printed, so that Qt's printing libraries are not loaded at start-up.
#include "foundation/ui/prompt.h"

#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

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

// The default printer, without a dialog. False when the machine has none or
// the job failed.
extern "C" Q_DECL_EXPORT bool tarvenquil_print_default(const QString& title,
                                                       const tq::PaintPages& paint)
{
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    if (info.isNull())
        return false;
    QPrinter printer(info, QPrinter::HighResolution);
    printer.setDocName(title);
    paint(printer);
    return printer.printerState() != QPrinter::Error;
}
