// A saved sheet back on its screen (every family, from its stored rows), the
// normal values a reprint prints, the comment over a header, what a reprint's
// print marks, and the correction's save: one transaction that keeps the
// cells it replaces.
#include "lab_fixture.h"
#include "store_faults.h"

#include "foundation/base/apperror.h"
#include "foundation/base/appstate.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "billing/invoice/demoinvoices.h"
#include "foundation/data/demo.h"
#include "lab/corrections.h"
#include "lab/demoresults.h"
#include "lab/sheets/Form23.h"
#include "lab/sheets/gridsheet.h"
#include "lab/templates.h"
#include "lab/worktable.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>

using namespace tq;
using namespace tq::sheets;
using namespace tq::test;

namespace {

// A patient's invoice with one waiting exam.
SheetContext billed(std::int32_t factura, const QString& sexo)
{
    const QVariant patient = amb1().insert(
        "Pacientes", {"nombre_paciente", "apellido_paciente", "sexo", "fecha_nacimiento", "eadulto"},
        {"Pedro", "Mejia", sexo, QDate(1970, 1, 5), false});
    amb1().insert("Factura", {"factura", "cod_paciente", "fecha", "pagada"},
                  {factura, patient, QDate(2026, 11, 2), true});
    SheetContext c;
    c.picks << PickedExam{"Examen", "Pedro Mejia", "56", addWaiting(factura, 7), factura};
    c.invoices = {factura};
    c.factura = factura;
    c.proposedFormatId = proposeFormatId();
    c.tecnico = "ana";
    return c;
}

// Parameters P<code>_1..n of a template; every one with a single normal value
// but the first, which has a man's "M" and a woman's "F".
void makeTemplate(int code, int n)
{
    QStringList names;
    for (int i = 1; i <= n; ++i) {
        const int cod = rowsIn("parametros") + 1;
        names << QString("P%1_%2").arg(code).arg(i);
        amb1().insert("parametros", {"cod_parametro", "parametro", "unidad"},
                      {cod, names.last(), "u"});
        if (i == 1) {
            for (const auto& [sexo, valor] : {std::pair{1, "M"}, {2, "F"}})
                amb1().insert("valparametros", {"cod_parametro", "cod_sexo", "valor_normal"},
                              {cod, sexo, valor});
        } else {
            amb1().insert("valparametros", {"cod_parametro", "cod_sexo", "valor_normal"},
                          {cod, 4, QString("N%1").arg(i)});
        }
    }
    QVERIFY(saveTemplateVersion(code, names) >= 1);
}

// Every cell of a grid below the header, "row,col=text" for those not empty.
QStringList gridCellsOf(FlexGrid* g)
{
    QStringList out;
    for (int r = 1; r < g->rows(); ++r)
        for (int c = 0; c < g->cols(); ++c)
            if (!g->textMatrix(r, c).isEmpty())
                out << QString("%1,%2=%3").arg(r).arg(c).arg(g->textMatrix(r, c));
    return out;
}

// What a family's screen shows of its body.
QString bodyOf(SheetScreen* s)
{
    if (auto* grid = qobject_cast<GridSheet*>(s))
        return gridCellsOf(grid->grid()).join('|') + "|W=" + grid->comment();
    if (auto* para = qobject_cast<Form23*>(s))
        return para->fields().join('|');
    return control<QTextEdit>(s, "Rich1")->toPlainText();
}

// Types what a technician would on the family's screen.
void fillIn(SheetScreen* s, int code)
{
    if (auto* grid = qobject_cast<GridSheet*>(s)) {
        FlexGrid* g = grid->grid();
        const GridShape& shape = gridShape(code);
        int n = 0;
        for (int col : shape.savedCols)
            for (int r = 1; r <= 3; ++r)
                g->setTextMatrix(r, col, QString("v%1").arg(++n));
        control<QPlainTextEdit>(s, "Text1")->setPlainText("Muestra hemolizada");
    } else if (qobject_cast<Form23*>(s)) {
        control<QLineEdit>(s, "Text2")->setText("Fecal");
        control<QLineEdit>(s, "Text9")->setText("No se observan");
    } else {
        control<QTextEdit>(s, "Rich1")->setPlainText("GLUCOSA 90 mg/dL\nUREA 30");
    }
}

QString screenOf(int code)
{
    return code == kBlankTemplate2 ? QStringLiteral("Form36") : entryScreenName(code);
}

corrections::Target targetOf(std::int32_t factura, std::int32_t numFormato, int code)
{
    return {factura, numFormato, code, "Hematologia", "jefe", "ana"};
}

}  // namespace

