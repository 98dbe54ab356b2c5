// The fill-in screens of the grid templates and of parasitology: layout, typing, save, paper.
#include "lab_fixture.h"
#include "pdftext.h"
#include "store_faults.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "lab/sheets/Form23.h"
#include "lab/sheets/gridsheet.h"
#include "lab/templates.h"
#include "lab/worktable.h"

#include <QPlainTextEdit>
#include <QPointer>

using namespace tq;
using namespace tq::sheets;
using namespace tq::test;

namespace {

// A patient's invoice with one line and one waiting exam per exam code.
struct Billed {
    std::int32_t factura = 0;
    QString paciente;
    QList<int> waiting;   // correlativos
};

Billed bill(std::int32_t factura, const QString& nombre, const QString& sexo,
            const QList<int>& exams)
{
    const QVariant patient = amb1().insert(
        "Pacientes", {"nombre_paciente", "apellido_paciente", "sexo", "fecha_nacimiento", "eadulto"},
        {nombre, "Flores", sexo, QDate(1980, 4, 2), false});
    amb1().insert("Factura", {"factura", "cod_paciente", "fecha"},
                  {factura, patient, QDate::currentDate()});
    Billed b{factura, nombre + " Flores", {}};
    for (int exam : exams)
        b.waiting << addWaiting(factura, exam, "Hemograma");
    return b;
}

SheetContext contextOf(const Billed& b)
{
    SheetContext c;
    for (int correlativo : b.waiting)
        c.picks << PickedExam{"Hemograma", b.paciente, "45", correlativo, b.factura};
    c.invoices = {b.factura};
    c.factura = b.factura;
    c.proposedFormatId = proposeFormatId();
    c.tecnico = "ana";
    return c;
}

// Parameters `prefix`1..n in one template, each with normal value "N<i>" for everybody and unit "u<i>".
void makeTemplate(int code, const QString& prefix, int n)
{
    QStringList names;
    for (int i = 1; i <= n; ++i) {
        const int cod = rowsIn("parametros") + 1;
        names << prefix + QString::number(i);
        amb1().insert("parametros", {"cod_parametro", "parametro", "unidad"},
                      {cod, names.last(), "u" + QString::number(i)});
        amb1().insert("valparametros", {"cod_parametro", "cod_sexo", "valor_normal"},
                      {cod, 4, "N" + QString::number(i)});
    }
    QVERIFY(saveTemplateVersion(code, names) >= 1);
}

// The screen of a template, shown and started for the exams of `b`.
GridSheet* startSheet(const QString& name, const Billed& b, QList<SavedSheet>* saves = nullptr)
{
    auto* sheet = qobject_cast<GridSheet*>(openScreen(name));
    if (sheet)
        sheet->startEntry(contextOf(b), [saves](const SavedSheet& s) {
            if (saves)
                saves->append(s);
        });
    return sheet;
}


// A click on the cell, then the text typed key by key.
void enter(FlexGrid* g, int row, int col, const QString& text)
{
    clickCell(g, row, col);
    typeKeys(g, text);
}

// The result cells of an invoice, "celda=valor", in the order saved.
QStringList cellsOf(std::int32_t factura)
{
    return rowsOf("SELECT celda, valor FROM resultados WHERE num_factura = ? "
                  "ORDER BY diferenciador", {factura});
}

}  // namespace

