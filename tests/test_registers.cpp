// The register screens of employees (Form1) and referring doctors
// (Fdoctores), driven by their controls on a fresh store.
#include "testsupport.h"

#include "foundation/amb1.h"
#include "foundation/datagrid.h"
#include "foundation/register_screen.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QtTest/QtTest>

using namespace tq;
using namespace tq::test;

namespace {

QLineEdit* edit(QWidget* w, const char* name)
{
    return control<QLineEdit>(w, QString::fromLatin1(name));
}

QVariant one(const QString& sql, const QVariantList& binds = {})
{
    return amb1().scalar(sql, binds);
}

int count(const QString& sql, const QVariantList& binds = {})
{
    return one(sql, binds).toInt();
}

// Chooses a row of a data grid with a real click.
void clickRow(DataGrid* grid, int row)
{
    const QRect r = grid->visualRect(grid->model()->index(row, 1));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, r.center());
}

// Picks an entry of a list-only combo with the arrow keys, as a user would.
void pickEntry(QComboBox* combo, int index)
{
    combo->setFocus();
    if (combo->currentIndex() < 0)
        QTest::keyClick(combo, Qt::Key_Down);
    for (int guard = 0; combo->currentIndex() < index && guard < 10; ++guard)
        QTest::keyClick(combo, Qt::Key_Down);
    for (int guard = 0; combo->currentIndex() > index && guard < 10; ++guard)
        QTest::keyClick(combo, Qt::Key_Up);
}

struct Employee {
    QString nombre, apellido, direccion, tel, cel, fecha;
    int rolEntry = 1;   // 0 Administrador, 1 Usuario Limitado
    QString usuario;
};

void fillEmployee(QWidget* w, const Employee& e)
{
    retype(edit(w, "Text1"), e.nombre);
    retype(edit(w, "Text2"), e.apellido);
    retype(edit(w, "Text3"), e.direccion);
    retype(edit(w, "Text4"), e.tel);
    retype(edit(w, "Text5"), e.cel);
    retype(edit(w, "Text6"), e.fecha);
    pickEntry(control<QComboBox>(w, QStringLiteral("Combo1")), e.rolEntry);
    retype(edit(w, "Text7"), e.usuario);
}

// Adds an employee through the screen; returns false if a message refused it.
bool addEmployee(QWidget* w, ScriptedPrompts& sp, const Employee& e)
{
    if (!clickNamed(w, QStringLiteral("Command1")))
        return false;
    fillEmployee(w, e);
    const int before = int(sp.prompts.size());
    clickNamed(w, QStringLiteral("Command5"));
    return sp.prompts.size() == before;
}

void addDoctorRow(const QString& nombre, const QString& apellido, double porsentaje)
{
    amb1().execute(QStringLiteral("INSERT INTO Doctores (Nombre_doctor, Apellido_doctor, "
                                  "dir_doctor, porsentaje) VALUES (?, ?, ?, ?)"),
                   {nombre, apellido, QStringLiteral("Col. Palmira"), porsentaje});
}

}  // namespace

class TestRegisters : public QObject {
    Q_OBJECT

private slots:
    void employeeChecksComeInOrder();
    void employeeGridAndComboAtRest();
    void newUserIsHeldAgainstPasswords();
    void badHiringDateIsRefused();
    void modifyNeverWritesUserOrPassword();
    void deleteAsksFirst();
    void cancelGoesBackToTheRow();
    void apostrophesAreStoredIntact();
    void failedSaveLeavesNoHalfEmployee();

    void doctorsEmptyTableAndChecks();
    void doctorCommissionMustBeANumber();
    void doctorModifyAndDelete();
};

