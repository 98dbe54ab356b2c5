#include "administration/users/Form1.h"

#include "ui_Form1.h"

#include "foundation/base/passwords.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"
#include "foundation/base/values.h"

TQ_REGISTER_SCREEN(Form1)

using namespace tq;

namespace {

// Every new employee gets rights to modules 1 to 3; only module 1 (entry to
// the system) is ever read, at sign-on.
constexpr int kFirstModule = 1;
constexpr int kLastModule = 3;

// The grid shows the table's columns 0..8; the password is never read into it.
const QStringList kNeverShown{QStringLiteral("Password")};

QVariant hiringDate(const QString& t)
{
    return t.isEmpty() ? QVariant() : QVariant(parseDate(t));
}

}  // namespace

Form1::Form1(QWidget* parent) : RegisterScreen(parent), ui(std::make_unique<Ui::Form1>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form1"));
    makeListOnly(ui->Combo1);
    ui->DataGrid1->setExcludedColumns(kNeverShown);

    setUpRegister({ui->Command1, ui->Command4, ui->Command2, ui->Command5, ui->Command6,
                   ui->Command3},
                  {ui->Text1, ui->Text2, ui->Text3, ui->Text4, ui->Text5, ui->Text6, ui->Combo1,
                   ui->Text7},
                  ui->DataGrid1, QStringLiteral("el empleado"));
    setListNoun(QStringLiteral("empleados"));
    start();
}

Form1::~Form1() = default;

void Form1::loadGrid()
{
    Recordset& rs = amb1().rs(QStringLiteral("rsempleado"));
    if (rs.state() == 1)
        rs.close();
    rs.open(QStringLiteral("SELECT * FROM Empleados"));
    ui->DataGrid1->bind(rs);
    // Only the table's first nine columns belong on this screen.
    QStringList extra;
    const QStringList cols = ui->DataGrid1->columnNames();
    for (int c = 9; c < cols.size(); ++c)
        extra << cols[c];
    ui->DataGrid1->setHiddenColumns(extra);
}

void Form1::showRow(int row)
{
    const DataGrid* g = ui->DataGrid1;
    ui->Text1->setText(g->text(row, QStringLiteral("nombre_empleado")));
    ui->Text2->setText(g->text(row, QStringLiteral("apellido_empleado")));
    ui->Text3->setText(g->text(row, QStringLiteral("direccion_empleado")));
    ui->Text4->setText(g->text(row, QStringLiteral("tel_empleado")));
    ui->Text5->setText(g->text(row, QStringLiteral("cel_empleado")));
    ui->Text6->setText(g->text(row, QStringLiteral("fecha_nacimiento")));
    const QVariant rol = g->value(row, QStringLiteral("rol"));
    const QString rolText = RecordsetModel::displayText(rol);
    ui->Combo1->setCurrentIndex(-1);
    ui->Combo1->setEditText(rolText
                            + (rolText == QLatin1String("1") ? QStringLiteral("_Administrador")
                                                              : QStringLiteral("_Usuario Limitado")));
    ui->Text7->setText(g->text(row, QStringLiteral("usuario")));
}

std::optional<Refusal> Form1::validate(int mode)
{
    if (mode == AddMode) {
        if (ui->Text1->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar un Nombre de Empleado"), ui->Text1};
        if (ui->Text2->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar un Apellido de Empleado"), ui->Text2};
        if (ui->Text3->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar una direccion para el empleado"),
                           ui->Text3};
        if (ui->Text6->text().isEmpty())
            return Refusal{
                QStringLiteral("Debe especificar una fecha de ingreso para el empleado"), ui->Text6};
        if (ui->Text7->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar un usuario para el empleado"),
                           ui->Text7};
        if (ui->Combo1->currentText().isEmpty())
            return Refusal{
                QStringLiteral("Debe especificar el tipo de usuario para el empleado"), ui->Combo1};

        // A new sign-on name is held against the stored passwords, as the
        // laboratory always did: it holds while users keep their first password.
        // Each stored hash is checked with the name as the typed password.
        Recordset rs;
        rs.open(QStringLiteral("select password from Empleados"));
        QStringList stored;
        for (rs.moveFirst(); !rs.eof(); rs.moveNext())
            stored << rs.text(QStringLiteral("password"));
        if (verifyAnyPassword(stored, ui->Text7->text()))
            return Refusal{
                QStringLiteral("Debe seleccionar un nuevo usuario, el presente usuario ya existe"),
                ui->Text7, Icon::None};
    }
    // The hiring date must be a date before anything is written (a modify may
    // leave it empty).
    if (!ui->Text6->text().isEmpty() && !parseDate(ui->Text6->text()).isValid())
        return Refusal{QStringLiteral("La fecha de ingreso no es válida. Escríbala como "
                                      "DD/MM/AAAA, por ejemplo 15/03/2024"),
                       ui->Text6};
    return std::nullopt;
}

QVariant Form1::saveAdd()
{
    // Telephone and mobile are written only when typed; a new user's first
    // password is the sign-on name.
    const QVariant key = amb1().insert(
        QStringLiteral("Empleados"),
        {QStringLiteral("nombre_empleado"), QStringLiteral("apellido_empleado"),
         QStringLiteral("direccion_empleado"), QStringLiteral("tel_empleado"),
         QStringLiteral("cel_empleado"), QStringLiteral("fecha_nacimiento"), QStringLiteral("rol"),
         QStringLiteral("usuario"), QStringLiteral("Password")},
        {ui->Text1->text(), ui->Text2->text(), ui->Text3->text(), nullIfEmpty(ui->Text4->text()),
         nullIfEmpty(ui->Text5->text()), hiringDate(ui->Text6->text()),
         int(toInt16(Val(ui->Combo1->currentText()))), ui->Text7->text(),
         hashPassword(ui->Text7->text())});
    if (!key.isValid() || key.isNull())
        throw AppError(QStringLiteral("No se obtuvo el codigo del nuevo empleado."));
    const std::int32_t code = toInt32(key);

    for (int module = kFirstModule; module <= kLastModule; ++module)
        amb1().execute(
            QStringLiteral("INSERT INTO usuariosmodulos (cod_modulo, cod_empleado) VALUES (?, ?)"),
            {module, code});
    return code;
}

void Form1::saveModify()
{
    // The sign-on name and the password are not touched here, though Text7 is open.
    amb1().execute(
        QStringLiteral("UPDATE Empleados SET nombre_empleado = ?, apellido_empleado = ?, "
                       "direccion_empleado = ?, tel_empleado = ?, cel_empleado = ?, "
                       "fecha_nacimiento = ?, rol = ? WHERE cod_empleado = ?"),
        {ui->Text1->text(), ui->Text2->text(), ui->Text3->text(), nullIfEmpty(ui->Text4->text()),
         nullIfEmpty(ui->Text5->text()), hiringDate(ui->Text6->text()),
         int(toInt16(Val(ui->Combo1->currentText()))), selectedCode()});
}

void Form1::deleteSelected()
{
    // Its usuariosmodulos rows stay behind, as they always have.
    amb1().execute(QStringLiteral("DELETE FROM Empleados WHERE cod_empleado = ?"),
                   {selectedCode()});
}
