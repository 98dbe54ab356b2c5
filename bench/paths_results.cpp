// Printing and looking back at results: the pending list opened, a row of it
// chosen up to its hematology sheet on screen, a patient's history, a
// correction saved, a month of the change log to PDF, and a keystroke in the
// reprint list.
#include "bare.h"
#include "bench.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/corrections.h"
#include "lab/results/FHistorial.h"
#include "lab/results/FImpresionResult.h"
#include "lab/results/storedsheetopen.h"
#include "lab/sheets/gridsheet.h"
#include "lab/templates.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QApplication>
#include <QKeyEvent>
#include <array>
#include <memory>

namespace bench {

namespace {

constexpr int kHematologia = 2;
// The laboratory's most regular patient: the fill gives him about two
// hundred results.
constexpr int kRegularPatient = 1;

Target within(double ms, double ratio = 3.0)
{
    Target t;
    t.ceilingMs = ms;
    t.ratio = ratio;
    return t;
}

// The rows of a query a floor reads once, its first columns as text.
QStringList firstRow(Connection* db, const QString& sql)
{
    Stmt s(db, sql);
    QStringList out;
    if (s.next()) {
        for (int c = 0; c < s.columnCount(); ++c)
            out << s.columnText(c);
        while (s.next()) {
        }
    }
    return out;
}

// The names a hematology grid shows (columns 1 and 4).
qint64 namesOnGrid(tq::FlexGrid* g)
{
    qint64 n = 0;
    for (int r = 1; r < g->rows(); ++r)
        for (int col : {1, 4})
            n += g->textMatrix(r, col).isEmpty() ? 0 : 1;
    return n;
}

// Shows a modal sheet as the user would get it, counts its names and closes
// it; any message fails the path as the bench's own service does.
class SheetOnScreen : public PathPrompts {
public:
    qint64 names = -1;