void TestRegisters::employeeChecksComeInOrder()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    auto* reg = qobject_cast<RegisterScreen*>(w.data());
    QVERIFY(reg);
    QCOMPARE(w->windowTitle(), QStringLiteral("Control de Empleados"));

    QVERIFY(clickNamed(w, QStringLiteral("Command1")));
    QCOMPARE(int(reg->mode()), 1);
    QVERIFY(!control<QWidget>(w, QStringLiteral("DataGrid1"))->isEnabled());
    for (const char* off : {"Command1", "Command2", "Command4"})
        QVERIFY2(!control<QWidget>(w, QString::fromLatin1(off))->isEnabled(), off);
    for (const char* on : {"Command5", "Command6", "Text1", "Combo1", "Text7"})
        QVERIFY2(control<QWidget>(w, QString::fromLatin1(on))->isEnabled(), on);
    QVERIFY(edit(w, "Text1")->text().isEmpty());   // the first row was cleared

    struct Step {
        const char* field;
        const char* message;
        QString value;
    };
    const QList<Step> steps = {
        {"Text1", "Debe especificar un Nombre de Empleado", QStringLiteral("Lucia")},
        {"Text2", "Debe especificar un Apellido de Empleado", QStringLiteral("Mejia")},
        {"Text3", "Debe especificar una direccion para el empleado", QStringLiteral("Barrio Abajo")},
        {"Text6", "Debe especificar una fecha de ingreso para el empleado",
         QStringLiteral("15/03/2024")},
        {"Text7", "Debe especificar un usuario para el empleado", QStringLiteral("lmejia")},
        {"Combo1", "Debe especificar el tipo de usuario para el empleado", QString()},
    };
    for (const Step& s : steps) {
        sp.clear();
        QVERIFY(clickNamed(w, QStringLiteral("Command5")));
        QCOMPARE(sp.messages(), QStringList{QString::fromUtf8(s.message)});
        QCOMPARE(sp.prompts.first().icon, Icon::Critical);
        QCOMPARE(w->focusWidget(), control<QWidget>(w, QString::fromLatin1(s.field)));
        QVERIFY(reg->isEditing());
        if (QString::fromLatin1(s.field) == QLatin1String("Combo1"))
            pickEntry(control<QComboBox>(w, QStringLiteral("Combo1")), 1);
        else
            type(edit(w, s.field), s.value);
    }
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);

    sp.clear();
    QVERIFY(clickNamed(w, QStringLiteral("Command5")));
    QVERIFY(sp.messages().isEmpty());
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 2);
    const int code = one(QStringLiteral("SELECT cod_empleado FROM Empleados WHERE usuario = ?"),
                         {QStringLiteral("lmejia")}).toInt();
    // The first password is the sign-on name; role from the head of the entry.
    QCOMPARE(one(QStringLiteral("SELECT Password FROM Empleados WHERE cod_empleado = ?"), {code})
                 .toString(),
             QStringLiteral("lmejia"));
    QCOMPARE(one(QStringLiteral("SELECT rol FROM Empleados WHERE cod_empleado = ?"), {code}).toInt(), 2);
    QVERIFY(one(QStringLiteral("SELECT tel_empleado FROM Empleados WHERE cod_empleado = ?"), {code})
                .isNull());
    QCOMPARE(one(QStringLiteral("SELECT fecha_nacimiento FROM Empleados WHERE cod_empleado = ?"),
                 {code}).toDate(),
             QDate(2024, 3, 15));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ?"),
                   {code}),
             3);
    for (int m = 1; m <= 3; ++m)
        QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ? "
                                      "AND cod_modulo = ?"),
                       {code, m}),
                 1);

    // Back at rest: fields cleared and locked, the new row is the selected one.
    QVERIFY(!reg->isEditing());
    QVERIFY(edit(w, "Text1")->text().isEmpty());
    QVERIFY(!edit(w, "Text1")->isEnabled());
    QVERIFY(control<QWidget>(w, QStringLiteral("Command1"))->isEnabled());
    QVERIFY(!control<QWidget>(w, QStringLiteral("Command5"))->isEnabled());
    QCOMPARE(int(reg->selectedCode()), code);
    QCOMPARE(control<DataGrid>(w, QStringLiteral("DataGrid1"))->rows(), 2);
    w->close();
}

