// The register screens of employees (Form1) and referring doctors (Fdoctores).
#include "billing_fixture.h"
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/register_screen.h"
#include "frame/MDIForm1.h"
#include "frame/accesos.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

const QString kDuplicate = "Debe seleccionar un nuevo usuario, el presente usuario ya existe";
const QString kAsk = "¿ Esta seguro que desea eliminar el registro ?";
const QString kModified = "El registro ha sido modificado satisfactoriamente";
const QString kDeleted = "El registro ha sido eliminado satisfactoriamente";
const QString kBadDate = "fecha de ingreso no es válida";

// Chooses `code` after `other` (so the choice moves) and modifies `field`; the first mismatch.
QString modifyRow(QWidget* w, ScriptedPrompts& sp, const QString& column, int other, int code,
                  const QString& field, const QString& value)
{
    auto* grid = control<DataGrid>(w, "DataGrid1");
    clickRow(grid, grid->findRow(column, other));
    clickRow(grid, grid->findRow(column, code));
    if (!clickNamed(w, "Command4"))
        return "Command4 disabled";
    retype(edit(w, field), value);
    const QStringList shown = press(w, "Command5", sp);
    return shown == QStringList{kModified} ? QString() : shown.join(" | ");
}

// The store's counter of the table hands out `next` as its following code.
void setNextCode(const QString& table, const QString& column, int next)
{
    amb1().insert(table, {column}, {next - 1});
    amb1().execute("DELETE FROM " + table + " WHERE " + column + " = ?", {next - 1});
}

// "Eliminar": No keeps the row; Yes removes it, clears the fields, reloads the list.
QString deleteShownRow(QWidget* w, ScriptedPrompts& sp, const QString& table)
{
    const int stored = rowsIn(table);
    if (press(w, "Command2", sp, Answer::No) != QStringList{kAsk}
        || sp.prompts[0].buttons != Buttons::YesNo || rowsIn(table) != stored
        || edit(w, "Text1")->text().isEmpty())
        return "No: " + sp.messages().join(" | ");
    if (press(w, "Command2", sp, Answer::Yes) != QStringList{kAsk, kDeleted}
        || rowsIn(table) != stored - 1 || !edit(w, "Text1")->text().isEmpty()
        || control<DataGrid>(w, "DataGrid1")->rows() != stored - 1)
        return "Yes: " + sp.messages().join(" | ");
    return {};
}

// Adds an employee from the texts of Text1..Text7 with the role entry; false if refused.
bool addEmployee(QWidget* w, ScriptedPrompts& sp, const QStringList& texts, int rolEntry = 1)
{
    clickNamed(w, "Command6");
    if (!clickNamed(w, "Command1"))
        return false;
    for (int i = 0; i < texts.size(); ++i)
        retype(edit(w, QString("Text%1").arg(i + 1)), texts[i]);
    pickEntry(control<QComboBox>(w, "Combo1"), rolEntry);
    return press(w, "Command5", sp).isEmpty();
}

}  // namespace

class TestRegisters : public QObject {
    Q_OBJECT

private slots:
    // A modify checks no field and keeps the sign-on; codes past 16 bits; an add checks in order
    // and saves whole; duplicates, apostrophes and a failed save of the module rights.
    void employees()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int big = 40001;
        setNextCode("Empleados", "cod_empleado", big);
        QCOMPARE(signOn("admin", "admin"), SignOnOutcome::Granted);
        QPointer<QWidget> w = openScreen("Form1");
        auto* reg = qobject_cast<RegisterScreen*>(w.data());
        auto* grid = control<DataGrid>(w, "DataGrid1");
        QVERIFY(!grid->columnNames().contains("Password", Qt::CaseInsensitive));

        // An empty name is saved as empty; the sign-on name and password stay.
        QVERIFY(clickNamed(w, "Command4"));
        retype(edit(w, "Text1"), "");
        retype(edit(w, "Text2"), "Reyes");
        retype(edit(w, "Text6"), "01/06/2019");
        retype(edit(w, "Text7"), "carlitos");
        pickEntry(control<QComboBox>(w, "Combo1"), 1);
        QCOMPARE(press(w, "Command5", sp), QStringList{kModified});
        QCOMPARE(row("SELECT nombre_empleado, apellido_empleado, fecha_nacimiento, rol, usuario "
                     "FROM Empleados"),
                 (QStringList{"", "Reyes", "01/06/2019", "2", "admin"}));
        QVERIFY(hasPassword(1, "admin"));
        // A bad date writes nothing; "Cancelar" goes back to the stored row.
        QVERIFY(clickNamed(w, "Command4"));
        retype(edit(w, "Text2"), "Cambiado");
        retype(edit(w, "Text6"), "32/13/2024");
        QVERIFY(press(w, "Command5", sp).join("").contains(kBadDate));
        QVERIFY(clickNamed(w, "Command6"));
        QCOMPARE(edit(w, "Text2")->text(), QString("Reyes"));
        QCOMPARE(count("SELECT COUNT(*) FROM Empleados WHERE apellido_empleado = 'Reyes'"), 1);

