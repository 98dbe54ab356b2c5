// Orders (quotations): the list of pending orders and one key of its search
// by number, an order brought into the invoice, an order saved, and fifty
// orders cancelled at once.
#include "bare.h"
#include "bench.h"

#include "billing/invoice/factura3.h"
#include "billing/orders/ordersave.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QRadioButton>
#include <memory>

namespace bench {

namespace {

// What the order lists read: the pending orders with their patients' names.
const char* const kPending =
    "SELECT orden.orden, orden.fecha, Pacientes.nombre_paciente, Pacientes.apellido_paciente "
    "FROM orden LEFT JOIN Pacientes ON Pacientes.cod_paciente = orden.cod_paciente "
    "WHERE orden.anulada = ? ";
const char* const kByDate = " ORDER BY CASE WHEN orden.fecha IS NULL THEN 0 ELSE 1 END, orden.fecha, orden.orden";

QWidget* made(const char* screen)
{
    QWidget* w = tq::ScreenRegistry::instance().create(QLatin1String(screen));
    w->show();
    QCoreApplication::processEvents();
    return w;
}

qint64 dataRows(QWidget* w, const char* grid)
{
    return w->findChild<tq::FlexGrid*>(QLatin1String(grid))->rows() - 1;
}

// Orders saved by the bench take numbers far above the store's own, each
// side its own range, and are taken away after the path.
constexpr qint64 kOursFrom = 2'000'000'000;
constexpr qint64 kBareFrom = 2'100'000'000;

// The cancelling screen's question answered Yes and its closing message
// expected; anything else it says fails the path.
class CancelAnswered : public PathPrompts {
public:
    tq::Answer message(const QString& text, tq::Icon icon, const QString& title,
                       tq::Buttons buttons) override
    {
        if (text == QLatin1String("Confirma la cancelacion de las Ordenes"))
            return tq::Answer::Yes;
        if (text == QLatin1String("Las Ordenes se cancelaron exitosamente"))
            return tq::Answer::Ok;
        return SilentPrompts::message(text, icon, title, buttons);
    }
};

QString inList(int n)
{
    QStringList marks;
    for (int i = 0; i < n; ++i)
        marks << QStringLiteral("?");
    return QStringLiteral("(") + marks.join(QStringLiteral(", ")) + QStringLiteral(")");
}

// The orders cancelled last (by either side) go back to pending before the
// next round, so that every round cancels fifty and both sides find the
// same pending list.
struct Cancelled {
    QList<int> last;
    QList<int> ever;
};

void reopenBare(Connection* db, const QList<int>& orders)
{
    if (orders.isEmpty())
        return;
    Stmt s(db, QStringLiteral("UPDATE orden SET anulada = ?, anulacion = NULL, quien_anulo = NULL "
                              "WHERE orden IN ")
                   + inList(int(orders.size())));
    s.bind(1, false);
    for (int i = 0; i < orders.size(); ++i)
        s.bind(i + 2, orders[i]);
    s.run();
}

}  // namespace

void addOrderPaths(Bench& bench, const Context& c)
{
    if (!tq::ScreenRegistry::instance().has(QStringLiteral("FbuscarOrden"))
        || !tq::ScreenRegistry::instance().has(QStringLiteral("FanularOrden")))
        return;

    bench.add({.name = QStringLiteral("opening FbuscarOrden with every pending order"),
               .run = [] {
                   std::unique_ptr<QWidget> screen(made("FbuscarOrden"));
                   return dataRows(screen.get(), "Grid1");
               },
               .floor = [c] {
                   return Stmt(c.bare, QLatin1String(kPending) + QLatin1String(kByDate)).readAll(false);
               },
               .note = QStringLiteral("the screen built through the registry, the ~5000 pending "
                                      "orders read with their patients and shown")});

    auto search = std::make_shared<std::unique_ptr<QWidget>>();
    bench.add({.name = QStringLiteral("one search keystroke in FbuscarOrden"),
               .run = [search] {
                   if (!*search) {
                       search->reset(made("FbuscarOrden"));
                       (*search)->findChild<QRadioButton*>(QStringLiteral("Option1"))->setChecked(true);
                   }
                   auto* box = (*search)->findChild<QLineEdit*>(QStringLiteral("Textb"));
                   box->blockSignals(true);
                   box->setText(QStringLiteral("1"));
                   box->blockSignals(false);
                   box->setText(QStringLiteral("12"));
                   return dataRows(search->get(), "Grid1");
               },
               .floor = [c] {
                   return Stmt(c.bare, QLatin1String(kPending)
                                           + "AND CAST(orden.orden AS TEXT) LIKE ? ORDER BY orden.orden")
                       .readAll(false, "12%");
               },
               .note = QStringLiteral("\"Por # de Orden\": \"2\" typed after \"1\", the pending "
                                      "orders whose number starts with 12"),
               .after = [search] { search->reset(); }});

    // A pending order of ten lines, brought into an invoice screen made once.
    const int tenLines = int(scalarBare(
        c.bare, "SELECT MIN(orden.orden) FROM orden WHERE orden.anulada = FALSE AND "
                "orden.cod_doctor IS NOT NULL AND (SELECT count(*) FROM ordenDetalle "
                "WHERE ordenDetalle.orden = orden.orden) = 10"));
    auto invoice = std::make_shared<std::unique_ptr<factura3>>();
    bench.add({.name = QStringLiteral("importing a 10-line order into factura3"),
               .run = [invoice, tenLines] {
                   if (!*invoice)
                       invoice->reset(static_cast<factura3*>(
                           tq::ScreenRegistry::instance().create(QStringLiteral("factura3"))));
                   (*invoice)->importar(tenLines);
                   const QString total =
                       (*invoice)->findChild<QLineEdit*>(QStringLiteral("totfact"))->text();
                   // The grid keeps a blank row below the lines for the next one.
                   auto* grid = (*invoice)->findChild<tq::FlexGrid*>(QStringLiteral("Factura"));
                   qint64 lines = 0;
                   for (int r = 1; r < grid->rows(); ++r)
                       lines += grid->textMatrix(r, 1).isEmpty() ? 0 : 1;
                   return lines * 1'000'000 + qRound64(tq::Val(total) * 100);
               },
               .floor = [c, tenLines] {
                   qint64 cents = 0;
                   {
                       Stmt head(c.bare,
                                 "SELECT orden.orden, orden.cod_paciente, orden.sub_total, orden.total, "
                                 "orden.valadicional, orden.adicional, orden.cod_doctor, "
                                 "Pacientes.nombre_paciente, Pacientes.apellido_paciente, "
                                 "Pacientes.direccion_paciente, Pacientes.fecha_nacimiento, "
                                 "Pacientes.cod_seguro, seguros.Empresa, "
                                 "Doctores.Cod_doctor AS doctor, Doctores.Nombre_doctor, "
                                 "Doctores.Apellido_doctor "
                                 "FROM orden INNER JOIN Pacientes ON orden.cod_paciente = Pacientes.cod_paciente "
                                 "INNER JOIN seguros ON Pacientes.cod_seguro = seguros.cod_seguro "
                                 "LEFT JOIN Doctores ON Doctores.Cod_doctor = orden.cod_doctor "
                                 "WHERE orden.orden = ?");
                       head.bind(1, tenLines);
                       while (head.next())
                           cents = qRound64(head.columnDouble(3) * 100);
                   }
                   const qint64 lines =
                       Stmt(c.bare, "SELECT ordenDetalle.cantidad, ordenDetalle.cod_descripcionexamen, "
                                    "Examenes.examen, ordenDetalle.precio, ordenDetalle.subtotal "
                                    "FROM ordenDetalle INNER JOIN Examenes "
                                    "ON ordenDetalle.cod_descripcionexamen = Examenes.cod_descripcionexamen "
                                    "WHERE ordenDetalle.orden = ?")
                           .readAll(tenLines);
                   return lines * 1'000'000 + cents;
               },
               .note = QStringLiteral("the order, its patient and insurer, its doctor and its lines "
                                      "read, the invoice screen filled; the screen is made once"),
               .after = [invoice] { invoice->reset(); }});

    // Ten catalogue exams at their list prices, saved as one order.
    const std::vector<int> ten = [&] {
        Stmt s(c.bare, "SELECT cod_descripcionexamen FROM Examenes ORDER BY cod_descripcionexamen LIMIT 10");
        return intColumn(s);
    }();
    const int patient = int(scalarBare(c.bare, "SELECT MIN(cod_paciente) FROM Pacientes"));
    auto writer = std::make_shared<Connection*>(nullptr);
    auto bareWriter = [c, writer] {
        if (!*writer)
            *writer = openBare(c.store, false);
        return *writer;
    };
    bench.add({.name = QStringLiteral("saving a 10-line order (saveOrder)"),
               .run = [ten, patient] {
                   static qint64 next = kOursFrom;
                   tq::saveOrder(benchDocument(next++, patient, ten));
                   return qint64(1 + ten.size());
               },
               .floor = [ten, patient, bareWriter] {
                   static qint64 next = kBareFrom;
                   Connection* db = bareWriter();
                   const qint64 number = next++;
                   execBare(db, "BEGIN");
                   Stmt taken(db, "SELECT 1 FROM orden WHERE orden = ? LIMIT 1");
                   taken.readAll(number);
                   Stmt head(db, "INSERT INTO orden (orden, fecha, faturado, cod_paciente, sub_total, "
                                 "total, anulada) VALUES (?, ?, ?, ?, ?, ?, ?)");
                   head.row(number, QDate::currentDate(), "bench", patient, "1000.00", "1000.00", false);
                   QStringList rows;
                   for (std::size_t i = 0; i < ten.size(); ++i)
                       rows << QStringLiteral("(?, ?, ?, ?, ?)");
                   Stmt lines(db, QStringLiteral("INSERT INTO ordenDetalle (orden, cantidad, "
                                                 "cod_descripcionexamen, precio, subtotal) VALUES ")
                                      + rows.join(QStringLiteral(", ")));
                   int at = 0;
                   for (const int exam : ten) {
                       lines.bind(++at, number);
                       lines.bind(++at, 1);
                       lines.bind(++at, exam);
                       lines.bind(++at, "100.00");
                       lines.bind(++at, "100.00");
                   }
                   lines.run();
                   execBare(db, "COMMIT");
                   return qint64(1 + ten.size());
               },
               .note = QStringLiteral("both sides commit every save; the saved orders are taken "
                                      "away afterwards"),
               .after = [bareWriter, writer] {
                   Connection* db = bareWriter();
                   for (const char* table : {"ordenDetalle", "orden"}) {
                       Stmt del(db, QStringLiteral("DELETE FROM %1 WHERE orden >= ?").arg(QLatin1String(table)));
                       del.readAll(kOursFrom);
                   }
                   closeBare(db);
                   *writer = nullptr;
               }});

    // Fifty rows moved to the list to cancel and "Elimiar" pressed, the
    // question answered Yes; the bare side cancels fifty other orders the
    // same way and reads the pending list again, as the screen does.
    auto cancelling = std::make_shared<std::unique_ptr<QWidget>>();
    auto cancelled = std::make_shared<Cancelled>();
    const QList<int> bareSets = [&] {
        Stmt s(c.bare, "SELECT orden FROM orden WHERE anulada = FALSE ORDER BY fecha DESC, orden DESC LIMIT 100");
        QList<int> out;
        for (const int n : intColumn(s))
            out << n;
        return out;
    }();
    auto cancelWriter = std::make_shared<Connection*>(nullptr);
    bench.add({.name = QStringLiteral("cancelling 50 orders at once (FanularOrden)"),
               .run = [cancelling, cancelled] {
                   CancelAnswered answered;
                   if (!*cancelling)
                       cancelling->reset(made("FanularOrden"));
                   QWidget* w = cancelling->get();
                   if (!cancelled->last.isEmpty()) {
                       QVariantList binds{false};
                       for (const int n : cancelled->last)
                           binds << n;
                       tq::amb1().execute(QStringLiteral("UPDATE orden SET anulada = ?, anulacion = NULL, "
                                                         "quien_anulo = NULL WHERE orden IN ")
                                              + inList(int(cancelled->last.size())),
                                          binds);
                   }
                   auto* left = w->findChild<tq::FlexGrid*>(QStringLiteral("Grid1"));
                   auto* right = w->findChild<tq::FlexGrid*>(QStringLiteral("Grid2"));
                   auto* add = w->findChild<QAbstractButton*>(QStringLiteral("Command1"));
                   for (int row = 1; row <= 50 && row < left->rows(); ++row) {
                       left->setRow(row);
                       add->click();
                   }
                   QList<int> moved;
                   for (int row = 1; row < right->rows(); ++row)
                       moved << right->textMatrix(row, 0).toInt();
                   w->findChild<QAbstractButton*>(QStringLiteral("Command3"))->click();
                   cancelled->last = moved;
                   cancelled->ever += moved;
                   return qint64(moved.size()) * 1'000'000 + dataRows(w, "Grid1");
               },
               .floor = [c, cancelled, bareSets, cancelWriter] {
                   static int round = 0;
                   if (!*cancelWriter)
                       *cancelWriter = openBare(c.store, false);
                   Connection* db = *cancelWriter;
                   reopenBare(db, cancelled->last);
                   const QList<int> mine = bareSets.mid((round++ % 2) * 50, 50);
                   execBare(db, "BEGIN");
                   Stmt close(db, "UPDATE orden SET anulada = ?, anulacion = ?, quien_anulo = ? "
                                  "WHERE orden = ? AND anulada = ?");
                   for (const int n : mine)
                       close.row(true, QDate::currentDate(), tq::state().currentUser, n, false);
                   execBare(db, "COMMIT");
                   cancelled->last = mine;
                   cancelled->ever += mine;
                   return qint64(mine.size()) * 1'000'000
                          + Stmt(db, QLatin1String(kPending) + QLatin1String(kByDate)).readAll(false);
               },
               .note = QStringLiteral("through the screen: 50 rows moved with \">\", \"&Elimiar\" "
                                      "pressed and answered Yes, the pending list read again; each "
                                      "round first puts the last round's orders back to pending"),
               .after = [c, cancelling, cancelled, cancelWriter] {
                   cancelling->reset();
                   if (!*cancelWriter)
                       *cancelWriter = openBare(c.store, false);
                   reopenBare(*cancelWriter, cancelled->ever);
                   closeBare(*cancelWriter);
                   *cancelWriter = nullptr;
                   cancelled->last.clear();
                   cancelled->ever.clear();
               }});
}

}  // namespace bench
