// The free-text result pages: line counter, stored texts, a page saved onto each invoice, paper.
#include "lab_fixture.h"
#include "pdftext.h"
#include "store_faults.h"

#include "foundation/data/amb1.h"
#include "lab/sheets/Form36.h"
#include "lab/sheets/opensheet.h"
#include "lab/templates.h"
#include "lab/worktable.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QTextEdit>

using namespace tq;
using namespace tq::sheets;
using namespace tq::test;

namespace {

const QString kAge = "30 Años 2 meses";
const QString kStored = "Los datos se han almacenado satisfactoriamente";

// The captions of a stored-text menu, as the user reads them.
QStringList entries(QWidget* w, const QString& menu)
{
    QStringList out;
    for (QAction* a : control<QMenu>(w, menu)->actions())
        if (a->isVisible())
            out << a->text();
    return out;
}

QAction* entry(QWidget* w, const QString& menu, const QString& caption)
{
    for (QAction* a : control<QMenu>(w, menu)->actions())
        if (a->isVisible() && a->text() == caption)
            return a;
    return nullptr;
}

void addStored(int menu, const QString& name, const QString& text)
{
    amb1().insert("submenusformatoblanco", {"codigo_formatoblanco", "submenu", "valorsubmenu"},
                  {menu, name, text});
}

// Types `lines` lines, each closed with Enter.
void typeLines(QTextEdit* box, int lines)
{
    for (int i = 1; i <= lines; ++i) {
        typeKeys(box, "linea " + QString::number(i));
        pressKey(box, Qt::Key_Return);
    }
}

}  // namespace

