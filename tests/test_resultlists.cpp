// The pending list of results to print and the patient's history: what each lists, the
// search by patient, a row chosen up to its sheet, printing marking a whole sheet's lines,
// the history's colours and sorts.
#include "lab_fixture.h"

#include "foundation/base/appstate.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTextEdit>

using namespace tq;
using namespace tq::test;

namespace {

const QString kNone = "No existen Examenes pendientes creados";
const QString kUnpaid = "La factura aun no ha sido cancelada en su totalidad. desea continuar";
const QColor kGreen(167, 240, 30);   // 2027687 read as blue-green-red

// Ana (7) and Luis (8); invoice 998 sorts above 1001 as text and its day (20) above 1001's (5).
// Lines: factura, exam, evaluated, printed, format id. 1001's Glucosa and "acido urico" share
// one sheet (42); Luis's 1002 is unpaid.
void seed()
{
    for (auto [code, name] : {std::pair{11, "Hemograma"}, {12, "Glucosa"}, {13, "Urea"},
                              {14, "acido urico"}})
        amb1().insert("Examenes", {"cod_descripcionexamen", "examen"}, {code, name});
    for (auto [code, nombre, apellido] : {std::tuple{7, "Ana", "Ruiz"}, {8, "Luis", "Paz"}})
        amb1().insert("Pacientes", {"cod_paciente", "nombre_paciente", "apellido_paciente", "sexo",
                                    "fecha_nacimiento", "direccion_paciente", "tel_paciente",
                                    "cel_paciente", "correo"},
                      {code, nombre, apellido, code == 7 ? "Femenino" : "Masculino",
                       QDate(1990, 5, 10), "Col. Kennedy", "2230-1111", "9999-0000", "x@y.hn"});
    for (auto [factura, patient, day, paid] :
         {std::tuple{998, 7, QDate(2026, 1, 20), true}, {1001, 7, QDate(2026, 3, 5), true},
          {1002, 8, QDate(2026, 3, 6), false}})
        amb1().insert("Factura", {"factura", "cod_paciente", "fecha", "pagada", "edad_paciente"},
                      {factura, patient, day, paid, "35 Años"});
    for (auto [factura, exam, evaluated, printed, id] :
         {std::tuple{1001, 11, true, 0, 41}, {1001, 12, true, 0, 42}, {1001, 14, true, 0, 42},
          {998, 13, true, 1, 40}, {1002, 13, true, 0, 43}, {1002, 12, false, 0, 0}}) {
        amb1().insert("FacturaDetalle", {"factura", "cod_descripcionexamen", "cantidad", "evaluado",
                                         "num_impresion", "tecnico", "fecha_llenado",
                                         "iduniversalformato"},
                      {factura, exam, 1, evaluated, printed, "kcastro", QDate(2026, 3, 7),
                       id ? QVariant(id) : QVariant()});
        if (id)
            addResult(factura, 1, 1, id, "1", QString("Hoja %1").arg(id));
    }
}

FlexGrid* gridOf(QWidget* w) { return control<FlexGrid>(w, "Grid1"); }

// Each data row's visible columns joined, sorted: the list has no order of its own.
QStringList rowsShown(FlexGrid* g, const QList<int>& cols)
{
    QStringList out;
    for (int r = 1; r < g->rows(); ++r) {
        QStringList cells;
        for (int c : cols)
            cells << g->textMatrix(r, c);
        if (!cells.join("").isEmpty())
            out << cells.join('|');
    }
    out.sort();
    return out;
}

// Row by row: green and bold on every cell, plain on every cell, or mixed ("?").
QString colours(FlexGrid* g)
{
    QString out;
    for (int r = 1; r < g->rows(); ++r) {
        int green = 0;
        for (int c = 0; c < g->cols(); ++c)
            green += g->cellBackColor(r, c) == kGreen && g->cellFontBold(r, c);
        out += green == g->cols() ? 'G' : green == 0 ? '.' : '?';
    }
    return out;
}

QString label(QWidget* w, const char* name) { return control<QLabel>(w, name)->text(); }

// What the sheet opened showed: "name|date|age|page text".
QString sheetSeen(QWidget* sheet)
{
    return QStringList{label(sheet, "lblPaciente"), label(sheet, "lblFecha"), label(sheet, "lblEdad"),
                       control<QTextEdit>(sheet, "Rich1")->toPlainText()}
        .join('|');
}

const QList<int> kPendingCols = {0, 1, 2, 4, 5, 6, 7, 8};

}  // namespace