class TestStoredSheets : public QObject {
    Q_OBJECT

private slots:
    // Each family saved from its screen comes back, from its rows, cell for
    // cell as it was saved; a grid reprint is locked, as is the blank page,
    // but not the second free-text page.
    void everyFamilyComesBackAsSaved()
    {
        TempStore store;
        ScriptedPrompts sp;
        for (int code : {kHematologia, kUroanalisis, kQuimica})
            makeTemplate(code, 4);
        std::int32_t factura = 900;
        for (int code : {kBlankTemplate, kHematologia, kUroanalisis, kQuimica, kParasitologia,
                         kBlankTemplate2}) {
            // A woman's: her normal value is the one every reprint shows.
            const SheetContext context = billed(++factura, "Femenino");
            QPointer<SheetScreen> entry = qobject_cast<SheetScreen*>(openScreen(screenOf(code)));
            QVERIFY(entry);
            std::int32_t savedId = 0;
            entry->startEntry(context, [&](const SavedSheet& s) { savedId = s.formatId; });
            fillIn(entry, code);
            QVERIFY2(trigger(entry, "guardar", sp).contains(kSheetSaved), qPrintable(screenOf(code)));
            const QString asSaved = bodyOf(entry);
            entry->close();

            const StoredSheet stored = readSheetById(savedId);
            QCOMPARE(stored.codPlantilla, code);
            QCOMPARE(stored.factura, factura);
            QPointer<SheetScreen> again = qobject_cast<SheetScreen*>(openScreen(screenOf(code)));
            again->showStored(stored, {"Pedro Mejia", "02/11/2026", "56"});
            QCOMPARE(bodyOf(again), asSaved);
            QCOMPARE(control<QLabel>(again, "lblPaciente")->text(), QString("Pedro Mejia"));
            const bool stillOpen = code == kBlankTemplate2;
            QCOMPARE(control<QAction>(again, "guardar")->isEnabled(), stillOpen);
            if (auto* grid = qobject_cast<GridSheet*>(again.data())) {
                // Keys no longer reach a cell.
                grid->grid()->setFocus();
                grid->grid()->setRow(1);
                grid->grid()->setCol(2);
                typeKeys(grid->grid(), "9");
                QCOMPARE(bodyOf(again), asSaved);
            }
            again->close();
        }
    }

    // A man gets the man's normal value when his sheet is filled and the
    // woman's whenever it is shown again; chemistry's stored normal cells
    // ("C", "F") overwrite what the template put there.
    void reprintNormalValues()
    {
        TempStore store;
        makeTemplate(kHematologia, 2);
        makeTemplate(kQuimica, 2);
        const PatientClass man{false, 1};
        const QList<Cell> atEntry = layOutVersion(kHematologia, 1, Normals::Entry, man);
        const auto normalAt = [](const QList<Cell>& cells, int row, int col) {
            QString text;
            for (const Cell& c : cells)
                if (c.row == row && c.col == col)
                    text = c.text;   // the last write wins, as on the grid
            return text;
        };
        QCOMPARE(normalAt(atEntry, 1, 3), QString("M"));
        StoredSheet hema{kHematologia, 1, 1, 1, 1, {{"B1", "14"}, {"W", ""}}};
        QCOMPARE(normalAt(rebuildGrid(hema).cells, 1, 3), QString("F"));
        QCOMPARE(normalAt(rebuildGrid(hema).cells, 2, 3), QString("N2"));

        StoredSheet chem{kQuimica, 1, 1, 1, 1, {{"B2", "90"}, {"C2", "70-110"}, {"F1", "x"}}};
        const QList<Cell> cells = rebuildGrid(chem).cells;
        QCOMPARE(normalAt(cells, 2, 3), QString("70-110"));
        QCOMPARE(normalAt(cells, 1, 6), QString("x"));
    }