void TestRegisters::employeeGridAndComboAtRest()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    auto* grid = control<DataGrid>(w, QStringLiteral("DataGrid1"));
    // Columns 0..8 of the table, and never the password.
    QCOMPARE(grid->columnNames(),
             (QStringList{"cod_empleado", "nombre_empleado", "apellido_empleado",
                          "direccion_empleado", "tel_empleado", "cel_empleado",
                          "fecha_nacimiento", "rol", "usuario"}));
    QCOMPARE(grid->model()->headerData(8, Qt::Horizontal).toString(), QStringLiteral("usuario"));

    // The first row at rest: the administrator of a new store.
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Administrador"));
    QCOMPARE(edit(w, "Text7")->text(), QStringLiteral("admin"));
    QCOMPARE(edit(w, "Text6")->text(), QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy")));
    auto* combo = control<QComboBox>(w, QStringLiteral("Combo1"));
    QCOMPARE(combo->currentText(), QStringLiteral("1_Administrador"));
    QCOMPARE(combo->count(), 2);
    QCOMPARE(combo->itemText(0), QStringLiteral("1     Administrador"));
    QCOMPARE(combo->itemText(1), QStringLiteral("2     Usuario Limitado"));
    QVERIFY(!edit(w, "Text1")->isEnabled());
    QVERIFY(!control<QWidget>(w, QStringLiteral("Command6"))->isEnabled());

    // A limited user shows as "2_Usuario Limitado" once chosen in the grid.
    amb1().execute(QStringLiteral("INSERT INTO Empleados (nombre_empleado, apellido_empleado, "
                                  "direccion_empleado, fecha_nacimiento, rol, usuario, Password) "
                                  "VALUES ('Rosa', 'Pineda', 'Centro', ?, 2, 'rpineda', 'x1')"),
                   {QDate(2020, 1, 2)});
    w->close();
    w = openScreen(QStringLiteral("Form1"));
    grid = control<DataGrid>(w, QStringLiteral("DataGrid1"));
    clickRow(grid, 1);
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Rosa"));
    QCOMPARE(edit(w, "Text6")->text(), QStringLiteral("02/01/2020"));
    combo = control<QComboBox>(w, QStringLiteral("Combo1"));
    QCOMPARE(combo->currentText(), QStringLiteral("2_Usuario Limitado"));
    auto* reg = qobject_cast<RegisterScreen*>(w.data());
    QCOMPARE(int(reg->selectedCode()), grid->value(1, QStringLiteral("cod_empleado")).toInt());

    // Typing in the role combo is cancelled.
    QVERIFY(clickNamed(w, QStringLiteral("Command1")));
    QVERIFY(combo->currentText().isEmpty());
    type(combo, QStringLiteral("3 Jefe"));
    QVERIFY(combo->currentText().isEmpty());
    pickEntry(combo, 0);
    QCOMPARE(combo->currentText(), QStringLiteral("1     Administrador"));
    pressKey(combo, Qt::Key_Backspace);
    QCOMPARE(combo->currentText(), QStringLiteral("1     Administrador"));
    w->close();
}

void TestRegisters::newUserIsHeldAgainstPasswords()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    const QString dup = QStringLiteral("Debe seleccionar un nuevo usuario, el presente usuario ya existe");

    // "admin" is the administrator's password: refused.
    Employee e{"Mario", "Zelaya", "Col. Kennedy", "2233-4455", "", "01/02/2023", 1, "admin"};
    QVERIFY(!addEmployee(w, sp, e));
    QCOMPARE(sp.lastMessage(), dup);
    QCOMPARE(w->focusWidget(), control<QWidget>(w, QStringLiteral("Text7")));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM usuariosmodulos")), 3);
    clickNamed(w, QStringLiteral("Command6"));

    // A name that is nobody's password passes, even when it is somebody's usuario.
    amb1().execute(QStringLiteral("UPDATE Empleados SET Password = ? WHERE usuario = ?"),
                   {QStringLiteral("n0eslamisma"), QStringLiteral("admin")});
    sp.clear();
    QVERIFY(addEmployee(w, sp, e));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados WHERE usuario = 'admin'")), 2);

    // The new one's password is now "admin": the next "admin" is refused again.
    sp.clear();
    QVERIFY(!addEmployee(w, sp, e));
    QCOMPARE(sp.lastMessage(), dup);
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 2);
    w->close();
}