class TestResultLists : public QObject {
    Q_OBJECT

private slots:
    // The list and its search: pending lines only, all green; one patient through the picker.
    void pendingListAndSearch()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        QPointer<QWidget> w = openScreen("FImpresionResult");
        FlexGrid* g = gridOf(w);
        QCOMPARE(rowsShown(g, kPendingCols),
                 (QStringList{"1001|05/03/2026|Ana Ruiz|Glucosa|kcastro|07/03/2026|7|42",
                              "1001|05/03/2026|Ana Ruiz|Hemograma|kcastro|07/03/2026|7|41",
                              "1001|05/03/2026|Ana Ruiz|acido urico|kcastro|07/03/2026|7|42",
                              "1002|06/03/2026|Luis Paz|Urea|kcastro|07/03/2026|8|43"}));
        QCOMPARE(colours(g), QString("GGGG"));
        QVERIFY(sp.messages().isEmpty());
        QVERIFY(!control<QPushButton>(w, "Command1")->isEnabled());

        // By patient: the grid emptied; Buscar without a patient finds nothing.
        tick(control<QRadioButton>(w, "Option1"));
        QCOMPARE(g->rows(), 2);
        QCOMPARE(press(w, "Command3", sp), QStringList{kNone});
        // "..." gives Luis: his labels, then only his line.
        sp.onModal("FBuscarCliente", [](QWidget* picker) {
            FlexGrid* pg = gridOf(picker);
            clickGridRow(pg, findRow(pg, 0, "8"));
        });
        QCOMPARE(press(w, "Command1", sp), QStringList());
        QCOMPARE(edit(w, "Text1")->text(), QString("Luis, Paz"));
        QCOMPARE(QStringList({label(w, "Label6"), label(w, "Label7"), label(w, "Label8"),
                              label(w, "Label9"), label(w, "Label10")}),
                 (QStringList{"Masculino", "10/05/1990", "Col. Kennedy", "2230-1111 / 9999-0000",
                              "x@y.hn"}));
        typeKeys(edit(w, "Text1"), "zz");   // read-only: keys go nowhere
        QCOMPARE(edit(w, "Text1")->text(), QString("Luis, Paz"));
        QCOMPARE(press(w, "Command3", sp), QStringList());
        QCOMPARE(rowsShown(g, {0, 4}), QStringList{"1002|Urea"});
        // Back to every patient: the patient forgotten, the grid as it was.
        tick(control<QRadioButton>(w, "Option2"));
        QVERIFY(!control<QPushButton>(w, "Command1")->isEnabled());
        QCOMPARE(edit(w, "Text1")->text(), QString());
        QCOMPARE(rowsShown(g, {0, 4}), QStringList{"1002|Urea"});
        w->close();
    }

    // A row chosen: the unpaid question, the PDF that leaves it pending, one print that marks
    // both lines of a sheet, a patient gone since the list was read.
    void choosingPendingRows()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        QPointer<QWidget> w = openScreen("FImpresionResult");
        FlexGrid* g = gridOf(w);
        const auto modals = [&] {
            int n = 0;
            for (const Prompt& p : sp.prompts)
                n += p.kind == Prompt::Modal;
            return n;
        };

        // Unpaid, No: nothing opens, the list stays.
        sp.clear();
        sp.answers.push_back(Answer::No);
        clickGridRow(g, findRow(g, 4, "Urea"));
        QCOMPARE(sp.messages(), QStringList{kUnpaid});
        QCOMPARE(modals(), 0);
        QCOMPARE(g->rows(), 5);

        // Yes: the sheet with the patient read anew, the row's date and the invoice's age; sent
        // through the printer dialog it stays pending. Enter chooses as a click does.
        sp.clear();
        QString seen;
        sp.onModal("Form19", [&](QWidget* sheet) {
            seen = sheetSeen(sheet);
            QCOMPARE(state().idFormatoActual, 43);
            sp.printers.push_back(true);
            trigger(sheet, "pdf", sp);
        });
        g->setFocus();
        g->setRow(findRow(g, 4, "Urea"));
        QTest::keyClick(g, Qt::Key_Return);
        QCOMPARE(seen, QString("Luis Paz|06/03/2026|35 Años|Hoja 43"));
        QCOMPARE(rowsShown(g, {0, 4}).size(), 4);
        QVERIFY(control<QRadioButton>(w, "Option2")->isChecked());
        QCOMPARE(edit(w, "Text1")->text(), QString());

        // A paid invoice asks nothing; printing its shared sheet takes both lines off the list.
        sp.clear();
        sp.printed.clear();
        sp.onModal("Form19", [&](QWidget* sheet) { trigger(sheet, "imprimir", sp); });
        clickGridRow(g, findRow(g, 4, "Glucosa"));
        QCOMPARE(sp.printed.size(), 1);
        QCOMPARE(sp.messages(), QStringList());
        QCOMPARE(rowsShown(g, {0, 4}), (QStringList{"1001|Hemograma", "1002|Urea"}));
        QCOMPARE(count("SELECT count(*) FROM FacturaDetalle WHERE num_impresion = 1"), 3);

        // Ana deleted meanwhile: her row opens nothing and says nothing.
        amb1().execute("DELETE FROM Pacientes WHERE cod_paciente = 7");
        sp.clear();
        clickGridRow(g, findRow(g, 4, "Hemograma"));
        QCOMPARE(sp.prompts.size(), 0);
        QCOMPARE(g->rows(), 3);
        w->close();
    }

    // The history: every evaluated line of the patient, green until printed; the three sorts
    // keep each row's colour; a print while open changes nothing until the screen is reopened.
    void patientHistory()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        const auto open = [](int patient, const QString& name) {
            QWidget* h = ScreenRegistry::instance().create("FHistorial");
            h->setProperty("cod_paciente", patient);
            control<QLabel>(h, "Label9")->setText(name);
            h->show();
            return h;
        };
        QPointer<QWidget> w = open(7, "Ana M. Ruiz");
        FlexGrid* g = gridOf(w);
        QVERIFY(sp.messages().isEmpty());
        const auto byColumn = [&](int col) {
            QStringList out;
            for (int r = 1; r < g->rows(); ++r)
                out << g->textMatrix(r, col) + (colours(g).at(r - 1) == 'G' ? "*" : "");
            return out;
        };

        // Numbers read from the text: the invoice descending, the date by its day.
        const QList<std::tuple<const char*, int, QStringList>> sorts = {
            {"Option3", 0, {"1001*", "1001*", "1001*", "998"}},
            {"Option2", 3, {"Glucosa*", "Hemograma*", "Urea", "acido urico*"}},
            {"Option1", 1, {"20/01/2026", "05/03/2026*", "05/03/2026*", "05/03/2026*"}}};
        for (const auto& [option, col, expected] : sorts) {
            tick(control<QRadioButton>(w, option));
            QCOMPARE(byColumn(col), expected);
        }

        // Unpaid nowhere here; the sheet prints the name the patient screen gave.
        QString seen;
        sp.onModal("Form19", [&](QWidget* sheet) {
            seen = sheetSeen(sheet);
            trigger(sheet, "imprimir", sp);
        });
        clickGridRow(g, findRow(g, 3, "Hemograma"));
        QCOMPARE(seen, QString("Ana M. Ruiz|05/03/2026|35 Años|Hoja 41"));
        QCOMPARE(value("SELECT num_impresion FROM FacturaDetalle WHERE iduniversalformato = 41").toInt(), 1);
        QCOMPARE(colours(g).at(findRow(g, 3, "Hemograma") - 1), QChar('G'));
        QVERIFY(clickNamed(w, "Command1"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(w.isNull());

        // Reopened: the printed row is plain. A patient without results is told so.
        w = open(7, "Ana M. Ruiz");
        tick(control<QRadioButton>(w, "Option2"));
        QCOMPARE(gridOf(w)->rows(), 5);
        g = gridOf(w);
        QCOMPARE(byColumn(3), (QStringList{"Glucosa*", "Hemograma", "Urea", "acido urico*"}));
        w->close();
        sp.clear();
        w = open(99, "Nadie");
        QCOMPARE(sp.messages(), QStringList{kNone});
        w->close();
    }
};

QTEST_MAIN(TestResultLists)
#include "test_resultlists.moc"
