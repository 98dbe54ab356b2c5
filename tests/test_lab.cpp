// The bench: the normal value a sheet prints and the patient class behind it, the parameter
// screen, the template editor, and the closing of waiting exams.
#include "lab_fixture.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "lab/normalvalue.h"
#include "lab/templates.h"
#include "lab/worktable.h"
#include "foundation/base/values.h"

#include <QComboBox>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>

using namespace tq;
using namespace tq::test;

namespace {

// Rows "3,4" of the table: populations present, ascending, each with a value naming it.
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
    // Every row of the table of outcomes, the reading past the last row (an empty cell) too.
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

    // A child by the year numbers, the adult flag over the age, the sex by its exact word.
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

    // The parameter screen, the template editor and the closing of waiting exams.
    void benchScreens()
    {
        TempStore store;
        ScriptedPrompts sp;
        const QString kAdded = "El nuevo parametro ha sido ingresado a sus datos";
        // Normal values stored with the unit behind them; names checked only when adding.
        QPointer<QWidget> w = openScreen("mparametros");
        QCOMPARE(sp.messages(), QStringList{"No existe ningun parametro ingresado hasta el momento "});
        sp.clear();
        QVERIFY(clickNamed(w, "agregar"));
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
        retype(edit(w, "Text2"), "Hemoglobina  ");
        QCOMPARE(press(w, "guardar", sp),
                 QStringList{"El nombre de ese Parametro ya existe, verifique el nombre"});
        QCOMPARE(edit(w, "Text2")->text(), QString());
        retype(edit(w, "Text2"), "Color");
        QCOMPARE(press(w, "guardar", sp), QStringList{kAdded});
        QCOMPARE(storedValues(2), QStringList());   // nothing typed, no row

        // Shown back with the blank before the unit; a population cleared is gone.
        auto* grid = control<DataGrid>(w, "DataGrid1");
        clickRow(grid, grid->findRow("cod_parametro", 1));
        QCOMPARE(edit(w, "Text5")->text(), QString("13 - 17 "));
        QVERIFY(clickNamed(w, "modificar"));
        retype(edit(w, "Text6"), "");
        retype(edit(w, "Text2"), "Color");   // a modify checks no name
        QCOMPARE(press(w, "guardar", sp), QStringList{"El parametro ha sido modificado exitosamente"});
        QCOMPARE(storedValues(1), QStringList{"1=13 - 17  g/dL"});

        // In a template, in any version, it stays; otherwise it goes and the first row left shows.
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
        w->close();

        // The template editor: adds after the chosen row (a line break twice, any other name
        // once, in silence), moves, and a new version on every save, the same list too.
        int code = 10;
        for (const char* name : {"Hemoglobina", "Hematocrito", "_____SALTO DE LINEA_____", "Plaquetas"})
            amb1().insert("parametros", {"cod_parametro", "parametro"}, {++code, name});
        QCOMPARE(saveTemplateVersion(kHematologia, {"Hemoglobina", "Hematocrito"}), 1);
        w = openScreen("relplapar");
        auto* combo = control<QComboBox>(w, "Combo1");
        auto* list1 = control<QListWidget>(w, "List1");
        auto* list2 = control<QListWidget>(w, "List2");
        const auto add = [&](const QString& name) {
            list1->setCurrentItem(list1->findItems(name, Qt::MatchExactly).value(0));
            return press(w, "Command4", sp);
        };
        QCOMPARE(press(w, "Command4", sp),
                 QStringList{"Seleccione un formato antes de agregar parametros"});

        pickEntry(combo, "Hematologia");
        QCOMPARE(texts(list2), (QStringList{"Hemoglobina", "Hematocrito"}));
        list2->setCurrentRow(0);
        for (const char* name : {"Plaquetas", "_____SALTO DE LINEA_____", "_____SALTO DE LINEA_____",
                                 "Hemoglobina"})
            QVERIFY2(add(name).isEmpty(), name);
        QCOMPARE(texts(list2), (QStringList{"Hemoglobina", "Plaquetas", "_____SALTO DE LINEA_____",
                                       "_____SALTO DE LINEA_____", "Hematocrito"}));
        list2->setCurrentRow(4);
        QVERIFY(clickNamed(w, "Command2"));   // nothing below the last
        QVERIFY(clickNamed(w, "Command1"));
        list2->setCurrentRow(2);
        QVERIFY(clickNamed(w, "Command5"));
        QCOMPARE(texts(list2), (QStringList{"Hemoglobina", "Plaquetas", "Hematocrito",
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
        QCOMPARE(stored, texts(list2));
        QCOMPARE(templateParameters(kHematologia, 1).size(), 2);   // the old version stays

        // The same list again (up and back down) is a version 3; cancel empties the editor.
        QVERIFY(clickNamed(w, "Command1"));
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(texts(list2), stored);
        QCOMPARE(press(w, "Command8", sp, Answer::Yes).last(),
                 QString("El formato de Hematologia se ha guardado con la version 3"));
        QVERIFY(clickNamed(w, "Command6"));
        QCOMPARE(combo->currentIndex(), 0);
        QCOMPARE(list2->count(), 0);
        w->close();

        // Two units close onto their one line, once each; "Limpiar mesa" touches no line.
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
        // The later closing wins.
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE cod_descripcionexamen = 7 AND "
                       "evaluado = TRUE AND tecnico = 'luis' AND iduniversalformato = 6"), 1);
        QCOMPARE(storedDate(value("SELECT fecha_llenado FROM FacturaDetalle "
                                  "WHERE cod_descripcionexamen = 7")), day);
        marcarImpresion(6);
        marcarImpresion(0);
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE num_impresion = 1"), 1);
        w = openScreen("Flimpiatemporales");
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
