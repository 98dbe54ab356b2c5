// The work table: the tree of waiting exams in its two views, the detail of a node,
// picking one patient's exams, the template chosen and what the sheet is handed.
#include "lab_fixture.h"

#include "foundation/base/appstate.h"
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

// Stands in for the hematology sheet: keeps what it was handed, saves when told.
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

// Two patients, three exam types (one with nothing waiting), an exam not filled here, a voided
// invoice; Ana's Hemograma billed 3 times; Luis's code (104) is the correlativo of Ana's Glucosa.
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

QStringList listed(QWidget* w) { return texts(control<QListWidget>(w, "List1")); }

FlexGrid* gridOf(QWidget* w) { return control<FlexGrid>(w, "Grid1"); }

}  // namespace

class TestWorkTable : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        ScreenRegistry::instance().add("Form20", [](QWidget* p) { return new StandInSheet(p); });
    }

    // One session at the table: the exam view, picks, a sheet filled, the patient view.
    void workTableSession()
    {
        TempStore store;
        ScriptedPrompts sp;
        seed();
        state().currentUser = "kcastro";
        QPointer<QWidget> w = openScreen("Form3view");
        QCOMPARE(state().idFormatoActual, 0);
        QVERIFY(state().enMesa);

        // Types without waiting exams stay; an exam not filled here and a voided invoice don't.
        QTreeWidget* tree = treeOf(w);
        QCOMPARE(outline(tree), (QStringList{"HEMATOLOGIA", "  Hemograma", "    101  Ana Ruiz",
                                             "    102  Ana Ruiz", "    103  Ana Ruiz", "QUIMICA",
                                             "  Glucosa", "    104  Ana Ruiz", "    105  Luis Paz",
                                             "  Urea", "    108  Ana Ruiz", "SEROLOGIA"}));
        QVERIFY(!anyExpanded(tree, true));
        // A click shows the exam of the node's leading number; an empty age is worked out.
        const QString years = QString::number(QDate::currentDate().year() - 1985) + " Años";
        const QList<QPair<QString, QString>> examView = {
            {"101  Ana Ruiz", "Ana Ruiz|35 Años 2 meses|Femenino|Hemograma|1001|101"},
            {"105  Luis Paz", "Luis Paz|" + years + "|Masculino|Glucosa|1002|105"},
            {"QUIMICA", "|||||"}};   // no number: the detail is cleared
        for (const auto& [node, shown] : examView) {
            clickNode(w, node);
            QVERIFY2(detail(w) == shown, qPrintable(node + ": " + detail(w)));
        }

        // Each unit is a leaf that leaves the tree when picked; another patient's leaf is ignored.
        FlexGrid* g = gridOf(w);
        auto* combo = control<QComboBox>(w, "Combo1");
        QCOMPARE(press(w, "Command4", sp), QStringList());   // nothing shown: nothing added
        QCOMPARE(g->rows(), 2);
        clickNode(w, "101  Ana Ruiz");
        QCOMPARE(press(w, "Command4", sp), QStringList());
        QVERIFY(tree->findItems("101  Ana Ruiz", Qt::MatchExactly | Qt::MatchRecursive).isEmpty());
        QVERIFY(!control<QPushButton>(w, "Command3")->isEnabled());
        QVERIFY(combo->isVisible() && control<QPushButton>(w, "Command6")->isVisible());
        clickNode(w, "102  Ana Ruiz");
        QCOMPARE(press(w, "Command4", sp), QStringList());
        QCOMPARE(g->rows(), 3);
        clickNode(w, "105  Luis Paz");
        QCOMPARE(label(w, "Label12"), QString("102"));

        // One invoice: any template, with its picture.
        pickEntry(combo, "2  Hematologia");
        QVERIFY(sp.messages().isEmpty());
        QVERIFY(!control<QLabel>(w, "Image1")->pixmap().isNull());
        // Invoices listed against the one before (A, B, A lists A twice); then only the blank one.
        clickNode(w, "108  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        clickNode(w, "104  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        QCOMPARE(listed(w), (QStringList{"1001", "1004", "1001"}));
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down);   // one step down from Hematologia
        QCOMPARE(sp.messages(), QStringList{"Ha seleccionado examenes de diferente factura, solo "
                                            "puede usar formato en blanco"});
        QCOMPARE(combo->currentText(), QString("1  Formato en Blanco"));
        // Another patient in the detail is refused by the grid.
        control<QLabel>(w, "Label4")->setText("Luis Paz");
        control<QLabel>(w, "Label8")->setText("Glucosa");
        QCOMPARE(press(w, "Command4", sp),
                 QStringList{"No puede agregar examenes de un paciente distinto, intente nuevamente"});
        QVERIFY(sp.prompts.last().icon == Icon::Critical);
        QCOMPARE(detail(w), QString("|||||"));
        QCOMPARE(g->rows(), 5);
        // The same leaf clicked twice before its pick still lists its invoice once.
        QVERIFY(clickNamed(w, "Command5"));
        clickNode(w, "101  Ana Ruiz");
        clickNode(w, "101  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));
        QCOMPARE(listed(w), QStringList{"1001"});
        clickNode(w, "104  Ana Ruiz");
        QVERIFY(clickNamed(w, "Command4"));

        // "Llenar Resultado": the format id proposed first (1 on no sheets), a template asked for.
        pickEntry(combo, 0);
        QCOMPARE(press(w, "Command6", sp), QStringList{"Seleccione la Plantilla a Utilizar"});
        QCOMPARE(state().idFormatoActual, 1);
        QCOMPARE(StandInSheet::opened, 0);
        // The sheet gets the picks, the invoices as listed, the id and the user.
        addResult(900, 1, 2, 41, "B1", "14");
        pickEntry(combo, "2  Hematologia");
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
        QCOMPARE(g->rows(), 4);   // not saved: the picks stay
        // A saved sheet starts the table over; the stand-in closed nothing, so the leaves are back.
        sp.onModal("Form20", [](QWidget* sheet) { static_cast<StandInSheet*>(sheet)->save(); });
        QCOMPARE(press(w, "Command6", sp), QStringList());
        QCOMPARE(g->rows(), 2);
        QCOMPARE(listed(w), QStringList());
        QCOMPARE(detail(w), QString("|||||"));
        QVERIFY(control<QPushButton>(w, "Command3")->isEnabled());
        QVERIFY(!combo->isVisible());
        QVERIFY(control<QLabel>(w, "Image1")->pixmap().isNull());
        QCOMPARE(tree->findItems("  Ana Ruiz", Qt::MatchEndsWith | Qt::MatchRecursive).size(), 5);

        // The patient view comes on "Actualizar Pendientes", collapsed; a patient node is a number.
        sp.clear();
        tick(control<QRadioButton>(w, "Option2"));
        QCOMPARE(tree->topLevelItem(0)->text(0), QString("HEMATOLOGIA"));
        QVERIFY(clickNamed(w, "Command2"));
        QVERIFY(clickNamed(w, "Command3"));
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
        tree->setCurrentItem(tree->findItems("101  Hemograma", Qt::MatchExactly | Qt::MatchRecursive)[0]);
        QTest::keyClick(tree, Qt::Key_Return);
        QCOMPARE(label(w, "Label12"), QString("101"));

        // Voided since: gone at the next refresh, its rows still waiting.
        amb1().execute("UPDATE Factura SET anulada = TRUE WHERE factura IN (1001, 1004)");
        QVERIFY(clickNamed(w, "Command3"));
        QCOMPARE(outline(tree), (QStringList{"104 Luis Paz", "  105  Glucosa"}));
        QCOMPARE(rowsIn("EvaluadoTemporal"), 8);
        QVERIFY(sp.messages().isEmpty());
        w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(w.isNull());
        QVERIFY(!state().enMesa);
    }
};

QTEST_MAIN(TestWorkTable)
#include "test_worktable.moc"