void TestRegisters::badHiringDateIsRefused()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    auto* reg = qobject_cast<RegisterScreen*>(w.data());
    for (const QString& bad : {QStringLiteral("31/02/2024"), QStringLiteral("ayer"),
                               QStringLiteral("15-03")}) {
        sp.clear();
        Employee e{"Ana", "Lopez", "Centro", "", "", bad, 0, "alopez"};
        QVERIFY2(!addEmployee(w, sp, e), qPrintable(bad));
        QVERIFY(sp.lastMessage().contains(QStringLiteral("fecha de ingreso no es valida")));
        QCOMPARE(w->focusWidget(), control<QWidget>(w, QStringLiteral("Text6")));
        QVERIFY(reg->isEditing());
        QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);
        QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM usuariosmodulos")), 3);
        clickNamed(w, QStringLiteral("Command6"));
    }

    // A modify with a bad date writes nothing either.
    QVERIFY(clickNamed(w, QStringLiteral("Command4")));
    retype(edit(w, "Text1"), QStringLiteral("Cambiado"));
    retype(edit(w, "Text6"), QStringLiteral("32/13/2024"));
    sp.clear();
    clickNamed(w, QStringLiteral("Command5"));
    QVERIFY(sp.lastMessage().contains(QStringLiteral("fecha de ingreso no es valida")));
    QCOMPARE(one(QStringLiteral("SELECT nombre_empleado FROM Empleados")).toString(),
             QStringLiteral("Administrador"));
    w->close();
}

void TestRegisters::modifyNeverWritesUserOrPassword()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    auto* reg = qobject_cast<RegisterScreen*>(w.data());
    QVERIFY(clickNamed(w, QStringLiteral("Command4")));
    QCOMPARE(int(reg->mode()), 2);
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Administrador"));   // values kept
    QVERIFY(edit(w, "Text7")->isEnabled());

    retype(edit(w, "Text1"), QStringLiteral("Carlos"));
    retype(edit(w, "Text4"), QStringLiteral("9988-7766"));
    retype(edit(w, "Text6"), QStringLiteral("01/06/2019"));
    retype(edit(w, "Text7"), QStringLiteral("carlitos"));
    pickEntry(control<QComboBox>(w, QStringLiteral("Combo1")), 1);
    sp.clear();
    QVERIFY(clickNamed(w, QStringLiteral("Command5")));
    QCOMPARE(sp.messages(), QStringList{QStringLiteral("El registro ha sido modificado satisfactoriamente")});
    QVERIFY(!reg->isEditing());

    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);
    QCOMPARE(one(QStringLiteral("SELECT nombre_empleado FROM Empleados")).toString(), QStringLiteral("Carlos"));
    QCOMPARE(one(QStringLiteral("SELECT tel_empleado FROM Empleados")).toString(), QStringLiteral("9988-7766"));
    QCOMPARE(one(QStringLiteral("SELECT fecha_nacimiento FROM Empleados")).toDate(), QDate(2019, 6, 1));
    QCOMPARE(one(QStringLiteral("SELECT rol FROM Empleados")).toInt(), 2);
    QCOMPARE(one(QStringLiteral("SELECT usuario FROM Empleados")).toString(), QStringLiteral("admin"));
    QCOMPARE(one(QStringLiteral("SELECT Password FROM Empleados")).toString(), QStringLiteral("admin"));

    // Mode 2 checks no field: an empty name is saved as empty.
    QVERIFY(clickNamed(w, QStringLiteral("Command4")));
    retype(edit(w, "Text1"), QString());
    sp.clear();
    QVERIFY(clickNamed(w, QStringLiteral("Command5")));
    QCOMPARE(sp.lastMessage(), QStringLiteral("El registro ha sido modificado satisfactoriamente"));
    QCOMPARE(one(QStringLiteral("SELECT nombre_empleado FROM Empleados")).toString(), QString());
    w->close();
}

