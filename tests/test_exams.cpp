// The exam catalogue (Form6), its types (Form3) and the exam picker (FBuscarArticulo).
#include "billing_fixture.h"
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/flexgrid.h"
#include "registers/pickers.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

FlexGrid* grid(QWidget* w) { return control<FlexGrid>(w, "Grid1"); }

// The rows a picker shows: "code|name|price".
QStringList shown(FlexGrid* g)
{
    QStringList out;
    for (int r = 1; r < g->rows(); ++r)
        out << g->textMatrix(r, 0) + "|" + g->textMatrix(r, 1) + "|" + g->textMatrix(r, 2);
    return out;
}

}  // namespace

class TestExams : public QObject {
    Q_OBJECT

private slots:
    // The list of 100 by name, the search anywhere in the name (past the first 100), price keys.
    void form6ListSearchAndPriceKeys()
    {
        TempStore store;
        ScriptedPrompts sp;
        QPointer<QWidget> w = openScreen("Form6");
        QCOMPARE(sp.messages(), QStringList{"no existe ningun examen creado hasta el momento"});
        w->close();

        const int type = addExamType("Hematologia");
        for (int i = 0; i < 105; ++i)
            addExam(type, QString("Examen %1").arg(i, 3, 10, QChar('0')), 10 + i);
        const int oneil = addExam(type, "Zinc de O'Neil", 0.5, 80);
        sp.clear();
        w = openScreen("Form6");
        QVERIFY(sp.messages().isEmpty());
        FlexGrid* g = grid(w);
        QCOMPARE(g->rows(), 101);
        QCOMPARE(g->textMatrix(1, 2), QString("Examen 000"));
        QCOMPARE(g->textMatrix(100, 2), QString("Examen 099"));

        typeKeys(edit(w, "Text1"), "'Nei");
        QCOMPARE(g->rows(), 2);
        QCOMPARE(g->textMatrix(1, 1) + "|" + g->textMatrix(1, 3) + "|" + g->textMatrix(1, 5),
                 QString("%1|.50|80.00").arg(oneil));
        retype(edit(w, "Text1"), "n 10");
        QCOMPARE(g->rows(), 6);   // Examen 100 .. 104, beyond the first hundred
        clickGridRow(g, 1);

        // Prices take digits, the point and the slash; "12/5" stores 12.
        QVERIFY(clickNamed(w, "modificar"));
        retype(edit(w, "Text3"), "");
        typeKeys(edit(w, "Text3"), "1a2-/ 5x");
        QCOMPARE(edit(w, "Text3")->text(), QString("12/5"));
        QCOMPARE(press(w, "guardar", sp), QStringList{"Proceso exitoso"});
        QCOMPARE(value("SELECT precio FROM Examenes WHERE examen = 'Examen 100'").toDouble(), 12.0);
    }

