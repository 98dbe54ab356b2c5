// The laboratory's bench: the normal value a sheet prints for a parameter,
// the patient class it is chosen by, the parameter screen that keeps the
// catalogue and its normal values, the editor of the grid templates, and
// the work table's closing of exams and clean-up.
#include "lab_fixture.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "lab/normalvalue.h"
#include "lab/templates.h"
#include "lab/worktable.h"
#include "foundation/base/values.h"

#include <QComboBox>
#include <QListWidget>
#include <QPushButton>

#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

// Rows "3,4" of the table: populations present, in ascending order, each
// with a value naming it.
QList<NormalRow> present(const QString& populations)
{
    static const QStringList names = {"", "hombre", "mujer", "niño", "unico"};
    QList<NormalRow> rows;
    for (const QString& p : populations.split(',', Qt::SkipEmptyParts))
        rows.append({std::int16_t(p.toInt()), names.at(p.toInt())});
    return rows;
}

constexpr PatientClass kMan{false, 1}, kWoman{false, 2}, kUnknown{false, 0};
constexpr PatientClass kBoy{true, 1}, kGirl{true, 2};

// The stored normal values of a parameter, "population=value", in order.
QStringList storedValues(int code)
{
    return rowsOf("SELECT cod_sexo, valor_normal FROM valparametros WHERE cod_parametro = ? "
                  "ORDER BY cod_sexo", {code});
}

}  // namespace

class TestLab : public QObject {
    Q_OBJECT

private slots:
    // Every row of the table of outcomes, the reading past the last row
    // included (an empty cell), and a row with nothing typed.
    void normalValueTable()
    {
        struct Case {
            const char* present;
            PatientClass who;
            const char* shown;
        };
        for (const Case& c : {Case{"", kMan, ""},
                              {"4", kMan, "unico"},
                              {"4", kGirl, "unico"},
                              {"1,2", kMan, "hombre"},
                              {"1,2", kWoman, "mujer"},
                              {"1,2", kUnknown, "mujer"},
                              {"1,2,3", kBoy, "hombre"},
                              {"1,2,3", kGirl, "mujer"},
                              {"1,2,3,4", kGirl, "mujer"},
                              {"3,4", kBoy, "niño"},
                              {"3,4", kWoman, "unico"},
                              {"1,4", kMan, "hombre"},
                              {"1,4", kWoman, "unico"},
                              {"2", kWoman, ""},
                              {"2,3", kGirl, ""},
                              {"2,4", kMan, ""},
                              {"3", kGirl, "niño"},
                              {"3", kMan, ""},     // past the end
                              {"1", kWoman, ""},   // past the end
                              {"1", kMan, "hombre"}}) {
            const QString shown = elegirValorNormal(present(c.present), c.who);
            QVERIFY2(shown == QString(c.shown),
                     qPrintable(QString("rows %1, child %2, sex %3: %4").arg(c.present)
                                    .arg(c.who.esNino).arg(c.who.sexoCodigo).arg(shown)));
        }
    }

    // A child by the year numbers, the adult flag over the age, the sex by
    // its exact word; read from an invoice's patient.
    void patientClassFromThePatient()
    {
        const QDate jan(2026, 1, 10);
        QVERIFY(!patientClass("Femenino", QDate(2011, 12, 31), false, jan).esNino);   // 15 by years
        QVERIFY(patientClass("Femenino", QDate(2012, 1, 1), false, jan).esNino);
        QVERIFY(!patientClass("Masculino", QDate(2016, 5, 5), true, jan).esNino);     // eadulto
        QCOMPARE(patientClass("Masculino", QDate(2000, 1, 1), false, jan).sexoCodigo, 1);
        QCOMPARE(patientClass("Femenino", QDate(2000, 1, 1), false, jan).sexoCodigo, 2);
        QCOMPARE(patientClass("masculino", QDate(2000, 1, 1), false, jan).sexoCodigo, 0);

        TempStore store;
        const int boy = amb1().insert("Pacientes", {"nombre_paciente", "sexo", "fecha_nacimiento",
                                                    "eadulto"},
                                      {"Leo", "Masculino", QDate(2020, 3, 1), false}).toInt();
        amb1().insert("Factura", {"factura", "cod_paciente"}, {7, boy});
        const PatientClass c = patientClassOfInvoice(7, jan);
        QVERIFY(c.esNino);
        QCOMPARE(c.sexoCodigo, 1);
        for (const auto& [sexo, valor] : {std::pair{3, "11 - 14 g/dL"}, {4, "12 - 16 g/dL"}})
            amb1().insert("valparametros", {"cod_parametro", "cod_sexo", "valor_normal"},
                          {3, sexo, valor});
        QCOMPARE(elegirValorNormal(3, c), QString("11 - 14 g/dL"));
        QCOMPARE(elegirValorNormal(3, PatientClass{}), QString("12 - 16 g/dL"));   // a reprint
        QCOMPARE(elegirValorNormal(99, c), QString());
    }