class TestBlankPage : public QObject {
    Q_OBJECT

private slots:
    // The line counter, the menus of stored texts, and the screens that add and delete them.
    void typingAndStoredTexts()
    {
        TempStore store;
        ScriptedPrompts sp;
        addStored(3, "Glucosa en Heces", "GLUCOSA");
        addStored(1, "Heces", "EXAMEN GENERAL DE HECES\nColor:");
        addStored(2, "VDRL", "V.D.R.L.");
        addStored(1, "Orina", "ORINA");
        addStored(3, "Perfil Lipidico", "PERFIL");
        QPointer<QWidget> w = openScreen("Form19");
        QCOMPARE(entries(w, "parasit"), (QStringList{"Heces", "Orina"}));   // the store's order
        QCOMPARE(entries(w, "serologia"), QStringList{"VDRL"});

        // Thirteen Enters make fourteen lines; the fourteenth takes no key, a paste still goes in.
        auto* box = control<QTextEdit>(w, "Rich1");
        box->setFocus();
        typeLines(box, 13);
        typeKeys(box, "x");
        pressKey(box, Qt::Key_Backspace);
        pressKey(box, Qt::Key_Return);
        QCOMPARE(box->toPlainText().count('\n'), 13);
        QVERIFY(box->toPlainText().endsWith("linea 13\n"));
        QTextCursor first(box->document());
        first.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        box->setTextCursor(first);
        trigger(w, "copy", sp);
        trigger(w, "paste", sp);
        QVERIFY(box->toPlainText().endsWith("linea 13\nlinea 1"));

        // A stored text replaces the page; emptying the page does not lower the count.
        entry(w, "parasit", "Heces")->trigger();
        QCOMPARE(box->toPlainText(), QString("EXAMEN GENERAL DE HECES\nColor:"));
        trigger(w, "borrar", sp);
        typeKeys(box, "x");
        QCOMPARE(box->toPlainText(), QString());
        // Opened on its own, the page saves nothing.
        QCOMPARE(trigger(w, "guardar", sp),
                 QStringList{"Esta hoja no se abrió desde la mesa de trabajo para ningún examen, "
                             "así que no se guardó nada."});
        QCOMPARE(rowsIn("resultados"), 0);

        // "Guardar Formato como Plantilla": a name under any menu refused; a new one in its menu.
        box->setPlainText("PRUEBA DE EMBARAZO");
        bool opened = false;
        sp.onModal("Guardadoblanco", [&](QWidget* g) {
            opened = true;
            auto* combo = control<QComboBox>(g, "Combo1");
            retype(edit(g, "Text1"), "Heces");
            pickEntry(combo, 1);
            QCOMPARE(press(g, "Command1", sp), QStringList{"El nombre del formato ya existe por favor "
                                                           "modifiquelo y pruebe nuevamente"});
            QVERIFY(g->isVisible());
            retype(edit(g, "Text1"), "Embarazo");
            QCOMPARE(press(g, "Command1", sp), QStringList{kStored});
        });
        trigger(w, "plantilla", sp);
        QVERIFY(opened);
        QCOMPARE(rowsOf("SELECT codigo_formatoblanco, valorsubmenu FROM submenusformatoblanco "
                        "WHERE submenu = 'Embarazo'"), QStringList{"2=PRUEBA DE EMBARAZO"});
        QCOMPARE(entries(w, "serologia"), (QStringList{"VDRL", "Embarazo"}));

        // "Borrar Plantilla" deletes the first row whose name ends so; the menu loses its last.
        opened = false;
        sp.onModal("borrarformatoblanco", [&](QWidget* b) {
            opened = true;
            auto* list = control<QListWidget>(b, "List1");
            QCOMPARE(list->count(), 6);
            list->setCurrentRow(1);   // "Heces": "Glucosa en Heces" also ends so, and comes first
            QCOMPARE(press(b, "Command1", sp, Answer::No),
                     QStringList{"Esta seguro que quiere eliminar este formato de resultado"});
            QCOMPARE(rowsIn("submenusformatoblanco"), 6);
            list->setCurrentRow(1);
            QCOMPARE(press(b, "Command1", sp, Answer::Yes),
                     (QStringList{"Esta seguro que quiere eliminar este formato de resultado",
                                  "El formato de resultado ha sido borrado"}));
            QCOMPARE(list->count(), 5);
        });
        trigger(w, "borrarresult", sp);
        QVERIFY(opened);
        QCOMPARE(rowsOf("SELECT codigo_formatoblanco, submenu FROM submenusformatoblanco "
                        "ORDER BY submenu", {}, ":"),
                 (QStringList{"2:Embarazo", "1:Heces", "1:Orina", "3:Perfil Lipidico", "2:VDRL"}));
        QCOMPARE(entries(w, "quimicas"), QStringList{"Glucosa en Heces"});
        entry(w, "quimicas", "Glucosa en Heces")->trigger();
        QCOMPARE(box->toPlainText(), QString("PRUEBA DE EMBARAZO"));
        trigger(w, "salir", sp);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!w);

        // On its own, with no sheet behind it: an empty page is kept.
        sp.clear();
        QPointer<QWidget> g = openScreen("Guardadoblanco");
        retype(edit(g, "Text1"), "Vacio");
        pickEntry(control<QComboBox>(g, "Combo1"), 5);
        QCOMPARE(press(g, "Command1", sp), QStringList{kStored});
        QCOMPARE(rowsOf("SELECT codigo_formatoblanco, valorsubmenu FROM submenusformatoblanco "
                        "WHERE submenu = 'Vacio'"), QStringList{"6="});
        g->close();