void TestRegisters::deleteAsksFirst()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    QVERIFY(addEmployee(w, sp, {"Pedro", "Castro", "Col. Alameda", "", "", "05/05/2022", 1, "pcastro"}));
    const int code = one(QStringLiteral("SELECT cod_empleado FROM Empleados WHERE usuario = 'pcastro'")).toInt();
    auto* grid = control<DataGrid>(w, QStringLiteral("DataGrid1"));
    const int row = grid->findRow(QStringLiteral("cod_empleado"), code);
    QVERIFY(row >= 0);
    clickRow(grid, row);
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Pedro"));

    sp.clear();
    sp.answers.push_back(Answer::No);
    QVERIFY(clickNamed(w, QStringLiteral("Command2")));
    QCOMPARE(sp.prompts.size(), 1);
    QCOMPARE(sp.prompts[0].text, QStringLiteral("¿ Esta seguro que desea eliminar el registro ?"));
    QCOMPARE(sp.prompts[0].icon, Icon::Question);
    QCOMPARE(sp.prompts[0].buttons, Buttons::YesNo);
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 2);
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Pedro"));

    sp.clear();
    sp.answers.push_back(Answer::Yes);
    QVERIFY(clickNamed(w, QStringLiteral("Command2")));
    QCOMPARE(sp.lastMessage(), QStringLiteral("El registro ha sido eliminado satisfactoriamente"));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados WHERE cod_empleado = ?"), {code}), 0);
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);
    // Its module rights stay behind.
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ?"), {code}), 3);
    QVERIFY(edit(w, "Text1")->text().isEmpty());
    QCOMPARE(grid->rows(), 1);

    // With no row chosen there is nothing to delete or modify.
    sp.clear();
    clickNamed(w, QStringLiteral("Command2"));
    QCOMPARE(sp.prompts.size(), 1);
    QCOMPARE(sp.prompts[0].buttons, Buttons::Ok);
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);
    w->close();
}

void TestRegisters::cancelGoesBackToTheRow()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    QVERIFY(clickNamed(w, QStringLiteral("Command4")));
    retype(edit(w, "Text1"), QStringLiteral("Otro nombre"));
    QVERIFY(clickNamed(w, QStringLiteral("Command6")));
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Administrador"));
    QVERIFY(!edit(w, "Text1")->isEnabled());
    QVERIFY(control<QWidget>(w, QStringLiteral("DataGrid1"))->isEnabled());
    QCOMPARE(one(QStringLiteral("SELECT nombre_empleado FROM Empleados")).toString(),
             QStringLiteral("Administrador"));

    QVERIFY(clickNamed(w, QStringLiteral("Command1")));
    QVERIFY(edit(w, "Text1")->text().isEmpty());
    QVERIFY(clickNamed(w, QStringLiteral("Command6")));
    QCOMPARE(edit(w, "Text7")->text(), QStringLiteral("admin"));

    // "Salir" closes the screen.
    QVERIFY(clickNamed(w, QStringLiteral("Command3")));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!w);
    QVERIFY(sp.messages().isEmpty());
}

void TestRegisters::apostrophesAreStoredIntact()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    QVERIFY(addEmployee(w, sp, {"Mary' OR '1'='1", "O'Brien", "Calle 'La Fuente'", "", "",
                                "10/10/2021", 0, "o'brien"}));
    QCOMPARE(one(QStringLiteral("SELECT apellido_empleado FROM Empleados WHERE usuario = ?"),
                 {QStringLiteral("o'brien")}).toString(),
             QStringLiteral("O'Brien"));
    QCOMPARE(one(QStringLiteral("SELECT nombre_empleado FROM Empleados WHERE usuario = ?"),
                 {QStringLiteral("o'brien")}).toString(),
             QStringLiteral("Mary' OR '1'='1"));
    // The duplicate test with an apostrophe in the name works as any other.
    sp.clear();
    QVERIFY(!addEmployee(w, sp, {"Otra", "Persona", "Centro", "", "", "10/10/2021", 0, "o'brien"}));
    QCOMPARE(sp.lastMessage(),
             QStringLiteral("Debe seleccionar un nuevo usuario, el presente usuario ya existe"));
    w->close();
}

