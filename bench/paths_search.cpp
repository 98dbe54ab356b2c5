// The invoice search (Form9): opening it with every invoice listed, and one
// change of its criterion by number, by name and by day.
#include "bare.h"
#include "bench.h"

#include "billing/search/Form9.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QRadioButton>

namespace bench {

namespace {

// The search screen's steps as its buttons and boxes run them.
class SearchScreen : public Form9 {
public:
    tq::DataGrid* grid() const { return findChild<tq::DataGrid*>(QStringLiteral("DataGrid1")); }

    qint64 load(const char* option)
    {
        findChild<QRadioButton*>(QLatin1String(option))->setChecked(true);
        aplicarFiltro();
        return grid()->rows();
    }

    // One keystroke: the text before it is put without narrowing.
    qint64 keystroke(const QString& before, const QString& typed)
    {
        auto* text1 = findChild<QLineEdit*>(QStringLiteral("Text1"));
        text1->blockSignals(true);
        text1->setText(before);
        text1->blockSignals(false);
        text1->setText(before + typed);
        return grid()->rows();
    }

    qint64 day(const QDate& d)
    {
        auto* picker = findChild<QDateEdit*>(QStringLiteral("DTPicker1"));
        picker->blockSignals(true);
        picker->setDate(d.addDays(-1));
        picker->blockSignals(false);
        picker->setDate(d);
        return grid()->rows();
    }
};

// A screen whose list is loaded in the order of `option` (not timed).
SearchScreen& loaded(const char* option)
{
    static SearchScreen* screen = new SearchScreen;
    static const char* current = nullptr;
    if (current != option) {
        screen->load(option);
        current = option;
    }
    return *screen;
}

const char* const kJoin = " FROM Pacientes INNER JOIN Factura ON Pacientes.cod_paciente = "
                          "Factura.cod_paciente";
const char* const kPorFecha =
    "SELECT Factura.fecha, Factura.factura, Factura.cod_paciente, Pacientes.nombre_paciente, "
    "Pacientes.apellido_paciente, Factura.total, Factura.faturado, Factura.tipo_factura";
const char* const kPorNombre =
    "SELECT Pacientes.nombre_paciente, Pacientes.apellido_paciente, Factura.fecha, "
    "Factura.factura, Factura.cod_paciente, Factura.total, Factura.faturado, Factura.tipo_factura";
const char* const kPorNumero =
    "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, Pacientes.nombre_paciente, "
    "Pacientes.apellido_paciente, Factura.total, Factura.faturado, Factura.tipo_factura";

// Every order of the list reads in invoice number order.
QString sql(const char* columns, const char* condition = "", const char* limit = "")
{
    return QLatin1String(columns) + QLatin1String(kJoin) + QLatin1String(condition)
           + QLatin1String(" ORDER BY Factura.factura") + QLatin1String(limit);
}

// The list reads its first 1000 rows; scrolling to their end reads more.
const char* const kFirst = " LIMIT 1000";

}  // namespace

void addSearchPaths(Bench& bench, const Context& c)
{
    bench.add({.name = QStringLiteral("invoice search opening, every invoice (Form9)"),
               .run = [] {
                   auto* screen = new SearchScreen;
                   const qint64 rows = screen->load("Option1");
                   delete screen;
                   return rows;
               },
               .floor = [c] { return Stmt(c.bare, sql(kPorFecha, "", kFirst)).readAll(); },
               // Building the screen's widgets (about 3 ms) is in the path, not in the floor.
               .target = {.ceilingMs = 300.0, .smallFloorMs = 15.0},
               .note = QStringLiteral("the screen made and \"Aplicar Filtro\" pressed: the first "
                                      "1000 invoices with their patients in the grid, more read "
                                      "as it is scrolled (reading all 200000 bare takes about "
                                      "1 s); building the widgets allows 15 ms whatever the "
                                      "floor")});

    bench.add({.name = QStringLiteral("invoice search by number, one keystroke (Form9)"),
               .run = [c] {
                   const QString n = QString::number(c.invoice);
                   return loaded("Option3").keystroke(n.chopped(1), n.right(1));
               },
               .floor = [c] {
                   return Stmt(c.bare, sql(kPorNumero, " WHERE Factura.factura = ?"))
                       .readAll(c.invoice);
               }});

    bench.add({.name = QStringLiteral("invoice search by name, one keystroke (Form9)"),
               .run = [] { return loaded("Option2").keystroke(QStringLiteral("Mar"), QStringLiteral("t")); },
               .floor = [c] {
                   // The patients named first, their invoices in number order, the
                   // name checked again as the list's filter does.
                   const QString mart = QStringLiteral("%Mart%");
                   return Stmt(c.bare, sql(kPorNombre,
                                           " WHERE Factura.cod_paciente IN (SELECT cod_paciente FROM "
                                           "Pacientes WHERE nombre_paciente LIKE ?) "
                                           "AND Pacientes.nombre_paciente LIKE ?",
                                           kFirst))
                       .readAll(mart, mart);
               },
               .note = QStringLiteral("\"Mart\" anywhere in the patient's name: 4637 invoices, "
                                      "the first 1000 read")});

    bench.add({.name = QStringLiteral("invoice search by day (Form9)"),
               .run = [c] { return loaded("Option1").day(c.cutDay); },
               .floor = [c] {
                   return Stmt(c.bare, sql(kPorFecha, " WHERE Factura.fecha = ?")).readAll(c.cutDay);
               }});
}

}  // namespace bench
