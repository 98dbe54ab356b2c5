// A station that only saves invoices, for the concurrency tests. Arguments: the
// store (a file or a libpq connection text), how many invoices, the station's
// name. Prints "abierta" once the store is open, then per invoice: the number
// proposed, the number saved under, and 1 when the save said it moved (else 0).
//
// With "liquidar", an insurer's code and the name, the station
// settles that insurer's open invoices instead, a few at a time from the head
// of its list, as long as any stay open. Per press it prints "pagadas" or
// "rechazadas" (another station had settled some: those it names) and the
// invoice numbers.
#include "accounts/receivables/settlement.h"
#include "billing/invoice/invoicesave.h"
#include "foundation/base/apperror.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <QCoreApplication>
#include <QDate>
#include <QRandomGenerator>
#include <cstdio>

namespace {

void printNumbers(const char* what, const QList<std::int32_t>& numbers)
{
    std::printf("%s", what);
    for (const std::int32_t n : numbers)
        std::printf(" %d", n);
    std::printf("\n");
    std::fflush(stdout);
}

// Reads the list as the payment screen does, takes its first few invoices and
// settles them with the station's name as the reference.
void settleAll(std::int32_t insurer, const QString& station)
{
    QRandomGenerator random(quint32(qHash(station)));
    for (;;) {
        const tq::OpenInvoices open = tq::openInsurerInvoices(insurer);
        if (open.size() == 0)
            return;
        QList<std::int32_t> chosen;
        const int take = std::min(open.size(), int(random.bounded(1, 8)));
        for (int i = 0; i < take; ++i)
            chosen << tq::toInt32(open.factura.at(i));
        try {
            tq::settleInsurerInvoices(chosen, QDate::currentDate(), station);
            printNumbers("pagadas", chosen);
        } catch (const tq::InvoicesAlreadySettled& e) {
            printNumbers("rechazadas", e.invoices());
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 4)
        return 2;
    try {
        if (args.at(1).contains(QLatin1Char('=')))
            tq::amb1().openServer(args.at(1));
        else
            tq::amb1().openStore(args.at(1));
        std::printf("abierta\n");
        std::fflush(stdout);
        if (args.at(2) == QLatin1String("liquidar")) {
            settleAll(tq::toInt32(args.at(3)), args.value(4));
            tq::amb1().closeStore();
            return 0;
        }
        for (int i = 0; i < args.at(2).toInt(); ++i) {
            tq::PricedDocument doc;
            // Proposed as the invoice screen proposes it, outside the save.
            doc.numero = tq::toInt32(double(tq::toInt32(
                             tq::amb1().scalar(QStringLiteral("SELECT MAX(factura) FROM Factura"))))
                         + 1);
            doc.fecha = QDate::currentDate();
            doc.faturado = args.at(3);
            doc.codPaciente = 1;
            doc.subtotal = doc.total = QStringLiteral("30.00");
            doc.lines = {{1, 1, QStringLiteral("10.00"), QStringLiteral("10.00")},
                         {2, 2, QStringLiteral("20.00"), QStringLiteral("10.00")}};
            // In turn: paid, on credit, to the insurer.
            const auto settlement = tq::Settlement(i % 3);
            tq::Payment paid;
            paid.efectivo = settlement == tq::Settlement::Paid ? 30 : 0;
            paid.pagado = settlement == tq::Settlement::Credit ? 10 : 0;
            paid.efectivo = std::max(paid.efectivo, paid.pagado);
            const tq::SaveOutcome out = tq::saveInvoice(
                doc, settlement, paid, settlement == tq::Settlement::Insurer, nullptr);
            std::printf("%d %d %d\n", doc.numero, out.numero, out.renumbered ? 1 : 0);
            std::fflush(stdout);
        }
        tq::amb1().closeStore();
        return 0;
    } catch (const tq::AppError& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.message()));
        return 1;
    }
}