void TestRegisters::failedSaveLeavesNoHalfEmployee()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Form1"));
    QVERIFY(w);
    auto* reg = qobject_cast<RegisterScreen*>(w.data());
    // The module rights can't be written: the employee row must not stay alone.
    amb1().execute(QStringLiteral("DROP TABLE usuariosmodulos"));
    QVERIFY(!addEmployee(w, sp, {"Elena", "Cruz", "Centro", "", "", "01/01/2024", 1, "ecruz"}));
    QCOMPARE(sp.prompts.last().icon, Icon::Critical);
    QVERIFY(sp.lastMessage().startsWith(QStringLiteral("No se pudo guardar el empleado")));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Empleados")), 1);
    // Still in edit with what was typed, so nothing is lost.
    QVERIFY(reg->isEditing());
    QCOMPARE(edit(w, "Text7")->text(), QStringLiteral("ecruz"));
    w->close();
}

void TestRegisters::doctorsEmptyTableAndChecks()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Fdoctores"));
    QVERIFY(w);
    QCOMPARE(w->windowTitle(), QStringLiteral("Ingreso de Remitentes"));
    QCOMPARE(sp.messages(), QStringList{QStringLiteral("No existen Doctores ingresados")});
    QCOMPARE(edit(w, "Text6")->text(), QStringLiteral("0"));
    QCOMPARE(control<QLabel>(w, QStringLiteral("Label7"))->text(), QStringLiteral("%"));

    QVERIFY(clickNamed(w, QStringLiteral("Command1")));
    const QList<QPair<const char*, QString>> steps = {
        {"Text1", QStringLiteral("Debe especificar un Nombre de Empleado")},
        {"Text2", QStringLiteral("Debe especificar un Apellido de Empleado")},
        {"Text6", QStringLiteral("Debe especificar el porsentaje de comosion")},
    };
    const QStringList values{QStringLiteral("Jose"), QStringLiteral("D'Antoni"), QStringLiteral("0")};
    for (int i = 0; i < steps.size(); ++i) {
        sp.clear();
        QVERIFY(clickNamed(w, QStringLiteral("Command5")));
        QCOMPARE(sp.messages(), QStringList{steps[i].second});
        QCOMPARE(w->focusWidget(), control<QWidget>(w, QString::fromLatin1(steps[i].first)));
        type(edit(w, steps[i].first), values[i]);
    }
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Doctores")), 0);
    sp.clear();
    QVERIFY(clickNamed(w, QStringLiteral("Command5")));
    QVERIFY(sp.messages().isEmpty());
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Doctores")), 1);
    // Commission 0 is valid; the empty address goes in, the empty phone and mail do not.
    QCOMPARE(one(QStringLiteral("SELECT porsentaje FROM Doctores")).toDouble(), 0.0);
    QCOMPARE(one(QStringLiteral("SELECT Apellido_doctor FROM Doctores")).toString(), QStringLiteral("D'Antoni"));
    const QVariant dir = one(QStringLiteral("SELECT dir_doctor FROM Doctores"));
    QVERIFY(!dir.isNull());
    QCOMPARE(dir.toString(), QString());
    QVERIFY(one(QStringLiteral("SELECT tel_doctor FROM Doctores")).isNull());
    QVERIFY(one(QStringLiteral("SELECT correo_doctor FROM Doctores")).isNull());
    QCOMPARE(control<DataGrid>(w, QStringLiteral("DataGrid1"))->rows(), 1);
    w->close();

    // With doctors stored there is no notice, and the first one is shown.
    sp.clear();
    w = openScreen(QStringLiteral("Fdoctores"));
    QVERIFY(sp.messages().isEmpty());
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Jose"));
    w->close();
}