    // An exam on an invoice can't go; Guardar's checks in order; llenaresultado kept on an add, taken
    // on a modify; "+" opens the type screen (renaming needs a row; a new type is at once in Combo1).
    void form6DeletesSavesAndTypes()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int type = addExamType("Quimica");
        const int billed = addExam(type, "Examen A", 10);
        const int free = addExam(type, "Examen B", 20);
        amb1().execute("INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad) "
                       "VALUES (1, ?, 1)", {billed});
        addListPrice(0, free, 5);   // a price list does not hold an exam back
        QPointer<QWidget> w = openScreen("Form6");
        auto* fills = control<QComboBox>(w, "Combo2");
        FlexGrid* g = grid(w);
        clickGridRow(g, findRow(g, 1, QString::number(billed)));
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 QStringList{"No se puede eliminar el Examen, tiene facturas creadas a su nombre"});
        clickGridRow(g, findRow(g, 1, QString::number(free)));
        QCOMPARE(press(w, "eliminar", sp, Answer::No), QStringList{"Esta seguro de eliminar el examen"});
        QCOMPARE(rowsIn("Examenes"), 2);
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes), QStringList{"Esta seguro de eliminar el examen"});
        QCOMPARE(value("SELECT COUNT(*) FROM Examenes WHERE cod_descripcionexamen = ?", {free}).toInt(), 0);
        QCOMPARE(g->rows(), 2);

        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(refusals(w, sp, "guardar",
                          {{"Debe especificar el tipo de Examen", "Combo1", QString("%1_Quimica").arg(type)},
                           {"Debe especificar un Nombre de Examen", "Text2", QString(101, 'x')},
                           {"El nombre del examen no puede tener más de 100 caracteres.", "Text2",
                            "Glucosa D'Arcy"}},
                          "Examenes"),
                 QString());
        typeKeys(edit(w, "Text3"), "45.5");
        pickEntry(fills, 0);
        QCOMPARE(press(w, "guardar", sp), QStringList{"Proceso exitoso"});
        // The row as stored: fills a result, price, insured price, type.
        const QString stored = "SELECT llenaresultado, precio, precioo, cod_tipo_examen FROM Examenes "
                               "WHERE examen = 'Glucosa D''Arcy'";
        QCOMPARE(row(stored), (QStringList{"0", "45.5", "0", QString::number(type)}));

        // The grid shows "No" for it; a modify with "Si" sets it.
        clickGridRow(grid(w), 2);
        QCOMPARE(fills->currentText(), QString("No"));
        QVERIFY(clickNamed(w, "modificar"));
        pickEntry(fills, 0);
        QCOMPARE(press(w, "guardar", sp), QStringList{"Proceso exitoso"});
        QCOMPARE(row(stored).mid(0, 2), (QStringList{"1", "45.5"}));
        QCOMPARE(grid(w)->textMatrix(2, 6), QString("Si"));

        QString seen;
        sp.onModal("Form3", [&](QWidget* f3) {
            QVERIFY(clickNamed(f3, "Command2"));
            seen = sp.lastMessage();
            typeKeys(edit(f3, "Text1"), "Química O'Neil");
            QVERIFY(clickNamed(f3, "Command1"));
            clickRow(control<DataGrid>(f3, "DataGrid1"), 0);
            retype(edit(f3, "Text1"), "Quimica y Orina");
            QVERIFY(clickNamed(f3, "Command2"));
        });
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(seen, QString("Debe seleccionar un tipo de examen de la lista."));
        QCOMPARE(sp.lastMessage(), QString("Se ha modificado el registro"));
        QCOMPARE(value("SELECT tipo_examen FROM TipoExamen WHERE cod_tipo_examen = ?", {type}).toString(),
                 QString("Quimica y Orina"));
        auto* types = control<QComboBox>(w, "Combo1");
        QCOMPARE(types->count(), 2);
        QVERIFY(types->itemText(1).endsWith("_Química O'Neil"));
    }

    // An insured patient is offered only his insurer's list at its prices; anyone else the catalogue.
    void pickerPriceRule()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int type = addExamType("Varios");
        const int a = addExam(type, "Acido Urico", 100);
        const int b = addExam(type, "Bilirrubina O'Neil", 200);
        addInsurer(7, "Seguros Sur");
        addInsurer(8, "Sin Lista");
        addListPrice(7, b, 75.5);

        QStringList list;
        sp.onModal("FBuscarArticulo", [&](QWidget* p) {
            list = shown(grid(p));
            clickGridRow(grid(p), 1);
        });
        auto chosen = chooseExam(ExamCaller::Order, 7);
        QCOMPARE(list, QStringList{QString("%1|Bilirrubina O'Neil|75.50").arg(b)});
        QVERIFY(chosen);
        QCOMPARE(QString("%1|%2|%3").arg(chosen->code).arg(chosen->name).arg(chosen->price),
                 QString("%1|Bilirrubina O'Neil|75.5").arg(b));

        // Uninsured: every exam at precio; a search by description starts with the text.
        sp.onModal("FBuscarArticulo", [&](QWidget* p) {
            list = shown(grid(p));
            QTest::mouseClick(control<QRadioButton>(p, "Option2"), Qt::LeftButton);
            typeKeys(edit(p, "Text1"), "Bilirrubina O'");
            QCOMPARE(grid(p)->rows(), 2);
            clickGridRow(grid(p), 1);
        });
        chosen = chooseExam(ExamCaller::Invoice, 0);
        QCOMPARE(list, (QStringList{QString("%1|Acido Urico|100.00").arg(a),
                                    QString("%1|Bilirrubina O'Neil|200.00").arg(b)}));
        QVERIFY(chosen);
        QCOMPARE(chosen->price, 200.0);

        // By code, for the insured: only his list is searched.
        sp.onModal("FBuscarArticulo", [&](QWidget* p) {
            typeKeys(edit(p, "Text1"), QString::number(a));
            list = shown(grid(p));
        });
        QVERIFY(!chooseExam(ExamCaller::Invoice, 7));
        QVERIFY(list.isEmpty());

        // An insurer without a list: nothing to choose.
        sp.clear();
        QVERIFY(!chooseExam(ExamCaller::Invoice, 8));
        QCOMPARE(sp.messages(), QStringList{"No existen examenes creados"});
    }
};

QTEST_MAIN(TestExams)
#include "test_exams.moc"
