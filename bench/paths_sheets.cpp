// The result sheets: "Llenar Resultado" up to the hematology sheet on screen,
// laid out with the patient's normal values, and the save of that sheet for
// three exams picked on the work table.
#include "bare.h"
#include "bench.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"
#include "lab/sheets.h"
#include "lab/sheets/gridsheet.h"
#include "lab/worktable.h"

#include <QCoreApplication>
#include <QHash>
#include <memory>

namespace bench {

// The names of a hematology version that land on the sheet, read as the
// rebuilt sheet reads them: the template, the catalogue rows of its names,
// their normal values.
qint64 hematologyNamesBare(Connection* db, int version)
{
    Stmt params(db, "SELECT PlantillaParametro.Cod_Plantilla, PlantillaParametro.cod_Parametro, "
                    "parametros.Parametro, parametros.Cod_Parametro, PlantillaParametro.version, "
                    "PlantillaParametro.orden FROM parametros, PlantillaParametro "
                    "WHERE parametros.cod_Parametro = PlantillaParametro.cod_Parametro "
                    "AND PlantillaParametro.Cod_Plantilla = ? AND PlantillaParametro.version = ? "
                    "ORDER BY PlantillaParametro.orden");
    params.bind(1, tq::kHematologia);
    params.bind(2, version);
    QStringList names;
    while (params.next())
        names << params.columnText(2);
    QStringList wanted;
    for (int i = 0; i < names.size() && i < 22; ++i)
        if (names.at(i) != tq::kLineBreakParameter && !wanted.contains(names.at(i)))
            wanted << names.at(i);
    if (wanted.isEmpty())
        return 0;
    Stmt byName(db, QStringLiteral("SELECT cod_parametro, parametro, unidad FROM parametros "
                                   "WHERE parametro IN (%1) ORDER BY cod_parametro")
                        .arg(QStringList(wanted.size(), QStringLiteral("?")).join(", ")));
    for (int i = 0; i < wanted.size(); ++i)
        byName.bind(i + 1, wanted.at(i));
    QHash<QString, int> codeOf;
    while (byName.next())
        if (!codeOf.contains(byName.columnText(1)))
            codeOf.insert(byName.columnText(1), byName.columnInt(0));
    qint64 placed = 0;
    for (int i = 0; i < names.size() && i < 22; ++i)
        placed += codeOf.contains(names.at(i)) ? 1 : 0;
    if (!codeOf.isEmpty()) {
        Stmt normals(db, QStringLiteral("SELECT cod_parametro, cod_sexo, valor_normal FROM "
                                        "valparametros WHERE cod_parametro IN (%1) "
                                        "ORDER BY cod_parametro, cod_sexo")
                             .arg(QStringList(codeOf.size(), QStringLiteral("?")).join(", ")));
        int at = 0;
        for (int code : codeOf)
            normals.bind(++at, code);
        normals.readAll();
    }
    return placed;
}

QList<std::pair<QString, QString>> hematologyCells()
{
    QList<std::pair<QString, QString>> cells;
    for (int r = 1; r <= 11; ++r)
        cells.append({QStringLiteral("B%1").arg(r), QStringLiteral("%1.5").arg(r)});
    for (int r = 1; r <= 10; ++r)
        cells.append({QStringLiteral("E%1").arg(r), QStringLiteral("%1").arg(r * 10)});
    return cells;
}

namespace {

constexpr int kHematologia = 2;

// The invoices the save path writes on, far above the store's own numbers,
// one for each side, with the three exams the sheet serves.
constexpr qint64 kOursInvoice = 2'050'000'000;
constexpr qint64 kBareInvoice = 2'060'000'000;

// Parameter names of the latest hematology version, as the sheet lays them.
qint64 placedNames(Connection* db)
{
    Stmt version(db, "SELECT version FROM PlantillaParametro WHERE Cod_Plantilla = ? "
                     "ORDER BY version DESC LIMIT 1");
    version.bind(1, kHematologia);
    int v = 0;
    while (version.next())
        v = version.columnInt(0);
    return hematologyNamesBare(db, v);
}

qint64 floorOpening(Connection* db, int invoice)
{
    scalarBare(db, "SELECT MAX(iduniversalformato) FROM resultados");
    Stmt(db, "SELECT nombre_lab, eslogan_lab, direccion_lab, telefono_lab, fax_lab, correo_lab "
             "FROM datos")
        .readAll();
    Stmt(db, "SELECT Pacientes.sexo, Pacientes.fecha_nacimiento, Pacientes.eadulto FROM Factura "
             "INNER JOIN Pacientes ON Pacientes.cod_paciente = Factura.cod_paciente "
             "WHERE Factura.factura = ?")
        .readAll(invoice);
    return placedNames(db);
}

// An invoice of three hematology lines, made once for a side.
void makeInvoice(Connection* db, qint64 number, int patient, int exam)
{
    execBare(db, "BEGIN");
    Stmt(db, "INSERT INTO Factura (factura, fecha, cod_paciente, faturado, sub_total, total, "
             "pagada, credito, anulada) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .row(number, QDate::currentDate(), patient, "bench", "300.00", "300.00", true, false,
             false);
    Stmt line(db, "INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad, "
                  "subtotal) VALUES (?, ?, ?, ?)");
    for (int i = 0; i < 3; ++i)
        line.row(number, exam + i, 1, "100.00");
    execBare(db, "COMMIT");
}

void removeInvoice(Connection* db, qint64 number)
{
    for (const char* sql : {"DELETE FROM resultados WHERE num_factura = ?",
                            "DELETE FROM EvaluadoTemporal WHERE factura = ?",
                            "DELETE FROM FacturaDetalle WHERE factura = ?",
                            "DELETE FROM Factura WHERE factura = ?"}) {
        Stmt del(db, sql);
        del.bind(1, number);
        while (del.next()) {
        }
    }
}


// The save as the bare store would run it: the format id checked, the
// sheet's number in its invoice, the cells and the comment, and the three
// exams closed onto their lines.
qint64 floorSave(Connection* db, qint64 invoice, const std::vector<int>& waiting, int exam)
{
    // The save takes the store for writing as the program's saves do.
    if (db->engine() == tq::Engine::Embedded) {
        execBare(db, "BEGIN IMMEDIATE");
    } else {
        execBare(db, "BEGIN");
        Stmt(db, "SELECT pg_advisory_xact_lock(?)").readAll(qint64(tq::dialect::kSaveLock));
    }
    const qint64 id = qint64(scalarBare(db, "SELECT MAX(iduniversalformato) FROM resultados")) + 1;
    Stmt taken(db, "SELECT 1 FROM resultados WHERE iduniversalformato = ? LIMIT 1");
    taken.readAll(id);
    Stmt version(db, "SELECT version FROM PlantillaParametro WHERE Cod_Plantilla = ? "
                     "ORDER BY version DESC LIMIT 1");
    version.readAll(kHematologia);
    Stmt last(db, "SELECT NumFormato FROM resultados WHERE num_factura = ? "
                  "ORDER BY diferenciador DESC LIMIT 1");
    int num = 1;
    last.bind(1, invoice);
    while (last.next())
        num = last.columnInt(0) + 1;
    Stmt cell(db, "INSERT INTO resultados (num_factura, Cod_Plantilla, celda, NumFormato, valor, "
                  "version, iduniversalformato) VALUES (?, ?, ?, ?, ?, ?, ?)");
    qint64 rows = 0;
    for (const auto& [celda, valor] : hematologyCells()) {
        cell.row(invoice, kHematologia, celda, num, valor, 1, id);
        ++rows;
    }
    cell.row(invoice, kHematologia, "W", num, "", 1, id);
    ++rows;
    Stmt code(db, "SELECT cod_descripcionexamen FROM EvaluadoTemporal "
                  "WHERE factura = ? AND correlativo = ?");
    Stmt del(db, "DELETE FROM EvaluadoTemporal WHERE factura = ? AND correlativo = ?");
    const QString rowId = tq::dialect::rowIdentity(db->engine());
    Stmt stamp(db, QStringLiteral("UPDATE FacturaDetalle SET evaluado = ?, tecnico = ?, "
                                  "iduniversalformato = ?, fecha_llenado = ? WHERE %1 = "
                                  "(SELECT MIN(%1) FROM FacturaDetalle WHERE factura = ? "
                                  "AND cod_descripcionexamen = ?)")
                       .arg(rowId));
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        code.readAll(invoice, waiting[i]);
        del.row(invoice, waiting[i]);
        stamp.row(true, "bench", id, QDate::currentDate(), invoice, exam + int(i));
        ++rows;
    }
    execBare(db, "COMMIT");
    return rows;
}

// Three exams waiting for a side's invoice; their numbers.
std::vector<int> addWaiting(Connection* db, qint64 invoice, int exam)
{
    execBare(db, "BEGIN");
    Stmt add(db, "INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen, examen) "
                 "VALUES (?, ?, ?)");
    for (int i = 0; i < 3; ++i)
        add.row(invoice, exam + i, "Hemograma");
    execBare(db, "COMMIT");
    Stmt numbers(db, "SELECT correlativo FROM EvaluadoTemporal WHERE factura = ? "
                     "ORDER BY correlativo");
    numbers.bind(1, invoice);
    return intColumn(numbers);
}

}  // namespace