void TestRegisters::doctorCommissionMustBeANumber()
{
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w = openScreen(QStringLiteral("Fdoctores"));
    QVERIFY(w);
    QVERIFY(clickNamed(w, QStringLiteral("Command1")));
    type(edit(w, "Text1"), QStringLiteral("Ramon"));
    type(edit(w, "Text2"), QStringLiteral("Ortez"));
    type(edit(w, "Text4"), QStringLiteral("2550-1122"));
    type(edit(w, "Text5"), QStringLiteral("rortez@correo.hn"));
    for (const QString& bad : {QStringLiteral("diez"), QStringLiteral("10%"), QStringLiteral("1o")}) {
        retype(edit(w, "Text6"), bad);
        sp.clear();
        QVERIFY(clickNamed(w, QStringLiteral("Command5")));
        QCOMPARE(sp.messages(), QStringList{QStringLiteral("La comision debe ser un numero")});
        QCOMPARE(w->focusWidget(), control<QWidget>(w, QStringLiteral("Text6")));
        QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Doctores")), 0);
    }
    retype(edit(w, "Text6"), QStringLiteral("12.5"));
    sp.clear();
    QVERIFY(clickNamed(w, QStringLiteral("Command5")));
    QVERIFY(sp.messages().isEmpty());
    QCOMPARE(one(QStringLiteral("SELECT porsentaje FROM Doctores")).toDouble(), 12.5);
    QCOMPARE(one(QStringLiteral("SELECT tel_doctor FROM Doctores")).toString(), QStringLiteral("2550-1122"));
    QCOMPARE(one(QStringLiteral("SELECT correo_doctor FROM Doctores")).toString(),
             QStringLiteral("rortez@correo.hn"));
    w->close();
}

void TestRegisters::doctorModifyAndDelete()
{
    TempStore store;
    ScriptedPrompts sp;
    addDoctorRow(QStringLiteral("Ana"), QStringLiteral("Suazo"), 10);
    addDoctorRow(QStringLiteral("Luis"), QStringLiteral("Flores"), 5);
    QPointer<QWidget> w = openScreen(QStringLiteral("Fdoctores"));
    QVERIFY(w);
    auto* grid = control<DataGrid>(w, QStringLiteral("DataGrid1"));
    QCOMPARE(grid->rows(), 2);
    clickRow(grid, 1);
    QCOMPARE(edit(w, "Text1")->text(), QStringLiteral("Luis"));
    QCOMPARE(edit(w, "Text6")->text(), QStringLiteral("5"));

    // Modify: a non-numeric commission is refused here too.
    QVERIFY(clickNamed(w, QStringLiteral("Command4")));
    retype(edit(w, "Text6"), QStringLiteral("x"));
    sp.clear();
    clickNamed(w, QStringLiteral("Command5"));
    QCOMPARE(sp.lastMessage(), QStringLiteral("La comision debe ser un numero"));
    retype(edit(w, "Text6"), QStringLiteral("7.5"));
    retype(edit(w, "Text2"), QStringLiteral("Flores Mejia"));
    sp.clear();
    QVERIFY(clickNamed(w, QStringLiteral("Command5")));
    QCOMPARE(sp.messages(), QStringList{QStringLiteral("El registro ha sido modificado satisfactoriamente")});
    QCOMPARE(one(QStringLiteral("SELECT porsentaje FROM Doctores WHERE Nombre_doctor = 'Luis'")).toDouble(), 7.5);
    QCOMPARE(one(QStringLiteral("SELECT Apellido_doctor FROM Doctores WHERE Nombre_doctor = 'Luis'")).toString(),
             QStringLiteral("Flores Mejia"));
    QCOMPARE(one(QStringLiteral("SELECT porsentaje FROM Doctores WHERE Nombre_doctor = 'Ana'")).toDouble(), 10.0);

    // Delete: No keeps the doctor; Yes removes him, clears, and puts "0" back.
    clickRow(grid, 0);
    sp.clear();
    sp.answers.push_back(Answer::No);
    QVERIFY(clickNamed(w, QStringLiteral("Command2")));
    QCOMPARE(sp.prompts.first().text, QStringLiteral("¿ Esta seguro que desea eliminar el registro ?"));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Doctores")), 2);
    sp.clear();
    sp.answers.push_back(Answer::Yes);
    QVERIFY(clickNamed(w, QStringLiteral("Command2")));
    QCOMPARE(sp.lastMessage(), QStringLiteral("El registro ha sido eliminado satisfactoriamente"));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Doctores WHERE Nombre_doctor = 'Ana'")), 0);
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM Doctores")), 1);
    QCOMPARE(edit(w, "Text6")->text(), QStringLiteral("0"));
    QVERIFY(edit(w, "Text1")->text().isEmpty());
    QCOMPARE(grid->rows(), 1);
    w->close();
}

QTEST_MAIN(TestRegisters)
#include "test_registers.moc"