class TestSheets : public QObject {
    Q_OBJECT

private slots:
    // Layout of each grid template, then the typing rules of its grid.
    void templatesLaidOutAndTyped()
    {
        TempStore store;
        ScriptedPrompts sp;
        makeTemplate(kHematologia, "H", 23);
        makeTemplate(kUroanalisis, "U", 8);
        makeTemplate(kQuimica, "Q", 3);
        // A man's and a woman's normal value: the patient (a woman) decides.
        amb1().execute("DELETE FROM valparametros WHERE cod_parametro = 2");
        for (const auto& [sexo, valor] : {std::pair{1, "40-54"}, {2, "36-48"}})
            amb1().insert("valparametros", {"cod_parametro", "cod_sexo", "valor_normal"},
                          {2, sexo, valor});
        const Billed marta = bill(500, "Marta", "Femenino", {7});

        // Hematology: 22 of 23 parameters in two panels, no unit proposed.
        QPointer<GridSheet> h = startSheet("Form20", marta);
        QVERIFY(h);
        FlexGrid* g = h->grid();
        QCOMPARE(g->rows(), 14);
        for (const auto& [r, c, text] : QList<std::tuple<int, int, QString>>{
                 {0, 4, "        Leucograma"}, {1, 1, "H1"}, {1, 3, "N1"}, {2, 3, "36-48"},
                 {11, 1, "H11"}, {1, 4, "H12"}, {1, 6, "N12"}, {11, 4, "H22"}, {11, 6, "N22"},
                 {1, 2, ""}})
            QVERIFY2(g->textMatrix(r, c) == text, qPrintable(QString("%1,%2: ").arg(r).arg(c) + text));
        for (int r = 1; r < g->rows(); ++r)
            for (int c = 0; c < g->cols(); ++c)
                QVERIFY2(!g->textMatrix(r, c).contains("23"), qPrintable(g->textMatrix(r, c)));

        // Only result and normal columns take keys; a click starts a hematology result afresh.
        enter(g, 1, 2, "13.5 g");
        pressKey(g, Qt::Key_Backspace);
        pressKey(g, Qt::Key_Backspace);
        QCOMPARE(g->textMatrix(1, 2), QString("13.5"));
        clickCell(g, 1, 2);
        typeKeys(g, "ñ");
        QCOMPARE(g->textMatrix(1, 2), QString("ñ"));
        enter(g, 1, 6, "*");   // a normal value corrected by hand keeps its text
        QCOMPARE(g->textMatrix(1, 6), QString("N12*"));
        enter(g, 1, 1, "x");   // names are not typed over
        pressKey(g, Qt::Key_Backspace);
        QCOMPARE(g->textMatrix(1, 1), QString("H1"));
        clickCell(g, 12, 5);   // a blank cell: Backspace leaves it blank
        pressKey(g, Qt::Key_Backspace);
        typeKeys(g, "7");
        pressKey(g, Qt::Key_Left);   // keys without a character move the cursor
        typeKeys(g, "8");
        QCOMPARE(g->textMatrix(12, 4), QString());
        QCOMPARE(g->textMatrix(12, 5), QString("7"));
        h->close();

        // Urinalysis: row 8 is its second header and takes nothing; units proposed.
        QPointer<GridSheet> u = startSheet("Form21", marta);
        g = u->grid();
        QCOMPARE(g->rows(), 18);
        QCOMPARE(column(g, 1).mid(0, 9),
                 (QStringList{"U1", "U2", "U3", "U4", "U5", "U6", "U7",
                              "EXAMEN QUIMICO CUALITATIVO", "U8"}));
        QCOMPARE(column(g, 2).mid(0, 9),
                 (QStringList{"u1", "u2", "u3", "u4", "u5", "u6", "u7", "     VALORES", "u8"}));
        QCOMPARE(g->textMatrix(8, 3), QString("   OTROS"));
        QCOMPARE(g->textMatrix(10, 1), QString());
        enter(g, 1, 2, "+");   // the proposed text stays, the key goes behind it
        QCOMPARE(g->textMatrix(1, 2), QString("u1+"));
        enter(g, 8, 2, "9");
        QCOMPARE(g->textMatrix(8, 2), QString("     VALORES"));
        // A layout shown again replaces the cells and leaves the second header.
        u->showLayout({{1, 1, "Color"}});
        QCOMPARE(column(g, 1).mid(0, 3), (QStringList{"Color", "", ""}));
        QCOMPARE(g->textMatrix(8, 1), QString("EXAMEN QUIMICO CUALITATIVO"));
        u->close();

        // Chemistry adds behind what the cell holds.
        QPointer<GridSheet> q = startSheet("Form22", marta);
        g = q->grid();
        enter(g, 2, 2, "95");
        enter(g, 2, 2, " mg");
        QCOMPARE(g->textMatrix(2, 2), QString("95 mg"));
        q->close();
    }