        // The second page: the same counter at 36; a stored page shown for reprint.
        QPointer<Form36> six = qobject_cast<Form36*>(openScreen("Form36"));
        QVERIFY(six);
        auto* box6 = control<QTextEdit>(six, "Rich1");
        box6->setFocus();
        typeLines(box6, 37);
        QCOMPARE(box6->toPlainText().count('\n'), 37);
        StoredSheet stored;
        stored.codPlantilla = kBlankTemplate2;
        stored.cells = {{"1", "GLUCOSA: 90 mg/dL"}};
        six->showStored(stored, {"Rosa Diaz", "03/02/2026", {}});
        QCOMPARE(box6->toPlainText(), QString("GLUCOSA: 90 mg/dL"));
        QCOMPARE(control<QLabel>(six, "lblPaciente")->text(), QString("Rosa Diaz"));
        six->close();
    }

    // One page for two invoices: a row each under one moved-on format id, all or nothing; paper.
    void oneSheetForTwoInvoices()
    {
        TempStore store;
        ScriptedPrompts sp;
        amb1().execute("UPDATE datos SET nombre_lab = 'Laboratorio Santa Ana'");
        SheetContext context;
        for (std::int32_t factura : {501, 502}) {
            amb1().insert("Factura", {"factura", "cod_paciente"}, {factura, 1});
            context.picks << PickedExam{"Prueba", "Ana Lopez", kAge, addWaiting(factura, 7, "Prueba"),
                                        factura};
        }
        context.invoices = {501, 502};
        context.factura = 502;
        context.proposedFormatId = proposeFormatId();
        context.tecnico = "ana";
        context.today = QDate(2026, 3, 9);
        // Sheet 1 of invoice 501 exists; another bench took the proposed id.
        addResult(501, 1, 1, context.proposedFormatId, "1", "antes");
        const std::int32_t id = context.proposedFormatId + 1;
        const auto printedLines = [] {
            return count("SELECT COUNT(*) FROM FacturaDetalle WHERE num_impresion = 1");
        };

        sp.onModal("Form19", [&](QWidget* w) {
            QCOMPARE(control<QLabel>(w, "lblFecha")->text(), QString("09/03/2026"));
            QVERIFY(control<QLabel>(w, "lblDireccion")->text().contains(" email: "));
            auto* box = control<QTextEdit>(w, "Rich1");
            typeKeys(box, "Prueba de embarazo: POSITIVO");

            StoreFaults faults;
            faults.failAfter(2);
            const QStringList said = trigger(w, "guardar", sp);
            QVERIFY2(said.size() == 1 && said[0].startsWith("No se pudo guardar el resultado."),
                     qPrintable(said.join('|')));
            QCOMPARE(rowsIn("resultados"), 1);
            QCOMPARE(rowsIn("EvaluadoTemporal"), 2);
            faults.heal();

            QCOMPARE(trigger(w, "guardar", sp),
                     (QStringList{formatIdMoved(id - 1, id), kSheetSaved, kSheetSaved}));
            QCOMPARE(trigger(w, "guardar", sp), QStringList{"<guardar disabled>"});
            QCOMPARE(printedLines(), 0);
            trigger(w, "imprimir", sp);
            QCOMPARE(printedLines(), 2);
        });
        QVERIFY(openForWorkTable(kBlankTemplate, context));

        const QString sheet = QString::number(id) + "|Prueba de embarazo: POSITIVO";
        QCOMPARE(rowsOf("SELECT num_factura, NumFormato, Cod_Plantilla, celda, iduniversalformato, "
                        "valor FROM resultados WHERE valor <> 'antes' ORDER BY diferenciador", {}, "|"),
                 (QStringList{"501|2|1|1|" + sheet, "502|1|1|1|" + sheet}));
        QCOMPARE(rowsIn("EvaluadoTemporal"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE evaluado = TRUE AND "
                       "iduniversalformato = ? AND tecnico = 'ana'", {id}), 2);

        QCOMPARE(sp.printed.size(), 1);
        const QString paper = pdfTextOf(sp.printed.last());
        for (const char* seen : {"Laboratorio Santa Ana", "Resultados de Laboratorio", "Ana Lopez",
                                 "30 Años 2 meses", "Prueba de embarazo: POSITIVO",
                                 "Jefe de Laboratorio"})
            QVERIFY2(paper.contains(QString::fromUtf8(seen)), seen);
    }
};

QTEST_MAIN(TestBlankPage)
#include "test_blankpage.moc"