void addSheetPaths(Bench& bench, const Context& c)
{
    const int invoice = c.invoice;
    bench.add({.name = QStringLiteral("Llenar Resultado up to the hematology sheet laid out (Form20)"),
               .run = [invoice] {
                   tq::sheets::SheetContext context;
                   context.factura = invoice;
                   context.proposedFormatId = tq::proposeFormatId();
                   context.picks.append({QStringLiteral("Hemograma"), QStringLiteral("Paciente"),
                                         QString(), 1, invoice});
                   context.invoices = {invoice};
                   std::unique_ptr<QWidget> screen(
                       tq::ScreenRegistry::instance().create(QStringLiteral("Form20")));
                   auto* sheet = dynamic_cast<tq::sheets::GridSheet*>(screen.get());
                   sheet->startEntry(context, {});
                   screen->show();
                   QCoreApplication::processEvents();
                   qint64 placed = 0;
                   for (int r = 1; r < sheet->grid()->rows(); ++r)
                       for (int col : {1, 4})
                           placed += sheet->grid()->textMatrix(r, col).isEmpty() ? 0 : 1;
                   return placed;
               },
               .floor = [c, invoice] { return floorOpening(c.bare, invoice); },
               // Building and showing the screen's widgets is in the path, not in the floor.
               .target = {.ceilingMs = 100.0, .smallFloorMs = 15.0},
               .note = QStringLiteral("the screen is built, laid out with the patient's normal "
                                      "values and shown; the floor reads the same rows; building "
                                      "the widgets allows 15 ms whatever the floor")});

    const int patient = int(scalarBare(c.bare, "SELECT MIN(cod_paciente) FROM Pacientes"));
    const int exam = int(scalarBare(c.bare, "SELECT MIN(cod_descripcionexamen) FROM Examenes"));
    auto writer = std::make_shared<Connection*>(nullptr);
    auto prepared = std::make_shared<bool>(false);
    auto prepare = [c, writer, prepared, patient, exam] {
        if (*prepared)
            return;
        *writer = openBare(c.store, false);
        removeInvoice(*writer, kOursInvoice);
        removeInvoice(*writer, kBareInvoice);
        makeInvoice(*writer, kOursInvoice, patient, exam);
        makeInvoice(*writer, kBareInvoice, patient, exam);
        *prepared = true;
    };
    bench.add({.name = QStringLiteral("hematology sheet save for three picked exams (Form20)"),
               .run = [prepare, writer, exam] {
                   prepare();
                   const std::vector<int> waiting = addWaiting(*writer, kOursInvoice, exam);
                   tq::sheets::SheetContext context;
                   context.factura = tq::toInt32(double(kOursInvoice));
                   context.invoices = {context.factura};
                   context.tecnico = QStringLiteral("bench");
                   context.proposedFormatId = tq::proposeFormatId();
                   for (int n : waiting)
                       context.picks.append({QStringLiteral("Hemograma"), QStringLiteral("Paciente"),
                                             QString(), n, context.factura});
                   const tq::sheets::SavedSheet saved = tq::sheets::saveGridSheet(
                       kHematologia, hematologyCells(), QString(), context);
                   return qint64(hematologyCells().size() + 1 + saved.closed);
               },
               .floor = [prepare, writer, exam] {
                   prepare();
                   const std::vector<int> waiting = addWaiting(*writer, kBareInvoice, exam);
                   return floorSave(*writer, kBareInvoice, waiting, exam);
               },
               .note = QStringLiteral("each run puts three exams on the work table first (on both "
                                      "sides); the sheets are taken away afterwards"),
               .after = [writer, prepared] {
                   if (!*writer)
                       return;
                   removeInvoice(*writer, kOursInvoice);
                   removeInvoice(*writer, kBareInvoice);
                   closeBare(*writer);
                   *writer = nullptr;
                   *prepared = false;
               }});
}

}  // namespace bench