        // Codes past 16 bits: added, signing on, chosen beside a small code, modified, deleted.
        QVERIFY(addEmployee(w, sp, {"Lucia", "Garcia", "Centro", "", "", "01/02/2024", "lgarcia"}));
        QCOMPARE(int(reg->selectedCode()), big);
        QCOMPARE(count("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ?", {big}), 3);
        QCOMPARE(checkSignOn("lgarcia", "lgarcia").outcome, SignOnOutcome::Granted);
        QCOMPARE(modifyRow(w, sp, "cod_empleado", 1, big, "Text2", "Garcia Paz"), QString());
        QCOMPARE(row("SELECT apellido_empleado FROM Empleados WHERE cod_empleado = 1"), QStringList{"Reyes"});
        // Deleting asks first; the employee's module rights stay behind.
        QCOMPARE(deleteShownRow(w, sp, "Empleados"), QString());
        QCOMPARE(count("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ?", {big}), 3);
        // With no row chosen there is only a notice.
        QCOMPARE(press(w, "Command2", sp).size(), 1);
        QCOMPARE(sp.prompts[0].buttons, Buttons::Ok);
        QCOMPARE(rowsIn("Empleados"), 1);

        QVERIFY(clickNamed(w, "Command1"));
        QCOMPARE(refusals(w, sp, "Command5",
                          {{"Debe especificar un Nombre de Empleado", "Text1", "Lucia"},
                           {"Debe especificar un Apellido de Empleado", "Text2", "Mejia"},
                           {"Debe especificar una direccion para el empleado", "Text3", "Abajo"},
                           {"Debe especificar una fecha de ingreso para el empleado", "Text6", "ayer"},
                           {"Debe especificar un usuario para el empleado", "Text7", "lmejia"},
                           {"Debe especificar el tipo de usuario para el empleado", "Combo1",
                            "2     Usuario Limitado"}},
                          "Empleados", Icon::Critical),
                 QString());
        // The hiring date must be a real date before anything is written.
        retype(edit(w, "Text6"), "31/02/2024");
        QVERIFY(press(w, "Command5", sp).join("").contains(kBadDate));
        QCOMPARE(w->focusWidget(), edit(w, "Text6"));
        QCOMPARE(rowsIn("Empleados"), 1);
        retype(edit(w, "Text6"), "15/03/2024");
        QCOMPARE(press(w, "Command5", sp), QStringList());
        const int code = count("SELECT cod_empleado FROM Empleados WHERE usuario = 'lmejia'");
        // The first password is the sign-on name, kept hashed; the role is the entry's head.
        QVERIFY(hasPassword(code, "lmejia"));
        QCOMPARE(row("SELECT rol, tel_empleado, fecha_nacimiento FROM Empleados "
                     "WHERE cod_empleado = ?", {code}),
                 (QStringList{"2", "NULL", "15/03/2024"}));
        QCOMPARE(count("SELECT COUNT(DISTINCT cod_modulo) FROM usuariosmodulos "
                       "WHERE cod_empleado = ?", {code}),
                 3);

        // Back at rest, the new row the selected one and in the list.
        QCOMPARE(int(reg->selectedCode()), code);
        QCOMPARE(grid->rows(), 2);

        // "admin" is the administrator's password: refused, nothing written.
        const QStringList e{"Mario", "Zelaya", "Col. Kennedy", "2233-4455", "", "01/02/2023",
                            "admin"};
        QVERIFY(!addEmployee(w, sp, e));
        QCOMPARE(sp.messages(), QStringList{kDuplicate});
        QCOMPARE(w->focusWidget(), edit(w, "Text7"));
        QCOMPARE(rowsIn("Empleados"), 2);
        QCOMPARE(rowsIn("usuariosmodulos"), 9);

        // Apostrophes are stored as typed, and the duplicate test sees them the same way.
        QVERIFY(addEmployee(w, sp, {"Mary' OR '1'='1", "O'Brien", "Calle 'La Fuente'", "", "",
                                    "10/10/2021", "o'brien"}, 0));
        QCOMPARE(row("SELECT nombre_empleado, apellido_empleado, direccion_empleado "
                     "FROM Empleados WHERE usuario = ?", {QString("o'brien")}),
                 (QStringList{"Mary' OR '1'='1", "O'Brien", "Calle 'La Fuente'"}));
        QVERIFY(!addEmployee(w, sp, {"Otra", "Persona", "Centro", "", "", "01/10/2021",
                                     "o'brien"}));
        QCOMPARE(sp.messages(), QStringList{kDuplicate});