    tq::Answer message(const QString& text, tq::Icon icon, const QString& title,
                       tq::Buttons buttons) override
    {
        SilentPrompts::message(text, icon, title, buttons);
        return tq::Answer::No;
    }
    void showModal(QWidget* screen) override
    {
        std::unique_ptr<QWidget> owned(screen);
        screen->show();
        QCoreApplication::processEvents();
        if (auto* sheet = dynamic_cast<tq::sheets::GridSheet*>(screen))
            names = namesOnGrid(sheet->grid());
    }
};

// A pending hematology line of a paid invoice: factura, format id, patient, day.
struct PendingLine {
    int factura = 0;
    int formatId = 0;
    int patient = 0;
    QDate day;
    int version = 0;
};

PendingLine pendingHematology(Connection* db)
{
    const QStringList row = firstRow(
        db, QStringLiteral(
                "SELECT FacturaDetalle.factura, FacturaDetalle.iduniversalformato, "
                "Factura.cod_paciente, Factura.fecha, resultados.version "
                "FROM FacturaDetalle, Factura, resultados "
                "WHERE Factura.factura = FacturaDetalle.factura "
                "AND resultados.iduniversalformato = FacturaDetalle.iduniversalformato "
                "AND resultados.celda = 'B1' AND resultados.Cod_Plantilla = 2 "
                "AND FacturaDetalle.num_impresion = 0 AND FacturaDetalle.evaluado = TRUE "
                "AND Factura.pagada = TRUE LIMIT 1"));
    PendingLine line;
    if (row.size() == 5) {
        line.factura = row[0].toInt();
        line.formatId = row[1].toInt();
        line.patient = row[2].toInt();
        line.day = QDate::fromString(row[3].left(10), Qt::ISODate);
        line.version = row[4].toInt();
    }
    return line;
}

// A stored hematology sheet 1 of an invoice: its rows as they stand, to be
// put back after the corrections.
struct KeptSheet {
    qint64 factura = 0;
    std::vector<std::array<QString, 4>> rows;   // celda, valor, version, id
};

KeptSheet keepSheet(Connection* db, qint64 factura)
{
    KeptSheet k;
    k.factura = factura;
    Stmt rows(db, "SELECT celda, valor, version, iduniversalformato FROM resultados "
                  "WHERE num_factura = ? AND NumFormato = 1 ORDER BY diferenciador");
    rows.bind(1, factura);
    while (rows.next())
        k.rows.push_back({rows.columnText(0), rows.columnText(1), rows.columnText(2),
                          rows.columnText(3)});
    return k;
}

void putBack(Connection* db, const KeptSheet& k, int lastChange)
{
    execBare(db, "BEGIN");
    Stmt del(db, "DELETE FROM resultados WHERE num_factura = ? AND NumFormato = 1");
    del.row(k.factura);
    Stmt add(db, "INSERT INTO resultados (num_factura, NumFormato, Cod_Plantilla, celda, valor, "
                 "version, iduniversalformato) VALUES (?, 1, ?, ?, ?, ?, ?)");
    const auto orNull = [](const QString& t) {
        return t.isEmpty() ? std::optional<int>() : std::optional<int>(t.toInt());
    };
    for (const auto& r : k.rows)
        add.row(k.factura, kHematologia, r[0], r[1], orNull(r[2]), orNull(r[3]));
    Stmt(db, "DELETE FROM celdasanteriores WHERE cod_cambio > ?").row(lastChange);
    Stmt(db, "DELETE FROM historialcambios WHERE cod_cambio > ?").row(lastChange);
    execBare(db, "COMMIT");
}


// The correction as the bare store would run it: the log's next number,
// the old rows kept and deleted, the new ones, the log line.
qint64 floorCorrection(Connection* db, qint64 factura)
{
    if (db->engine() == tq::Engine::Embedded) {
        execBare(db, "BEGIN IMMEDIATE");
    } else {
        execBare(db, "BEGIN");
        Stmt(db, "SELECT pg_advisory_xact_lock(?)").readAll(qint64(tq::dialect::kSaveLock));
    }
    Stmt version(db, "SELECT version FROM PlantillaParametro WHERE Cod_Plantilla = ? "
                     "ORDER BY version DESC LIMIT 1");
    version.readAll(kHematologia);
    const int code = int(scalarBare(db, "SELECT MAX(cod_cambio) FROM historialcambios")) + 1;
    Stmt(db, "INSERT INTO celdasanteriores (cod_cambio, Cod_Plantilla, NumFormato, celda, valor, "
             "version, iduniversalformato) SELECT CAST(? AS INTEGER), Cod_Plantilla, NumFormato, "
             "celda, valor, version, iduniversalformato FROM resultados "
             "WHERE num_factura = ? AND NumFormato = ? ORDER BY diferenciador")
        .row(code, factura, 1);
    Stmt(db, "DELETE FROM resultados WHERE num_factura = ? AND NumFormato = ?").row(factura, 1);
    Stmt cell(db, "INSERT INTO resultados (num_factura, Cod_Plantilla, celda, NumFormato, valor, "
                  "version) VALUES (?, ?, ?, ?, ?, ?)");
    qint64 rows = 0;
    for (const auto& [celda, valor] : hematologyCells()) {
        cell.row(factura, kHematologia, celda, 1, valor,
                 celda.startsWith('B') ? std::optional<int>(1) : std::nullopt);
        ++rows;
    }
    cell.row(factura, kHematologia, "W", 1, "", std::optional<int>(1));
    ++rows;
    Stmt(db, "INSERT INTO historialcambios (usuario, fecha, Factura, plantilla, descripcion, "
             "cod_cambio, tecnico, momento, NumFormato, Cod_Plantilla) "
             "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .row("admin", QDate::currentDate(), factura, "Hematologia", "bench", code, "bench",
             QDateTime::currentDateTime(), 1, kHematologia);
    execBare(db, "COMMIT");
    return rows + 1;
}

}  // namespace

void addResultPaths(Bench& bench, const Context& c)
{
    bench.add({.name = QStringLiteral("results: FImpresionResult opening with 5,000 pending lines"),
               .run = [] {
                   std::unique_ptr<QWidget> screen(
                       tq::ScreenRegistry::instance().create(QStringLiteral("FImpresionResult")));
                   screen->show();
                   QCoreApplication::processEvents();
                   return qint64(screen->findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows() - 1);
               },
               .floor = [c] { return Stmt(c.bare, FImpresionResult::sql(false)).readAll(); },
               .target = within(300, 1e9),
               .note = QStringLiteral("the screen built, every line read, the grid filled green and "
                                      "bold and shown; only the ceiling is a target")});

    const PendingLine line = pendingHematology(c.bare);
    bench.add({.name = QStringLiteral("results: choosing a pending row up to its hematology sheet on screen"),
               .run = [line] {
                   // What the list does with the row: the patient read anew, then the
                   // invoice, the sheet by its id, the screen laid out and shown.
                   tq::Recordset patient;
                   patient.open(FImpresionResult::patientSql(), {line.patient});
                   tq::results::ChosenLine chosen;
                   chosen.factura = line.factura;
                   chosen.formatId = line.formatId;
                   chosen.fecha = tq::dateLong(line.day);
                   chosen.paciente = patient.text(QStringLiteral("nombre_paciente"))
                                     + QLatin1Char(' ')
                                     + patient.text(QStringLiteral("apellido_paciente"));
                   SheetOnScreen screen;
                   tq::results::openStoredLine(chosen);
                   return screen.names;
               },
               .floor = [c, line] {
                   Stmt(c.bare, FImpresionResult::patientSql()).readAll(line.patient);
                   Stmt(c.bare, "SELECT pagada, edad_paciente FROM Factura WHERE factura = ?")
                       .readAll(line.factura);
                   Stmt(c.bare, "SELECT num_factura, NumFormato, Cod_Plantilla, celda, valor, "
                                "version, iduniversalformato FROM resultados "
                                "WHERE iduniversalformato = ? ORDER BY diferenciador")
                       .readAll(line.formatId);
                   Stmt(c.bare, "SELECT nombre_lab, eslogan_lab, direccion_lab, telefono_lab, "
                                "fax_lab, correo_lab FROM datos")
                       .readAll();
                   return hematologyNamesBare(c.bare, line.version);
               },
               .target = {.ceilingMs = 100.0, .smallFloorMs = 15.0},
               .note = QStringLiteral("the sheet screen is built, laid out and shown (closed "
                                      "again untimed of the list's requery); building the widgets "
                                      "allows 15 ms whatever the floor")});

    bench.add({.name = QStringLiteral("results: FHistorial for a patient with 200 results"),
               .run = [] {
                   std::unique_ptr<QWidget> screen(
                       tq::ScreenRegistry::instance().create(QStringLiteral("FHistorial")));
                   screen->setProperty("cod_paciente", kRegularPatient);
                   screen->findChild<QLabel*>(QStringLiteral("Label9"))->setText(QStringLiteral("Paciente"));
                   screen->show();
                   QCoreApplication::processEvents();
                   return qint64(screen->findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows() - 1);
               },
               .floor = [c] { return Stmt(c.bare, FHistorial::sql()).readAll(kRegularPatient); },
               .target = {.ceilingMs = 100.0, .smallFloorMs = 15.0},
               .note = QStringLiteral("the screen built, the patient's results read and shown; "
                                      "building the widgets allows 15 ms whatever the floor")});

    // Two hematology sheets 1 of the store, one for each side, corrected over
    // and over and put back afterwards.
    auto writer = std::make_shared<Connection*>(nullptr);
    auto kept = std::make_shared<std::vector<KeptSheet>>();
    auto lastChange = std::make_shared<int>(0);
    auto prepare = [c, writer, kept, lastChange] {
        if (*writer)
            return;
        *writer = openBare(c.store, false);
        Stmt sheets(*writer, "SELECT DISTINCT num_factura FROM resultados WHERE Cod_Plantilla = 2 "
                             "AND NumFormato = 1 AND celda = 'B1' AND num_factura < ? "
                             "ORDER BY num_factura DESC LIMIT 2");
        sheets.bind(1, c.invoice * 2);
        std::vector<int> invoices = intColumn(sheets);
        if (invoices.size() < 2)
            throw StoreError("no two hematology sheets to correct");
        kept->clear();
        for (int f : invoices)
            kept->push_back(keepSheet(*writer, f));
        *lastChange = int(scalarBare(*writer, "SELECT coalesce(MAX(cod_cambio), 0) FROM historialcambios"));
    };
    bench.add({.name = QStringLiteral("results: saving a correction of a hematology sheet"),
               .run = [prepare, kept] {
                   prepare();
                   tq::corrections::Target target;
                   target.factura = tq::toInt32(double(kept->at(0).factura));
                   target.numFormato = 1;
                   target.codPlantilla = kHematologia;
                   target.plantilla = QStringLiteral("Hematologia");
                   target.autorizo = QStringLiteral("admin");
                   target.tecnico = QStringLiteral("bench");
                   tq::corrections::saveGrid(target, QStringLiteral("bench"), hematologyCells(),
                                             QString());
                   return qint64(hematologyCells().size() + 2);
               },
               .floor = [prepare, writer, kept] {
                   prepare();
                   return floorCorrection(*writer, kept->at(1).factura);
               },
               .note = QStringLiteral("the same sheet corrected at each run; the sheets and the "
                                      "log are put back afterwards"),
               .after = [writer, kept, lastChange] {
                   if (!*writer)
                       return;
                   for (const KeptSheet& k : *kept)
                       putBack(*writer, k, *lastChange);
                   closeBare(*writer);
                   *writer = nullptr;
               }});

    static QTemporaryDir folder;
    const QString pdf = QDir(folder.path()).filePath(QStringLiteral("cambios.pdf"));
    const QDate to(2025, 12, 31);
    const QDate from(2025, 12, 1);
    const QString logSql = QStringLiteral(
        "SELECT * FROM historialcambios WHERE fecha >= ? AND fecha <= ? ORDER BY fecha");
    bench.add({.name = QStringLiteral("results: historial, a month of changes to PDF"),
               .run = [pdf, from, to, logSql] {
                   // As the listing opens its command before the report runs.
                   tq::amb1().rs(QStringLiteral("rsrepcambios")).open(logSql, {from, to});
                   tq::ReportPages seen;
                   tq::reportToPdf(QStringLiteral("DataReport22"), 22, {}, pdf, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, from, to, logSql] { return Stmt(c.bare, logSql).readAll(from, to); },
               .target = within(1000, 1e9),
               .note = QStringLiteral("the report laid out and written to a PDF file; only the "
                                      "ceiling is a target")});

    if (!tq::ScreenRegistry::instance().has(QStringLiteral("Form25")))
        return;
    // The box holds an invoice with sheets; each run is one key: a blank
    // after its number, or the blank taken away; both list the same sheets.
    const qint64 withSheets = qint64(scalarBare(
        c.bare, "SELECT MAX(num_factura) FROM resultados WHERE NumFormato = 2"));
    auto form25 = std::make_shared<std::unique_ptr<QWidget>>();
    bench.add({.name = QStringLiteral("results: one keystroke in Form25"),
               .run = [form25, withSheets] {
                   if (!*form25) {
                       form25->reset(
                           tq::ScreenRegistry::instance().create(QStringLiteral("Form25")));
                       (*form25)->show();
                       auto* box = (*form25)->findChild<QLineEdit*>(QStringLiteral("Text1"));
                       box->setText(QString::number(withSheets));
                   }
                   auto* box = (*form25)->findChild<QLineEdit*>(QStringLiteral("Text1"));
                   box->setFocus();
                   box->end(false);
                   const bool blank = box->text().endsWith(QLatin1Char(' '));
                   QKeyEvent key(QEvent::KeyPress, blank ? Qt::Key_Backspace : Qt::Key_Space,
                                 Qt::NoModifier, blank ? QString() : QStringLiteral(" "));
                   QApplication::sendEvent(box, &key);
                   return qint64((*form25)->findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows()
                                 - 1);
               },
               .floor = [c, withSheets] {
                   return Stmt(c.bare, "SELECT DISTINCT resultados.NumFormato, "
                                       "resultados.Cod_Plantilla, Plantilla.Plantilla FROM Plantilla "
                                       "INNER JOIN resultados ON Plantilla.Cod_Plantilla = "
                                       "resultados.Cod_Plantilla WHERE resultados.num_factura = ? "
                                       "ORDER BY 1, 2, 3")
                       .readAll(withSheets);
               },
               .note = QStringLiteral("the invoice box re-querying the sheets of an invoice with "
                                      "two"),
               .after = [form25] { form25->reset(); }});
}

}  // namespace bench
