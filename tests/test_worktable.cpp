// The work table, "Llenado de Resultados": the tree of waiting exams in its
// two views, the detail of a clicked node, picking exams of one patient, the
// invoices listed, the choice of template and what the sheet is handed.
#include "lab_fixture.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"
#include "lab/sheets/opensheet.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

using namespace tq;
using namespace tq::test;

namespace {

// Stands in for the hematology sheet: keeps what the work table handed it,
// and saves when the test says so.
class StandInSheet : public QWidget, public sheets::EntrySheet {
public:
    using QWidget::QWidget;
    static inline sheets::SheetContext handed;
    static inline int opened = 0;
    void startEntry(const sheets::SheetContext& context,
                    std::function<void(const sheets::SavedSheet&)> onSaved) override
    {
        handed = context;
        ++opened;
        m_saved = std::move(onSaved);
    }
    void save() { m_saved(sheets::SavedSheet{}); }

private:
    std::function<void(const sheets::SavedSheet&)> m_saved;
};

// Two patients, three exam types (one with nothing waiting), an exam whose
// result is not filled here and a voided invoice. Ana's Hemograma was billed
// with quantity 3. Luis's code (104) is also the correlativo of Ana's Glucosa.
void seed()
{
    for (auto [code, name] : {std::pair{1, "HEMATOLOGIA"}, {2, "QUIMICA"}, {3, "SEROLOGIA"}})
        amb1().insert("TipoExamen", {"cod_tipo_examen", "tipo_examen"}, {code, name});
    for (auto [code, name, type, fills] :
         {std::tuple{11, "Hemograma", 1, true}, {12, "Glucosa", 2, true}, {13, "Urea", 2, true},
          {14, "Toma a domicilio", 3, false}})
        amb1().insert("Examenes",
                      {"cod_descripcionexamen", "examen", "cod_tipo_examen", "llenaresultado"},
                      {code, name, type, fills});
    for (auto [code, nombre, apellido, sexo, born] :
         {std::tuple{7, "Ana", "Ruiz", "Femenino", QDate(1990, 5, 10)},
          {104, "Luis", "Paz", "Masculino", QDate(1985, 1, 1)}})
        amb1().insert("Pacientes", {"cod_paciente", "nombre_paciente", "apellido_paciente", "sexo",
                                    "fecha_nacimiento"}, {code, nombre, apellido, sexo, born});
    for (auto [factura, patient, edad, voided] :
         {std::tuple{1001, 7, "35 Años 2 meses", false}, {1002, 104, "", false},
          {1003, 104, "40 Años", true}, {1004, 7, "35 Años 2 meses", false}})
        amb1().insert("Factura", {"factura", "cod_paciente", "edad_paciente", "anulada"},
                      {factura, patient, edad, voided});
    for (auto [correlativo, factura, exam, name] :
         {std::tuple{101, 1001, 11, "Hemograma"}, {102, 1001, 11, "Hemograma"},
          {103, 1001, 11, "Hemograma"}, {104, 1001, 12, "Glucosa"}, {105, 1002, 12, "Glucosa"},
          {106, 1002, 14, "Toma a domicilio"}, {107, 1003, 13, "Urea"}, {108, 1004, 13, "Urea"}})
        amb1().insert("EvaluadoTemporal", {"correlativo", "factura", "cod_descripcionexamen", "examen"},
                      {correlativo, factura, exam, name});
}

QTreeWidget* treeOf(QWidget* w) { return control<QTreeWidget>(w, "TreeView1"); }

// The whole tree, two blanks of indent per level.
QStringList outline(QTreeWidget* tree)
{
    QStringList out;
    std::function<void(QTreeWidgetItem*, int)> walk = [&](QTreeWidgetItem* item, int depth) {
        out << QString(depth * 2, ' ') + item->text(0);
        for (int i = 0; i < item->childCount(); ++i)
            walk(item->child(i), depth + 1);
    };
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        walk(tree->topLevelItem(i), 0);
    return out;
}

bool anyExpanded(QTreeWidget* tree, bool expanded)
{
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        if ((*it)->childCount() > 0 && (*it)->isExpanded() == expanded)
            return true;
    return false;
}

// A click with the mouse on the node of that text, opened to it first.
void clickNode(QWidget* w, const QString& text)
{
    QTreeWidget* tree = treeOf(w);
    const auto found = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
    QVERIFY2(found.size() == 1, qPrintable(text));
    for (QTreeWidgetItem* p = found.first()->parent(); p; p = p->parent())
        p->setExpanded(true);
    tree->scrollToItem(found.first());
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                      tree->visualItemRect(found.first()).center());
}