        // The module rights can't be written: no employee row alone, the screen stays in edit.
        amb1().execute("DROP TABLE usuariosmodulos");
        QVERIFY(!addEmployee(w, sp, {"Elena", "Cruz", "Centro", "", "", "01/01/2024", "ecruz"}));
        QCOMPARE(sp.prompts.last().icon, Icon::Critical);
        QVERIFY(sp.lastMessage().startsWith("No se pudo guardar el empleado"));
        QCOMPARE(rowsIn("Empleados"), 3);
        QCOMPARE(edit(w, "Text7")->text(), QString("ecruz"));
        w->close();
        MDIForm1::instance()->close();
    }

    // A doctor's checks in order; a modify checks only the commission and writes
    // the chosen doctor alone, one coded past 16 bits too; a delete asks first.
    void doctors()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int big = 40001;
        setNextCode("Doctores", "Cod_doctor", big);
        QPointer<QWidget> w = openScreen("Fdoctores");
        QCOMPARE(sp.messages(), QStringList{"No existen Doctores ingresados"});

        QVERIFY(clickNamed(w, "Command1"));
        const QString notANumber = "La comisión debe ser un número";
        QCOMPARE(refusals(w, sp, "Command5",
                          {{"Debe especificar un Nombre de Empleado", "Text1", "Jose"},
                           {"Debe especificar un Apellido de Empleado", "Text2", "D'Antoni"},
                           {"Debe especificar el porsentaje de comosion", "Text6", "diez"},
                           {notANumber, "Text6", "10%"},
                           {notANumber, "Text6", "0"}},
                          "Doctores"),
                 QString());
        QCOMPARE(press(w, "Command5", sp), QStringList());
        QCOMPARE(int(qobject_cast<RegisterScreen*>(w.data())->selectedCode()), big);
        // Commission 0 is valid; the empty address goes in, the empty phone and mail do not.
        QCOMPARE(row("SELECT Nombre_doctor, Apellido_doctor, porsentaje, dir_doctor, tel_doctor, "
                     "correo_doctor FROM Doctores"),
                 (QStringList{"Jose", "D'Antoni", "0", "", "NULL", "NULL"}));
        w->close();

        // With doctors stored there is no notice.
        amb1().execute("INSERT INTO Doctores (Cod_doctor, Nombre_doctor, Apellido_doctor, dir_doctor, "
                       "porsentaje) VALUES (7, 'Ana', 'Flores', 'Col. Palmira', 5)");
        sp.clear();
        w = openScreen("Fdoctores");
        QVERIFY(sp.messages().isEmpty());
        auto* grid = control<DataGrid>(w, "DataGrid1");
        clickRow(grid, grid->findRow("Cod_doctor", big));
        clickRow(grid, grid->findRow("Cod_doctor", 7));
        QCOMPARE(edit(w, "Text6")->text(), QString("5"));
        QVERIFY(clickNamed(w, "Command4"));
        retype(edit(w, "Text6"), "x");
        QCOMPARE(press(w, "Command5", sp), QStringList{notANumber});
        retype(edit(w, "Text6"), "7.5");
        retype(edit(w, "Text4"), "2550-1122");
        QCOMPARE(press(w, "Command5", sp), QStringList{kModified});
        QCOMPARE(row("SELECT porsentaje, tel_doctor FROM Doctores WHERE Cod_doctor = 7"),
                 (QStringList{"7.5", "2550-1122"}));
        QCOMPARE(modifyRow(w, sp, "Cod_doctor", 7, big, "Text6", "15"), QString());
        QCOMPARE(row("SELECT porsentaje FROM Doctores WHERE Cod_doctor = 7"), QStringList{"7.5"});
        QCOMPARE(count("SELECT porsentaje FROM Doctores WHERE Cod_doctor = ?", {big}), 15);
        QCOMPARE(deleteShownRow(w, sp, "Doctores"), QString());
        QCOMPARE(count("SELECT COUNT(*) FROM Doctores WHERE Cod_doctor = ?", {big}), 0);
        // After a delete the commission shows "0" again.
        QCOMPARE(edit(w, "Text6")->text(), QString("0"));
        w->close();
    }
};

QTEST_MAIN(TestRegisters)
#include "test_registers.moc"
