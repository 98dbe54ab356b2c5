// The patient register Form5, the pickers FBuscarCliente and listaclientes, and Form30.
#include "billing_fixture.h"
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"
#include "registers/pickers.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

QString patientField(int code, const QString& column)
{
    return amb1().scalar("SELECT " + column + " FROM Pacientes WHERE cod_paciente = ?", {code}).toString();
}

// A patient handed back by a picker, or "-" when none was chosen.
QString handed(const std::optional<ChosenPatient>& p)
{
    if (!p)
        return "-";
    return QString("%1|%2|%3|%4|%5").arg(p->code).arg(p->name).arg(p->insurer).arg(p->birth.toString("dd/MM/yyyy"),
                                                                                 p->sex);
}

const QString kNotes = "No puede cambiar el seguro del paciente ya que tiene cuentas por cobrar "
                       "pendientes";

}  // namespace

class TestPatients : public QObject {
    Q_OBJECT

private slots:
    // The list joined with seguros; the searches (start of the name, anywhere in the surname)
    // with apostrophes and wildcards as plain text; selecting a row; "Estado"; saves.
    void registerListSearchesAndSaves()
    {
        TempStore store;
        ScriptedPrompts sp;
        QPointer<QWidget> w = openScreen("Form5");
        QCOMPARE(sp.messages(), QStringList{"no existe ningun paciente creado hasta el momento"});
        w->close();
        addInsurer(3, "Seguros Atlántida");
        addInsurer(7, "Palic");
        addPatient("Ana", "López");
        const int andrea = addPatient("Andrea", "O'Neil", 3, QDate(QDate::currentDate().year() - 30, 12, 31));
        const int juan = addPatient("Juan", "Mejía Andino");
        addPatient("Carla", "Pérez", 7);
        addPatient("Luis", "100%");
        amb1().execute("DELETE FROM seguros WHERE Cod_Seguro = 7");

        sp.clear();
        w = openScreen("Form5");
        QVERIFY(sp.messages().isEmpty());
        auto* g = control<FlexGrid>(w, "Grid1");
        // Carla's insurer row is gone: she is not listed.
        QCOMPARE(column(g, 1), (QStringList{"Ana", "Andrea", "Juan", "Luis"}));
        QCOMPARE(control<QLineEdit>(w, "Text2")->text(), QString("Ana"));

        auto* text1 = control<QLineEdit>(w, "Text1");
        retype(text1, "An");
        QCOMPARE(column(g, 1), (QStringList{"Ana", "Andrea"}));
        retype(text1, "dre");   // inside the name: not a start
        QCOMPARE(g->rows(), 1);
        tick(control<QRadioButton>(w, "Option4"));
        retype(text1, "and");   // anywhere in the surname
        QCOMPARE(column(g, 0), QStringList{QString::number(juan)});
        retype(text1, "o'n");
        QCOMPARE(column(g, 0), QStringList{QString::number(andrea)});
        retype(text1, "0%");
        QCOMPARE(column(g, 2), QStringList{"100%"});
        retype(text1, "%");
        QCOMPARE(column(g, 2), QStringList{"100%"});

        // Andrea's insurer, and her age in calendar years with her birthday still to come.
        retype(text1, "");
        clickGridRow(g, findRow(g, 0, QString::number(andrea)));
        QVERIFY(control<QRadioButton>(w, "Option2")->isChecked());
        QCOMPARE(control<QComboBox>(w, "Combo1")->currentText(), QString("3 Seguros Atlántida"));
        QCOMPARE(control<QLabel>(w, "Label12")->text(), QString("30 años"));

        // "Estado" hands the patient to the history screen.
        ScreenRegistry::instance().add("FHistorial", [](QWidget* parent) -> QWidget* {
            auto* h = new QWidget(parent);
            (new QLabel(h))->setObjectName("Label9");
            return h;
        });
        sp.onModal("FHistorial", [&](QWidget* h) {
            QCOMPARE(h->property("cod_paciente").toInt(), andrea);
            QCOMPARE(h->findChild<QLabel*>("Label9")->text(), QString("Andrea O'Neil"));
        });
        QVERIFY(clickNamed(w, "Command1"));
        QVERIFY(!sp.prompts.isEmpty() && sp.prompts.last().text == "FHistorial");

        // The checks of "Guardar" in order; the columns written, Option1 storing no insurer whatever
        // Combo1 shows; the age worked out as the date changes.
        auto* combo1 = control<QComboBox>(w, "Combo1");

        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(refusals(w, sp, "guardar",
                          {{"Debe ingresar el nombre", "Text2", QString(61, QChar('x'))},
                           {"El nombre no puede pasar de 60 caracteres; acórtelo, por favor.", "Text2", "Bertha"},
                           {"Debe ingresar el apellido", "Text3", "D'Antoni"}},
                          "Pacientes"),
                 QString());
        tick(control<QRadioButton>(w, "Option2"));
        combo1->setCurrentIndex(-1);
        combo1->clearEditText();
        QCOMPARE(refusals(w, sp, "guardar",
                          {{"Debe ingresar el seguro", "Combo1", "0 Sin Seguro"},
                           {"el codigo del seguro no puede ser 0 Sin Seguro", "Combo1", "3 Seguros Atlántida"}},
                          "Pacientes"),
                 QString());
        pickEntry(control<QComboBox>(w, "Combo2"), "Femenino");
        // 35 month boundaries: 2 years and 10 months, the month lost to truncation.
        const QDate birth = QDate::currentDate().addMonths(-35);
        control<QDateEdit>(w, "DT")->setDate(birth);
        QCOMPARE(control<QLabel>(w, "Label12")->text(), QString("2 Años 10 meses"));
        QCOMPARE(press(w, "guardar", sp), QStringList{"El paciente se ingreso exitosamente"});
        const int bertha = count("SELECT cod_paciente FROM Pacientes WHERE apellido_paciente = ?",
                                 {"D'Antoni"});
        const auto written = [&] {
            return QStringList({patientField(bertha, "Cod_seguro"),
                                patientField(bertha, "asegurado"), patientField(bertha, "sexo"),
                                patientField(bertha, "fecha_nacimiento")})
                .join('/');
        };
        QCOMPARE(written(), "3/1/Femenino/" + birth.toString(Qt::ISODate));

        // Back to "Sin seguro" with Combo1 still on insurer 3: no insurer stored.
        QVERIFY(clickNamed(w, "modificar"));
        tick(control<QRadioButton>(w, "Option1"));
        QCOMPARE(combo1->currentText(), QString("3 Seguros Atlántida"));
        QCOMPARE(press(w, "guardar", sp), QStringList{"El paciente se modifico exitosamente"});
        QVERIFY(written().startsWith("0/0/"));

        // A receivable, even one paid, keeps the insurer, not the rest; any invoice, voided too,
        // keeps the patient; otherwise the question decides.
        addInsurer(4, "Pan American");
        amb1().execute("INSERT INTO cxc (factura, Cod_paciente, estado) VALUES (1, ?, TRUE)", {andrea});
        amb1().execute("INSERT INTO Factura (factura, cod_paciente, anulada) VALUES (1, ?, TRUE)", {andrea});
        clickGridRow(g, findRow(g, 0, QString::number(andrea)));
        QVERIFY(clickNamed(w, "modificar"));
        pickEntry(control<QComboBox>(w, "Combo1"), "4 Pan American");
        QCOMPARE(press(w, "guardar", sp), QStringList{kNotes});
        tick(control<QRadioButton>(w, "Option1"));
        QCOMPARE(press(w, "guardar", sp), QStringList{kNotes});
        QCOMPARE(patientField(andrea, "Cod_seguro"), QString("3"));
        tick(control<QRadioButton>(w, "Option2"));
        pickEntry(control<QComboBox>(w, "Combo1"), "3 Seguros Atlántida");
        retype(control<QLineEdit>(w, "Text5"), "2233-4455");
        QCOMPARE(press(w, "guardar", sp), QStringList{"El paciente se modifico exitosamente"});
        QCOMPARE(patientField(andrea, "tel_paciente"), QString("2233-4455"));

        const int patients = rowsIn("Pacientes");
        QCOMPARE(press(w, "eliminar", sp),
                 QStringList{"El paciente posee transacciones con nosotros no puede ser eliminado"});
        clickGridRow(g, findRow(g, 0, QString::number(juan)));
        QCOMPARE(press(w, "eliminar", sp, Answer::No),
                 QStringList{"Esta seguro de querer eliminar el paciente"});
        QCOMPARE(rowsIn("Pacientes"), patients);
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 (QStringList{"Esta seguro de querer eliminar el paciente",
                              "El paciente fue eliminado existosamente"}));
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE cod_paciente = ?", {juan}), 0);
        QCOMPARE(control<QLineEdit>(w, "Text2")->text(), QString("Ana"));   // the first row again
    }

    // FBuscarCliente lists every patient, searches by start of surname or name, hands the choice
    // back (the sex only for result printing), nothing when closed without one.
    void patientPicker()
    {
        TempStore store;
        ScriptedPrompts sp;
        sp.onModal("FBuscarCliente", [](QWidget*) {});
        QCOMPARE(handed(choosePatient(PatientCaller::Invoice)), QString("-"));
        QCOMPARE(sp.messages(), QStringList{"No existen Pacientes creados"});

        addInsurer(7, "Palic");
        addPatient("Ana", "López");
        const int carla = addPatient("Carla", "Pérez", 7, QDate(1985, 2, 1));
        const int oneil = addPatient("Óscar", "O'Neil", 0, QDate(1970, 1, 1), "Masculino");
        amb1().execute("DELETE FROM seguros WHERE Cod_Seguro = 7");

        sp.onModal("FBuscarCliente", [&](QWidget* w) {
            auto* g = control<FlexGrid>(w, "Grid1");
            QCOMPARE(column(g, 2), (QStringList{"López", "O'Neil", "Pérez"}));
            retype(control<QLineEdit>(w, "Text1"), "o'n");
            QCOMPARE(column(g, 1), QStringList{"Óscar"});
            retype(control<QLineEdit>(w, "Text1"), "érez");   // surname: only its start
            QCOMPARE(g->rows(), 1);
            tick(control<QRadioButton>(w, "Option1"));
            retype(control<QLineEdit>(w, "Text1"), "car");
            QCOMPARE(column(g, 0), QStringList{QString::number(carla)});
            clickRow(g, 0);
        });
        const QString carlaIs = QString("%1|Carla, Pérez|7|01/02/1985|").arg(carla);
        QCOMPARE(handed(choosePatient(PatientCaller::ResultPrinting)), carlaIs + "Femenino");

        sp.onModal("FBuscarCliente", [&](QWidget* w) { clickRow(control<FlexGrid>(w, "Grid1"), 2); });
        QCOMPARE(handed(choosePatient(PatientCaller::Invoice)), carlaIs);

        // listaclientes: by name, Enter chooses.
        sp.onModal("listaclientes", [&](QWidget* w) {
            auto* list = control<QListWidget>(w, "List1");
            QCOMPARE(list->count(), 3);
            QCOMPARE(list->item(1)->text(), QString::number(carla) + "\tCarla, Pérez");
            list->setCurrentRow(1);
            QTest::keyClick(list, Qt::Key_Return);
        });
        QVERIFY(handed(choosePatientFromList()).startsWith(QString("%1|Carla, Pérez|").arg(carla)));
        sp.onModal("listaclientes", [](QWidget*) {});
        QCOMPARE(handed(choosePatientFromList()), QString("-"));

        // Form30 narrows by name or surname anywhere; Yes filters the report to the chosen patient.
        addPatient("Juana", "Castro");
        addPatient("Zoé 🌼", "Castro");
        QPointer<QWidget> w = openScreen("Form30");
        auto* g = control<DataGrid>(w, "Grid1");
        QCOMPARE(g->rows(), 5);
        retype(control<QLineEdit>(w, "Text1"), "an");
        QCOMPARE(g->rows(), 2);
        control<QLineEdit>(w, "Text1")->setText("🌼");   // a letter of two UTF-16 units
        QCOMPARE(g->rows(), 1);
        tick(control<QRadioButton>(w, "Option2"));
        retype(control<QLineEdit>(w, "Text1"), "o'n");
        QCOMPARE(g->rows(), 1);
        QCOMPARE(g->value(0, "CODIGO").toInt(), oneil);

        sp.clear();
        sp.answers.push_back(Answer::No);
        clickRow(g, 0);
        QCOMPARE(sp.messages(), QStringList{"Quiere mostrar el reporte del cliente Óscar O'Neil ?"});
        sp.clear();
        clickRow(g, 0);   // Yes
        QCOMPARE(amb1().rs("rsRepClienteexamen_Grouping").filter(),
                 "Cod_Paciente =" + QString::number(oneil));
        QCOMPARE(sp.prompts.last().text, QString("DataReport11"));   // the report, shown modally
    }
};

QTEST_MAIN(TestPatients)
#include "test_patients.moc"