    // The parameter screen: the code proposed, normal values stored with the
    // unit behind them and shown back without it, a blank more on every
    // modify, a cleared population gone, names checked only when adding.
    void parameterScreen()
    {
        TempStore store;
        ScriptedPrompts sp;
        const QString kAdded = "El nuevo parametro ha sido ingresado a sus datos";
        QPointer<QWidget> w = openScreen("mparametros");
        QCOMPARE(sp.messages(), QStringList{"No existe ningun parametro ingresado hasta el momento "});
        sp.clear();
        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(edit(w, "Text1")->text(), QString("1"));
        retype(edit(w, "Text1"), "");
        QCOMPARE(press(w, "guardar", sp), QStringList{"Debe Ingresar el Codigo."});
        retype(edit(w, "Text1"), "1");
        QCOMPARE(press(w, "guardar", sp), QStringList{"Debe Ingresar el Nombre."});
        retype(edit(w, "Text2"), "  Hemoglobina ");
        retype(edit(w, "Text3"), "g/dL");
        retype(edit(w, "Text5"), "13 - 17");
        retype(edit(w, "Text6"), "12 - 15");
        QCOMPARE(press(w, "guardar", sp), QStringList{kAdded});
        QCOMPARE(value("SELECT parametro FROM parametros WHERE cod_parametro = 1").toString(),
                 "Hemoglobina");
        QCOMPARE(storedValues(1), (QStringList{"1=13 - 17 g/dL", "2=12 - 15 g/dL"}));

        // The same name, trimmed, is refused on an add and the name cleared.
        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(edit(w, "Text1")->text(), QString("2"));
        retype(edit(w, "Text2"), "Hemoglobina  ");
        QCOMPARE(press(w, "guardar", sp),
                 QStringList{"El nombre de ese Parametro ya existe, verifique el nombre"});
        QCOMPARE(edit(w, "Text2")->text(), QString());
        retype(edit(w, "Text2"), "Color");
        QCOMPARE(press(w, "guardar", sp), QStringList{kAdded});
        QCOMPARE(storedValues(2), QStringList());   // nothing typed, no row

        // Shown back with the blank before the unit kept; a modify writes a
        // blank more, and a population cleared is gone.
        auto* grid = control<DataGrid>(w, "DataGrid1");
        clickRow(grid, grid->findRow("cod_parametro", 1));
        QCOMPARE(edit(w, "Text5")->text(), QString("13 - 17 "));
        QVERIFY(clickNamed(w, "modificar"));
        retype(edit(w, "Text6"), "");
        retype(edit(w, "Text2"), "Color");   // a modify checks no name
        QCOMPARE(press(w, "guardar", sp), QStringList{"El parametro ha sido modificado exitosamente"});
        QCOMPARE(storedValues(1), QStringList{"1=13 - 17  g/dL"});
        QCOMPARE(elegirValorNormal(1, kWoman), QString());   // past the man's row: nothing

        // In a template, in any version, it stays; otherwise it goes, its
        // normal values behind it, and the first row left is shown.
        amb1().insert("PlantillaParametro", {"Cod_Plantilla", "cod_Parametro", "version", "orden"},
                      {2, 1, 1, 1});
        clickRow(grid, grid->findRow("cod_parametro", 1));
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 QStringList{"No puede eliminar el parametro porque tiene formato aplicado"});
        amb1().execute("DELETE FROM PlantillaParametro");
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 (QStringList{"Esta seguro que desea eliminar el parametro",
                              "El Parametro a sido eliminado ha sido Eliminado"}));
        QCOMPARE(rowsIn("parametros"), 1);
        QCOMPARE(storedValues(1), QStringList{"1=13 - 17  g/dL"});
        QCOMPARE(edit(w, "Text1")->text(), QString("2"));

        // The proposed code, taken meanwhile at another station, moves on.
        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(edit(w, "Text1")->text(), QString("3"));
        amb1().execute("INSERT INTO parametros (cod_parametro, parametro) VALUES (3, 'Glucosa')");
        retype(edit(w, "Text2"), "Urea");
        QCOMPARE(press(w, "guardar", sp),
                 (QStringList{"El código 3 ya fue usado en otra estación; el parámetro se "
                              "guardó con el código 4.", kAdded}));
        QCOMPARE(value("SELECT parametro FROM parametros WHERE cod_parametro = 4").toString(), "Urea");
        w->close();
    }

    // The template editor: the latest version shown, adds after the chosen
    // row (a line break twice, any other name once, in silence), moves, the
    // critical question, and a new version on every save, the same list too.
    void templateEditor()
    {
        TempStore store;
        ScriptedPrompts sp;
        for (const char* name : {"Hemoglobina", "Hematocrito", "_____SALTO DE LINEA_____", "Plaquetas"})
            amb1().insert("parametros", {"cod_parametro", "parametro"},
                          {rowsIn("parametros") + 1, name});
        QCOMPARE(saveTemplateVersion(kHematologia, {"Hemoglobina", "Hematocrito"}), 1);
        QPointer<QWidget> w = openScreen("relplapar");
        auto* combo = control<QComboBox>(w, "Combo1");
        QCOMPARE(combo->count(), 4);   // the prompt and the three grid templates
        auto* list1 = control<QListWidget>(w, "List1");
        auto* list2 = control<QListWidget>(w, "List2");
        const auto shown = [&] {
            QStringList out;
            for (int i = 0; i < list2->count(); ++i)
                out << list2->item(i)->text();
            return out;
        };
        // Picks a parameter on the left and adds it: what that said.
        const auto add = [&](const QString& name) {
            list1->setCurrentItem(list1->findItems(name, Qt::MatchExactly).value(0));
            return press(w, "Command4", sp);
        };
        QCOMPARE(press(w, "Command4", sp),
                 QStringList{"Seleccione un formato antes de agregar parametros"});

        pickEntry(combo, "Hematologia");
        QCOMPARE(shown(), (QStringList{"Hemoglobina", "Hematocrito"}));
        QVERIFY(!control<QPushButton>(w, "Command8")->isEnabled());
        list2->setCurrentRow(0);
        for (const char* name : {"Plaquetas", "_____SALTO DE LINEA_____", "_____SALTO DE LINEA_____",
                                 "Hemoglobina"})
            QVERIFY2(add(name).isEmpty(), name);
        QCOMPARE(shown(), (QStringList{"Hemoglobina", "Plaquetas", "_____SALTO DE LINEA_____",
                                       "_____SALTO DE LINEA_____", "Hematocrito"}));
        list2->setCurrentRow(4);
        QVERIFY(clickNamed(w, "Command2"));   // nothing below the last
        QVERIFY(clickNamed(w, "Command1"));
        list2->setCurrentRow(2);
        QVERIFY(clickNamed(w, "Command5"));
        QCOMPARE(list2->currentRow(), 2);
        QCOMPARE(shown(), (QStringList{"Hemoglobina", "Plaquetas", "Hematocrito",
                                       "_____SALTO DE LINEA_____"}));

        // No to the critical question writes nothing; Yes, a version 2.
        QCOMPARE(press(w, "Command8", sp, Answer::No).size(), 1);
        QVERIFY(sp.prompts.first().text.contains("Modificacion Critica del Sistema"));
        QCOMPARE(latestVersion(kHematologia), 1);
        QCOMPARE(press(w, "Command8", sp, Answer::Yes).last(),
                 QString("El formato de Hematologia se ha guardado con la version 2"));
        QVERIFY(!control<QPushButton>(w, "Command8")->isEnabled());
        QStringList stored;
        for (const TemplateParameter& p : templateParameters(kHematologia, 2))
            stored << p.parametro;
        QCOMPARE(stored, shown());
        QCOMPARE(templateParameters(kHematologia, 1).size(), 2);   // the old version stays

        // The same list again (up and back down) is a version 3; cancel
        // empties the editor.
        QVERIFY(clickNamed(w, "Command1"));
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(shown(), stored);
        QCOMPARE(press(w, "Command8", sp, Answer::Yes).last(),
                 QString("El formato de Hematologia se ha guardado con la version 3"));
        QVERIFY(clickNamed(w, "Command6"));
        QCOMPARE(combo->currentIndex(), 0);
        QCOMPARE(list2->count(), 0);
        w->close();
    }

    // Closing waiting exams: two units of one line close onto that line, a
    // closed exam is no longer there to close, a printed sheet marks its
    // lines; "Limpiar mesa" empties the table and touches no line.
    void workTable()
    {
        TempStore store;
        ScriptedPrompts sp;
        amb1().insert("Factura", {"factura", "cod_paciente"}, {40001, 1});
        for (const auto& [cantidad, exam] : {std::pair{2, 7}, {1, 8}})
            amb1().insert("FacturaDetalle", {"factura", "cantidad", "cod_descripcionexamen"},
                          {40001, cantidad, exam});
        QList<int> waiting;
        for (int exam : {7, 7, 8})
            waiting << amb1().insert("EvaluadoTemporal",
                                     {"factura", "cod_descripcionexamen", "examen"},
                                     {40001, exam, "Examen"}).toInt();
        const QDate day(2026, 11, 23);
        QVERIFY(cerrarExamen(40001, waiting[0], 5, "ana", day));
        QVERIFY(cerrarExamen(40001, waiting[1], 6, "luis", day));
        QVERIFY(!cerrarExamen(40001, waiting[1], 6, "luis", day));
        QCOMPARE(rowsIn("EvaluadoTemporal"), 1);
        Recordset line;
        line.open("SELECT evaluado, tecnico, iduniversalformato, fecha_llenado, num_impresion "
                  "FROM FacturaDetalle WHERE cod_descripcionexamen = 7");
        QCOMPARE(line.recordCount(), 1);
        QCOMPARE(line.field("evaluado").toInt(), 1);
        QCOMPARE(line.text("tecnico"), QString("luis"));   // the later closing wins
        QCOMPARE(line.field("iduniversalformato").toInt(), 6);
        QCOMPARE(storedDate(line.field("fecha_llenado")), day);
        marcarImpresion(6);
        marcarImpresion(0);
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE num_impresion = 1"), 1);


        QPointer<QWidget> w = openScreen("Flimpiatemporales");
        QCOMPARE(press(w, "Command1", sp, Answer::No), QStringList{"esta seguro de hacer esto"});
        QCOMPARE(rowsIn("EvaluadoTemporal"), 1);
        QCOMPARE(press(w, "Command1", sp, Answer::Yes),
                 (QStringList{"esta seguro de hacer esto",
                              "la mesa de trabajo se limpio exitosamente"}));
        QCOMPARE(rowsIn("EvaluadoTemporal"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE evaluado = TRUE"), 1);
        QCOMPARE(press(w, "Command1", sp, Answer::Yes), QStringList{"esta seguro de hacer esto"});
        w->close();
    }
};

QTEST_MAIN(TestLab)
#include "test_lab.moc"
