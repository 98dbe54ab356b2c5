// Insurers (Fseguro) and their price lists (FSegurosPrecios), driven by their controls.
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/flexgrid.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

int findRow(FlexGrid* g, const QString& code) { return tq::test::findRow(g, 0, code); }

// Clears a price cell of Grid2 with Backspace and types `keys` into it.
void typePrice(FlexGrid* g, int row, const QString& keys)
{
    g->setFocus();
    g->setRow(row);
    g->setCol(2);
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(g, Qt::Key_Backspace);
    typeKeys(g, keys);
}

// The insurer's stored list: "code=price", by code.
QStringList storedList(int insurer)
{
    Recordset rs;
    rs.open("SELECT Cod_descripcionexamen, precio FROM RelSeguroPrecios WHERE cod_seguro = ? "
            "ORDER BY Cod_descripcionexamen",
            {insurer});
    QStringList out;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        out << rs.text("Cod_descripcionexamen") + "=" + QString::number(rs.field("precio").toDouble());
    return out;
}

}  // namespace

class TestInsurers : public QObject {
    Q_OBJECT

private slots:
    // An add's checks in order, the code proposed, insurer 0 protected; the price list outlives its insurer.
    void insurersChecksAndProtection()
    {
        TempStore store;
        ScriptedPrompts sp;
        QPointer<QWidget> w = openScreen("Fseguro");
        auto* dg = control<DataGrid>(w, "DataGrid1");

        // Insurer 0 can be neither modified nor deleted.
        QCOMPARE(press(w, "modificar", sp),
                 QStringList{"el Seguro con codigo 0 Sin seguro no puede ser Modificado"});
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 QStringList{"el Seguro con codigo 0 Sin seguro no puede ser eliminado"});

        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(edit(w, "Text1")->text(), QString("1"));
        retype(edit(w, "Text1"), "");
        const QString notANumber =
            "El código del seguro debe ser un número entero entre 0 y 2147483647.";
        QCOMPARE(refusals(w, sp, "guardar",
                          {{"Debe Ingresar el Codigo.", "Text1", "12x"},
                           {"Debe Ingresar la Empresa.", "Text2", "Sin Seguro"},
                           {notANumber, "Text1", "99999999999"},
                           {notANumber, "Text1", "0"},
                           {"El nombre de esa Empresa ya existe, verifique el nombre", "Text2", "Seguros O'Neil"},
                           {"Ya existe un seguro con el código 0.", "Text1", "5"}},
                          "seguros", Icon::Exclamation),
                 QString());
        typeKeys(edit(w, "Text6"), "11-22'3");
        QCOMPARE(press(w, "guardar", sp), QStringList{"El nuevo seguro ha sido ingresado a sus datos"});
        QCOMPARE(value("SELECT Empresa || '/' || Cuenta FROM seguros WHERE Cod_Seguro = 5").toString(),
                 QString("Seguros O'Neil/11-22'3"));
        // The proposed code, taken meanwhile at another station, moves on and is told.
        QVERIFY(clickNamed(w, "agregar"));
        QCOMPARE(edit(w, "Text1")->text(), QString("6"));
        amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa) VALUES (6, 'Otra Estación')");
        retype(edit(w, "Text2"), "Seguros del Norte");
        QCOMPARE(press(w, "guardar", sp),
                 (QStringList{"El código 6 ya fue usado en otra estación; el seguro se guardó "
                              "con el código 7.",
                              "El nuevo seguro ha sido ingresado a sus datos"}));
        for (const auto& [code, company] : {std::pair{6, "Otra Estación"}, {7, "Seguros del Norte"}})
            QCOMPARE(value("SELECT Empresa FROM seguros WHERE Cod_Seguro = ?", {code}).toString(),
                     QString(company));

        // A modify writes all but the code, with no duplicate test.
        clickRow(dg, dg->findRow("Cod_Seguro", 5));
        QVERIFY(clickNamed(w, "modificar"));
        retype(edit(w, "Text3"), "Lic. D'Cruz");
        QCOMPARE(press(w, "guardar", sp), QStringList{"El seguro ha sido modificado exitosamente"});
        QCOMPARE(value("SELECT Contacto FROM seguros WHERE Cod_Seguro = 5").toString(),
                 QString("Lic. D'Cruz"));

        // Patients hold it back; without them it goes, its prices stay.
        amb1().execute("INSERT INTO Pacientes (nombre_paciente, Cod_seguro) VALUES ('Ana', 5)");
        amb1().execute("INSERT INTO RelSeguroPrecios (cod_seguro, Cod_descripcionexamen, precio) "
                       "VALUES (5, 1, 10)");
        clickRow(dg, dg->findRow("Cod_Seguro", 5));
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 QStringList{"No puede eliminar el seguro porque tiene pacientes relacionados"});
        amb1().execute("DELETE FROM Pacientes");
        QCOMPARE(press(w, "eliminar", sp, Answer::Yes),
                 (QStringList{"Esta seguro de querer eliminar el seguro",
                              "El seguro se elimino extosamente"}));
        QCOMPARE(value("SELECT COUNT(*) FROM seguros WHERE Cod_Seguro = 5").toInt(), 0);
        QCOMPARE(storedList(5), QStringList{"1=10"});
    }

    // The mover between the catalogue and an insurer's list: duplicates refused, ">>" needs an
    // insurer, the total counts the new rows; a save inserts and updates, never deletes.
    void priceListOnlyGrows()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int type = addExamType("Varios");
        const QString a = QString::number(addExam(type, "Acido Urico", 100)),
                      b = QString::number(addExam(type, "Bilirrubina O'Neil", 200)),
                      c = QString::number(addExam(type, "Colesterol", 300));
        addInsurer(7, "Seguros Sur");
        addListPrice(7, a.toInt(), 50);

        QPointer<QWidget> w = openScreen("FSegurosPrecios");
        auto* g1 = control<FlexGrid>(w, "Grid1");
        auto* g2 = control<FlexGrid>(w, "Grid2");
        auto* combo = control<QComboBox>(w, "Combo1");
        auto* total = edit(w, "txttotal");
        QCOMPARE(g1->rows(), 4);
        QCOMPARE(press(w, "Command3", sp), QStringList{"Debe ingresar un Seguro"});
        QCOMPARE(press(w, "Command7", sp), QStringList{"debe seleccionar un seguro"});

        pickEntry(combo, 0);
        QCOMPARE(g2->rows(), 2);
        QCOMPARE(g2->textMatrix(1, 2), QString("50.00"));
        QCOMPARE(press(w, "Command3", sp), QStringList{"Debe asignar al menos un examen al seguro"});

        clickGridRow(g1, findRow(g1, a));
        QCOMPARE(press(w, "Command1", sp), QStringList{"No puede agregar dos veces el mismo Item"});
        clickGridRow(g1, findRow(g1, b));
        QCOMPARE(press(w, "Command1", sp), QStringList());
        QCOMPARE(total->text(), QString("1"));
        QCOMPARE(g2->cellBackColor(2, 1), QColor(0, 255, 0));
        // The last new row taken off: the total is 0 and the save refuses.
        clickGridRow(g2, 2);
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(total->text(), QString("0"));
        QCOMPARE(press(w, "Command3", sp), QStringList{"Debe asignar al menos un examen al seguro"});

        QCOMPARE(press(w, "Command7", sp), QStringList());   // B and C, in silence
        QCOMPARE(g2->rows(), 4);
        QCOMPARE(total->text(), QString("2"));
        typePrice(g2, findRow(g2, b), "8a0.2-5");
        QCOMPARE(g2->textMatrix(findRow(g2, b), 2), QString("80.25"));
        typePrice(g2, findRow(g2, a), "55");
        // Other columns don't take keys.
        g2->setCol(1);
        typeKeys(g2, "9");
        QCOMPARE(g2->textMatrix(g2->row(), 1), QString("Acido Urico"));
        clickGridRow(g2, findRow(g2, c));
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(total->text(), QString("1"));

        // A store failing mid-save leaves the list as it was and what was typed on screen.
        StoreFaults faults;
        faults.failAfter(1);
        const QStringList failed = press(w, "Command3", sp);
        QCOMPARE(failed.size(), 1);
        QVERIFY2(failed[0].startsWith("No se pudieron guardar los precios del seguro."), qPrintable(failed[0]));
        QCOMPARE(storedList(7), QStringList{a + "=50"});
        QCOMPARE(g2->rows(), 3);
        faults.heal();
        QCOMPARE(press(w, "Command3", sp), QStringList{"Los examenes se asignaron exitosamente"});
        QCOMPARE(storedList(7), (QStringList{a + "=55", b + "=80.25"}));
        QCOMPARE(g2->rows(), 1);

        // "<" on a stored row and a save leave it in the list; given again, it is overwritten.
        pickEntry(combo, 0);
        QCOMPARE(g2->rows(), 3);
        clickGridRow(g2, findRow(g2, a));
        QVERIFY(clickNamed(w, "Command2"));
        clickGridRow(g1, findRow(g1, c));
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(press(w, "Command3", sp), QStringList{"Los examenes se asignaron exitosamente"});
        QCOMPARE(storedList(7), (QStringList{a + "=55", b + "=80.25", c + "=300"}));
        pickEntry(combo, 0);
        clickGridRow(g1, findRow(g1, a));
        QCOMPARE(press(w, "Command1", sp), QStringList{"No puede agregar dos veces el mismo Item"});
        clickGridRow(g2, findRow(g2, a));
        QVERIFY(clickNamed(w, "Command2"));
        clickGridRow(g1, findRow(g1, a));
        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(press(w, "Command3", sp), QStringList{"Los examenes se asignaron exitosamente"});
        QCOMPARE(storedList(7), (QStringList{a + "=100", b + "=80.25", c + "=300"}));

        // The search of the catalogue starts with the text, by description.
        typeKeys(edit(w, "Text1"), "Bilirrubina O'");
        QCOMPARE(g1->rows(), 2);
        QCOMPARE(g1->textMatrix(1, 0), b);
    }
};

QTEST_MAIN(TestInsurers)
#include "test_insurers.moc"