    // A save that fails halfway leaves nothing; one sheet closes all its exams under one
    // format id (moved on, told, when taken); then on paper; parasitology's fields as cells.
    void savingAndPrintingSheets()
    {
        TempStore store;
        ScriptedPrompts sp;
        makeTemplate(kHematologia, "H", 12);
        makeTemplate(kQuimica, "Q", 4);

        // The store failing halfway: no cell stays, no exam leaves the table; healed, it saves.
        const Billed elena = bill(503, "Elena", "Femenino", {7, 8});
        QList<SavedSheet> saves;
        QPointer<GridSheet> q = startSheet("Form22", elena, &saves);
        enter(q->grid(), 1, 2, "90");
        enter(q->grid(), 2, 2, "1.1");
        StoreFaults faults;
        faults.failAfter(2);
        const QStringList said = trigger(q, "guardar", sp);
        QVERIFY2(said.size() == 1 && said[0].startsWith("No se pudo guardar el resultado."),
                 qPrintable(said.join('|')));
        QCOMPARE(rowsIn("resultados"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura = 503"), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE evaluado = TRUE"), 0);
        QVERIFY(saves.isEmpty());
        faults.heal();
        QCOMPARE(trigger(q, "guardar", sp), QStringList{kSheetSaved});
        QCOMPARE(cellsOf(503), (QStringList{"B1=90", "B2=1.1", "W="}));
        q->close();

        // Hematology for two exams: cells and comment under sheet 1, the id moved on, saved once.
        const Billed b = bill(502, "Lucia", "Femenino", {7, 8});
        saves.clear();
        QPointer<GridSheet> w = startSheet("Form20", b, &saves);
        const std::int32_t proposed = proposeFormatId();
        addResult(999, 1, 5, proposed, "1", "otra mesa");
        FlexGrid* g = w->grid();
        enter(g, 1, 2, "14.2");
        enter(g, 3, 5, "6500");
        // A normal value longer than its column widens it, on paper too.
        enter(g, 4, 6, "entre 4500 y 11000 por milimetro cubico");
        type(control<QPlainTextEdit>(w, "Text1"), "Muestra hemolizada");
        const std::int32_t id = proposed + 1;
        QCOMPARE(trigger(w, "guardar", sp), (QStringList{formatIdMoved(proposed, id), kSheetSaved}));
        const QString under = QString("|1|%1|1").arg(id);
        QCOMPARE(rowsOf("SELECT celda, valor, NumFormato, iduniversalformato, version FROM resultados "
                        "WHERE num_factura = 502 ORDER BY diferenciador", {}, "|"),
                 (QStringList{"B1|14.2" + under, "E3|6500" + under, "W|Muestra hemolizada" + under}));
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE factura = 502 AND evaluado = TRUE "
                       "AND iduniversalformato = ? AND tecnico = ?", {id, "ana"}), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura = 502"), 0);
        QCOMPARE(saves.size(), 1);
        QCOMPARE(trigger(w, "guardar", sp), QStringList{"<guardar disabled>"});

        // The dialog's PDF leaves the sheet pending, as does a printer that got nothing;
        // the default printer marks it; a PDF file holds it.
        const auto printedMarks = [] {
            return count("SELECT COUNT(*) FROM FacturaDetalle WHERE factura = 502 AND num_impresion = 1");
        };
        sp.printers.push_back(true);
        QCOMPARE(trigger(w, "pdf", sp), QStringList());
        sp.defaultPrinter = false;
        trigger(w, "imprimir", sp);
        QCOMPARE(printedMarks(), 0);
        sp.defaultPrinter = true;
        trigger(w, "imprimir", sp);
        QCOMPARE(printedMarks(), 2);
        QCOMPARE(sp.printed.size(), 2);
        const QString paper = pdfTextOf(sp.printed.last());
        for (const char* seen : {"HEMATOLOGIA", "Lucia Flores", "14.2", "6500", "N1", "H12",
                                 "entre 4500 y 11000 por milimetro cubico", "Muestra hemolizada",
                                 "Jefe de Laboratorio"})
            QVERIFY2(paper.contains(seen), seen);
        QTemporaryDir dir;
        sp.files.push_back(dir.filePath("hoja"));
        QCOMPARE(trigger(w, "pdfArchivo", sp), QStringList());
        QVERIFY(pdfText(dir.filePath("hoja.pdf")).contains("Lucia Flores"));
        w->close();

        // Parasitology: fields saved as cells 1 to 10, empty ones and the comment left out.
        const Billed ana = bill(504, "Ana", "Femenino", {9});
        QPointer<Form23> p = qobject_cast<Form23*>(openScreen("Form23"));
        QVERIFY(p);
        p->startEntry(contextOf(ana), {});
        type(edit(p, "Text1"), "Café");
        type(edit(p, "Text3"), "Pastosa");
        type(edit(p, "Text10"), "Levaduras");
        QCOMPARE(trigger(p, "guardar", sp), QStringList{kSheetSaved});
        QCOMPARE(cellsOf(504), (QStringList{"1=Café", "3=Pastosa", "10=Levaduras"}));
        QCOMPARE(count("SELECT COUNT(*) FROM resultados WHERE num_factura = 504 AND version IS NOT NULL"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura = 504"), 0);
        p->close();
    }
};

QTEST_MAIN(TestSheets)
#include "test_sheets.moc"