    // The comment goes to the box in every grid family and, in hematology
    // and urinalysis only, over the header of the column the row before it
    // went to (blank when the comment is).
    void commentOverTheHeader()
    {
        TempStore store;
        struct Case {
            int code;
            QList<StoredCell> cells;
            int headerCol;   // -1: the headers stay
            QString comment;
        };
        const QList<Case> cases = {
            {kHematologia, {{"B1", "4.5"}, {"E2", "60"}, {"W", "Hemolizada"}}, 5, "Hemolizada"},
            {kHematologia, {{"E2", "60"}, {"B1", "4.5"}, {"W", ""}}, 2, ""},
            {kUroanalisis, {{"B1", "Amarillo"}, {"D3", "2-4"}, {"W", "Turbia"}}, 4, "Turbia"},
            {kHematologia, {{"W", "Primero"}}, 0, "Primero"},
            {kQuimica, {{"B1", "90"}, {"E2", "1.0"}, {"W", "Lipemica"}}, -1, "Lipemica"},
        };
        for (const Case& c : cases) {
            const RebuiltGrid rebuilt = rebuildGrid({c.code, 1, 1, 1, 1, c.cells});
            QCOMPARE(rebuilt.comment, c.comment);
            QList<Cell> overHeader;
            for (const Cell& cell : rebuilt.cells)
                if (cell.row == 0)
                    overHeader << cell;
            if (c.headerCol < 0) {
                QVERIFY(overHeader.isEmpty());
                continue;
            }
            QCOMPARE(overHeader.size(), 1);
            QCOMPARE(overHeader.first().col, c.headerCol);
            QCOMPARE(overHeader.first().text, c.comment);
        }
    }

    // A reprint's "imprimir" marks every line of the current format id (two
    // exams of one sheet at once), none when nothing set it, and never from
    // the second free-text page; the printer dialog marks nothing.
    void whatAReprintMarks()
    {
        TempStore store;
        ScriptedPrompts sp;
        struct Case {
            QString screen;
            QString action;
            std::int32_t current;   // the current format id when printing
            int marked;             // lines of sheet 41 marked printed
        };
        const QList<Case> cases = {
            {"Form20", "imprimir", 41, 2},
            {"Form20", "imprimir", 0, 0},
            {"Form20", "pdf", 41, 0},
            {"Form36", "imprimir", 41, 0},
            {"Form19", "imprimir", 41, 2},
        };
        for (const Case& c : cases) {
            amb1().execute("DELETE FROM FacturaDetalle");
            for (int exam : {3, 4})
                amb1().insert("FacturaDetalle",
                              {"factura", "cod_descripcionexamen", "evaluado", "num_impresion",
                               "iduniversalformato"},
                              {70, exam, true, 0, 41});
            state().idFormatoActual = c.current;
            QPointer<SheetScreen> s = qobject_cast<SheetScreen*>(openScreen(c.screen));
            s->showStored({kHematologia, 1, 70, 1, 41, {{"B1", "1"}, {"1", "texto"}}},
                          {"Ana", "01/11/2026", {}});
            sp.printers.push_back(true);
            trigger(s, c.action, sp);
            s->close();
            QVERIFY2(count("SELECT COUNT(*) FROM FacturaDetalle WHERE num_impresion = 1") == c.marked,
                     qPrintable(c.screen + " " + c.action));
        }
        state().idFormatoActual = 0;
    }

