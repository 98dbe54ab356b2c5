// A workstation that only saves invoices: the program the concurrency test
// starts several times against one store. Arguments: the store, how many
// invoices, the station's name. Prints "abierta" once the store is open,
// then how many invoices were renumbered.
#include "billing/invoice/invoicesave.h"
#include "foundation/base/apperror.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <QCoreApplication>
#include <QDate>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 4)
        return 2;
    try {
        tq::amb1().openStore(args.at(1));
        std::printf("abierta\n");   // the store is open: the saves begin
        std::fflush(stdout);
        const int count = args.at(2).toInt();
        int renumbered = 0;
        for (int i = 0; i < count; ++i) {
            tq::InvoiceDocument doc;
            // Proposed as the invoice screen proposes it, outside the save.
            doc.numero = tq::toInt32(double(tq::toInt32(
                             tq::amb1().scalar(QStringLiteral("SELECT MAX(factura) FROM Factura"))))
                         + 1);
            doc.fecha = QDate::currentDate();
            doc.faturado = args.at(3);
            doc.codPaciente = 1;
            doc.subtotal = doc.total = QStringLiteral("30.00");
            doc.lines = {{1, 1, QStringLiteral("10.00")}, {2, 2, QStringLiteral("20.00")}};
            tq::Payment paid;
            paid.efectivo = 30;
            if (tq::saveInvoice(doc, tq::Settlement::Paid, paid, false, nullptr).renumbered)
                ++renumbered;
        }
        std::printf("%d\n", renumbered);
        tq::amb1().closeStore();
        return 0;
    } catch (const tq::AppError& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.message()));
        return 1;
    }
}