QString label(QWidget* w, const char* name) { return control<QLabel>(w, name)->text(); }

// Label4, 5, 6, 8, 11, 12 as one text.
QString detail(QWidget* w)
{
    QStringList out;
    for (const char* n : {"Label4", "Label5", "Label6", "Label8", "Label11", "Label12"})
        out << label(w, n);
    return out.join('|');
}

QStringList listed(QWidget* w)
{
    auto* list = control<QListWidget>(w, "List1");
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->item(i)->text();
    return out;
}

FlexGrid* gridOf(QWidget* w) { return control<FlexGrid>(w, "Grid1"); }

// Columns 1 to 5 of a pick: exam, patient, age, correlativo, invoice.
QString gridRow(FlexGrid* g, int row)
{
    QStringList out;
    for (int c = 1; c <= 5; ++c)
        out << g->textMatrix(row, c);
    return out.join('|');
}

}  // namespace

class TestWorkTable : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        ScreenRegistry::instance().add("Form20", [](QWidget* p) { return new StandInSheet(p); });
    }

    // Both views with every filter: types without waiting exams stay, an
    // exam not filled here and a voided invoice never show; a new view only
    // on "Actualizar Pendientes", which leaves the tree collapsed. A click (or
    // Enter) shows the exam of the node's leading number, the patient's own
    // node read as a correlativo too; an empty age on the invoice is worked
    // out from the birth date in the exam view only.
    void treeViewsAndDetail()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        QPointer<QWidget> w = openScreen("Form3view");
        QTreeWidget* tree = treeOf(w);
        QCOMPARE(outline(tree), (QStringList{"HEMATOLOGIA", "  Hemograma", "    101  Ana Ruiz",
                                             "    102  Ana Ruiz", "    103  Ana Ruiz", "QUIMICA",
                                             "  Glucosa", "    104  Ana Ruiz", "    105  Luis Paz",
                                             "  Urea", "    108  Ana Ruiz", "SEROLOGIA"}));
        QVERIFY(!anyExpanded(tree, true));
        QVERIFY(clickNamed(w, "Command2"));
        QVERIFY(!anyExpanded(tree, false));
        QVERIFY(clickNamed(w, "Command1"));
        QVERIFY(!anyExpanded(tree, true));
        const QString years = QString::number(QDate::currentDate().year() - 1985) + " Años";
        const QList<QPair<QString, QString>> examView = {
            {"101  Ana Ruiz", "Ana Ruiz|35 Años 2 meses|Femenino|Hemograma|1001|101"},
            {"105  Luis Paz", "Luis Paz|" + years + "|Masculino|Glucosa|1002|105"},
            {"QUIMICA", "|||||"}};   // no number: the detail is cleared
        for (const auto& [node, shown] : examView) {
            clickNode(w, node);
            QVERIFY2(detail(w) == shown, qPrintable(node + ": " + detail(w)));
        }

        tick(control<QRadioButton>(w, "Option2"));
        QCOMPARE(tree->topLevelItem(0)->text(0), QString("HEMATOLOGIA"));
        QVERIFY(clickNamed(w, "Command2"));
        QVERIFY(clickNamed(w, "Command3"));   // expanded before: collapsed again
        QCOMPARE(outline(tree), (QStringList{"7 Ana Ruiz", "  101  Hemograma", "  102  Hemograma",
                                             "  103  Hemograma", "  104  Glucosa", "  108  Urea",
                                             "104 Luis Paz", "  105  Glucosa"}));
        QVERIFY(!anyExpanded(tree, true));
        const QList<QPair<QString, QString>> patientView = {
            {"105  Glucosa", "Luis Paz||Masculino|Glucosa|1002|105"},
            {"104 Luis Paz", "Ana Ruiz|35 Años 2 meses|Femenino|Glucosa|1001|104"},   // Ana's Glucosa
            {"7 Ana Ruiz", "|||||"}};   // no exam 7: nothing shown
        for (const auto& [node, shown] : patientView) {
            clickNode(w, node);
            QVERIFY2(detail(w) == shown, qPrintable(node + ": " + detail(w)));
        }
        tree->setCurrentItem(tree->findItems("101  Hemograma", Qt::MatchExactly | Qt::MatchRecursive).first());
        QTest::keyClick(tree, Qt::Key_Return);
        QCOMPARE(label(w, "Label12"), QString("101"));

        // Voided since: gone at the next refresh, its rows still waiting.
        amb1().execute("UPDATE Factura SET anulada = TRUE WHERE factura IN (1001, 1004)");
        QVERIFY(clickNamed(w, "Command3"));
        QCOMPARE(outline(tree), (QStringList{"104 Luis Paz", "  105  Glucosa"}));
        QCOMPARE(rowsIn("EvaluadoTemporal"), 8);
        QVERIFY(sp.messages().isEmpty());
        w->close();
    }

    // Three units of one exam are three leaves: the first goes to the grid
    // and leaves the tree, the second is refused in silence (same exam).
    // Another patient's leaf leaves the detail on the first patient, and a
    // detail of another patient is refused. Invoices are listed against the
    // one shown before (A, B, A lists A twice); with more than one, any
    // template but the blank one is refused and the blank one chosen.
    void picking()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        QPointer<QWidget> w = openScreen("Form3view");
        FlexGrid* g = gridOf(w);
        auto* combo = control<QComboBox>(w, "Combo1");
        QCOMPARE(press(w, "Command4", sp), QStringList());   // nothing shown: nothing added
        QCOMPARE(g->rows(), 2);
        QVERIFY(!combo->isVisible());

        clickNode(w, "101  Ana Ruiz");
        QCOMPARE(press(w, "Command4", sp), QStringList());
        QCOMPARE(gridRow(g, 1), QString("Hemograma|Ana Ruiz|35 Años 2 meses|101|1001"));
        QVERIFY(treeOf(w)->findItems("101  Ana Ruiz", Qt::MatchExactly | Qt::MatchRecursive).isEmpty());
        QVERIFY(!control<QPushButton>(w, "Command3")->isEnabled());
        QVERIFY(combo->isVisible() && control<QPushButton>(w, "Command6")->isVisible());
        clickNode(w, "102  Ana Ruiz");
        QCOMPARE(press(w, "Command4", sp), QStringList());
        QCOMPARE(g->rows(), 3);
        clickNode(w, "105  Luis Paz");
        QCOMPARE(label(w, "Label12"), QString("102"));

        // One invoice: any template, with its picture.
        QStringList entries;
        for (int i = 0; i < combo->count(); ++i)
            entries << combo->itemText(i);
        QCOMPARE(entries, (QStringList{">>> Seleccione la Plantilla a Utilizar <<<",
                                       "1  Formato en Blanco", "2  Hematologia", "3  Uroanalisis",
                                       "4  Quimica - Clinica", "5  Parasitologia"}));
        pickEntry(combo, "2  Hematologia");
        QVERIFY(sp.messages().isEmpty());
        QVERIFY(!control<QLabel>(w, "Image1")->pixmap().isNull());

        clickNode(w, "108  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        clickNode(w, "104  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        QCOMPARE(listed(w), (QStringList{"1001", "1004", "1001"}));
        // One step down the list from Hematologia, as a user would.
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down);
        QCOMPARE(sp.messages(), QStringList{"Ha seleccionado examenes de diferente factura, solo "
                                            "puede usar formato en blanco"});
        QCOMPARE(combo->currentText(), QString("1  Formato en Blanco"));

        // No click puts another patient in the detail once a pick is made;
        // the grid still refuses one.
        control<QLabel>(w, "Label4")->setText("Luis Paz");
        control<QLabel>(w, "Label8")->setText("Glucosa");
        QCOMPARE(press(w, "Command4", sp),
                 QStringList{"No puede agregar examenes de un paciente distinto, intente nuevamente"});
        QVERIFY(sp.prompts.last().icon == Icon::Critical);
        QCOMPARE(detail(w), QString("|||||"));
        QCOMPARE(g->rows(), 5);

        // The same leaf clicked twice before its pick still lists its invoice.
        QVERIFY(clickNamed(w, "Command5"));
        clickNode(w, "101  Ana Ruiz");
        clickNode(w, "101  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        QCOMPARE(listed(w), QStringList{"1001"});
        w->close();
    }

    // "Llenar Resultado": the format id proposed first (1 on no sheets), a
    // template asked for; the sheet gets the picks, the invoices as listed,
    // the id and the user; a saved sheet starts the table over, an unsaved
    // one leaves the picks.
    void fillingTheSheet()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        state().currentUser = "kcastro";
        QPointer<QWidget> w = openScreen("Form3view");
        QCOMPARE(state().idFormatoActual, 0);
        QVERIFY(state().enMesa);
        clickNode(w, "101  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        clickNode(w, "104  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));

        QCOMPARE(press(w, "Command6", sp), QStringList{"Seleccione la Plantilla a Utilizar"});
        QCOMPARE(state().idFormatoActual, 1);
        QCOMPARE(StandInSheet::opened, 0);

        addResult(900, 1, 2, 41, "B1", "14");
        pickEntry(control<QComboBox>(w, "Combo1"), "2  Hematologia");
        QCOMPARE(press(w, "Command6", sp), QStringList());
        QCOMPARE(StandInSheet::opened, 1);
        const sheets::SheetContext& c = StandInSheet::handed;
        QStringList picks;
        for (const sheets::PickedExam& p : c.picks)
            picks << QStringList{p.examen, p.paciente, p.edad, QString::number(p.correlativo),
                                 QString::number(p.factura)}.join('|');
        QCOMPARE(picks, (QStringList{"Hemograma|Ana Ruiz|35 Años 2 meses|101|1001",
                                     "Glucosa|Ana Ruiz|35 Años 2 meses|104|1001"}));
        QCOMPARE(c.invoices, QList<std::int32_t>{1001});
        QCOMPARE(c.factura, 1001);
        QCOMPARE(c.proposedFormatId, 42);
        QCOMPARE(state().idFormatoImpresion, 42);
        QCOMPARE(c.tecnico, QString("kcastro"));
        QCOMPARE(gridOf(w)->rows(), 4);   // not saved: the picks stay

        sp.onModal("Form20", [](QWidget* sheet) { static_cast<StandInSheet*>(sheet)->save(); });
        QCOMPARE(press(w, "Command6", sp), QStringList());
        QCOMPARE(gridOf(w)->rows(), 2);
        QCOMPARE(listed(w), QStringList());
        QCOMPARE(detail(w), QString("|||||"));
        QVERIFY(control<QPushButton>(w, "Command3")->isEnabled());
        QVERIFY(!control<QComboBox>(w, "Combo1")->isVisible());
        QCOMPARE(control<QComboBox>(w, "Combo1")->currentText(),
                 QString("Seleccione el Formato de Resultado"));
        QVERIFY(control<QLabel>(w, "Image1")->pixmap().isNull());
        // The stand-in closed nothing: the picked leaves are back.
        QCOMPARE(treeOf(w)->findItems("  Ana Ruiz", Qt::MatchEndsWith | Qt::MatchRecursive).size(), 5);
        w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(w.isNull());
        QVERIFY(!state().enMesa);
    }
};

QTEST_MAIN(TestWorkTable)
#include "test_worktable.moc"