    // A correction replaces the sheet's rows as sheet 1 in the latest
    // version, with the version on the rows each family writes it on and no
    // format id, logs the change, and keeps the rows it took away; a second
    // correction keeps its own, and both read back side by side.
    void correctionsKeepWhatTheSheetSaid()
    {
        TempStore store;
        makeTemplate(kHematologia, 2);
        makeTemplate(kHematologia, 2);   // version 2
        for (const auto& [celda, valor] : {std::pair{"B1", "4.1"}, {"E1", "70"}, {"W", "x"}})
            addResult(80, 2, kHematologia, 55, celda, valor);
        amb1().execute("UPDATE resultados SET version = 1");

        corrections::Saved first = corrections::saveGrid(targetOf(80, 2, kHematologia), "Error de Prueba",
                                                          {{"B1", "4.5"}, {"E1", "70"}}, "y");
        QCOMPARE(first.numFormato, 1);
        QCOMPARE(first.version, 2);
        QCOMPARE(first.earlierCells, 3);
        QCOMPARE(rowsOf("SELECT celda, valor, NumFormato, COALESCE(version, 0) AS v, "
                        "COALESCE(iduniversalformato, 0) AS id FROM resultados ORDER BY diferenciador"),
                 QStringList({"B1=4.5=1=2=0", "E1=70=1=0=0", "W=y=1=2=0"}));
        QCOMPARE(rowsOf("SELECT Factura, plantilla, usuario, tecnico, descripcion, NumFormato "
                        "FROM historialcambios"),
                 QStringList{"80=Hematologia=jefe=ana=Error de Prueba=2"});

        corrections::saveGrid(targetOf(80, 1, kHematologia), "Error en Digitación",
                              {{"B1", "4.5"}, {"E1", "72"}}, "y");
        const QList<corrections::Change> changes = corrections::changesOfInvoice(80);
        QCOMPARE(changes.size(), 2);
        QCOMPARE(changes.at(0).before.size(), 3);
        QCOMPARE(changes.at(0).before.at(0).valor, QString("4.1"));
        QCOMPARE(changes.at(1).before.at(1).valor, QString("70"));
        QCOMPARE(changes.at(1).autorizo, QString("jefe"));

        const corrections::Versions v = corrections::versionsOf(80, kHematologia);
        QCOMPARE(v.titles.size(), 3);
        QCOMPARE(v.celdas, QStringList({"B1", "E1", "W"}));
        QCOMPARE(v.values.at(0), QStringList({"4.1", "4.5", "4.5"}));
        QCOMPARE(v.changed.at(0), QList<bool>({false, true, false}));
        QCOMPARE(v.changed.at(1), QList<bool>({false, false, true}));
    }

    // Without a reason, or when the store fails midway, the stored sheet
    // stands whole and nothing is logged or kept.
    void aFailedCorrectionChangesNothing()
    {
        TempStore store;
        makeTemplate(kUroanalisis, 2);
        for (const auto& [celda, valor] : {std::pair{"B1", "Amarillo"}, {"D2", "2-4"}, {"W", ""}})
            addResult(81, 1, kUroanalisis, 60, celda, valor);
        const QStringList before = rowsOf("SELECT * FROM resultados ORDER BY diferenciador");
        const auto unchanged = [&] {
            QCOMPARE(rowsOf("SELECT * FROM resultados ORDER BY diferenciador"), before);
            QCOMPARE(rowsIn("historialcambios"), 0);
            QCOMPARE(rowsIn("celdasanteriores"), 0);
        };
        try {
            corrections::saveGrid(targetOf(81, 1, kUroanalisis), "", {{"B1", "Rojo"}}, "");
            QFAIL("a correction without a reason was saved");
        } catch (const AppError& e) {
            QCOMPARE(e.message(), corrections::kNoReason);
        }
        unchanged();
        StoreFaults faults;
        for (int writes : {1, 3}) {
            faults.failAfter(writes);
            QVERIFY_THROWS_EXCEPTION(DbError, corrections::saveGrid(targetOf(81, 1, kUroanalisis),
                                                                     "Error de Prueba",
                                                                     {{"B1", "Rojo"}}, ""));
            faults.heal();
            unchanged();
        }
    }

    // The demo laboratory comes with a printed blood count and a chemistry
    // sheet waiting to be printed, saved as the bench saves them.
    void demoResults()
    {
        TempStore store;
        fillDemo(amb1().connection());
        addDemoInvoices();
        addDemoResults();
        QCOMPARE(rowsOf("SELECT d.factura, e.examen, d.num_impresion FROM FacturaDetalle d "
                        "JOIN Examenes e ON e.cod_descripcionexamen = d.cod_descripcionexamen "
                        "WHERE d.evaluado = TRUE ORDER BY d.factura"),
                 (QStringList{"1=Hemograma Completo=1", "2=Glucosa en Ayunas=0"}));
        QCOMPARE(readSheet(2, 1, kQuimica).cells.size(), 2);
        addDemoResults();   // a second time adds nothing
        QCOMPARE(rowsIn("resultados"), 8);
    }
};

QTEST_MAIN(TestStoredSheets)
#include "test_storedsheets.moc"
