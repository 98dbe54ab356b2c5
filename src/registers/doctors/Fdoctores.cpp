#include "registers/doctors/Fdoctores.h"

#include "ui_Fdoctores.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"
#include "foundation/base/values.h"

TQ_REGISTER_SCREEN(Fdoctores)

using namespace tq;

Fdoctores::Fdoctores(QWidget* parent)
    : RegisterScreen(parent), ui(std::make_unique<Ui::Fdoctores>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Fdoctores"));
    setUpRegister({ui->Command1, ui->Command4, ui->Command2, ui->Command5, ui->Command6,
                   ui->Command3},
                  {ui->Text1, ui->Text2, ui->Text3, ui->Text4, ui->Text5, ui->Text6},
                  ui->DataGrid1, QStringLiteral("el doctor"));
    setListNoun(QStringLiteral("doctores"));
    start();
}

Fdoctores::~Fdoctores() = default;

QString Fdoctores::emptyListMessage() const
{
    return QStringLiteral("No existen Doctores ingresados");
}

void Fdoctores::loadGrid()
{
    Recordset& rs = amb1().rs(QStringLiteral("rsdoctores"));
    if (rs.state() == 1)
        rs.close();
    rs.open(QStringLiteral("SELECT * FROM Doctores"));
    ui->DataGrid1->bind(rs);
}

void Fdoctores::showRow(int row)
{
    const DataGrid* g = ui->DataGrid1;
    ui->Text1->setText(g->text(row, QStringLiteral("Nombre_doctor")));
    ui->Text2->setText(g->text(row, QStringLiteral("Apellido_doctor")));
    ui->Text3->setText(g->text(row, QStringLiteral("dir_doctor")));
    ui->Text4->setText(g->text(row, QStringLiteral("tel_doctor")));
    ui->Text5->setText(g->text(row, QStringLiteral("correo_doctor")));
    ui->Text6->setText(g->text(row, QStringLiteral("porsentaje")));
}

std::optional<Refusal> Fdoctores::validate(int mode)
{
    // The words "Empleado" are this screen's own: it was made from the employee screen.
    if (mode == AddMode) {
        if (ui->Text1->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar un Nombre de Empleado"), ui->Text1};
        if (ui->Text2->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar un Apellido de Empleado"), ui->Text2};
        if (ui->Text6->text().isEmpty())
            return Refusal{QStringLiteral("Debe especificar el porsentaje de comosion"), ui->Text6};
    }
    // The commission is a number; 0 is a valid one.
    if (!isNumeric(ui->Text6->text()))
        return Refusal{QStringLiteral("La comisión debe ser un número"), ui->Text6};
    return std::nullopt;
}

QVariant Fdoctores::saveAdd()
{
    // The address goes in even when empty; telephone and e-mail only when typed.
    const QVariant key = amb1().insert(
        QStringLiteral("Doctores"),
        {QStringLiteral("Nombre_doctor"), QStringLiteral("Apellido_doctor"),
         QStringLiteral("dir_doctor"), QStringLiteral("tel_doctor"), QStringLiteral("correo_doctor"),
         QStringLiteral("porsentaje")},
        {ui->Text1->text(), ui->Text2->text(), ui->Text3->text(), nullIfEmpty(ui->Text4->text()),
         nullIfEmpty(ui->Text5->text()), Val(ui->Text6->text())});
    if (!key.isValid() || key.isNull())
        return {};   // the list is reloaded without a row chosen
    return toInt32(key);
}

void Fdoctores::saveModify()
{
    amb1().execute(
        QStringLiteral("UPDATE Doctores SET Nombre_doctor = ?, Apellido_doctor = ?, "
                       "dir_doctor = ?, tel_doctor = ?, correo_doctor = ?, porsentaje = ? "
                       "WHERE Cod_doctor = ?"),
        {ui->Text1->text(), ui->Text2->text(), ui->Text3->text(), nullIfEmpty(ui->Text4->text()),
         nullIfEmpty(ui->Text5->text()), Val(ui->Text6->text()), selectedCode()});
}

void Fdoctores::deleteSelected()
{
    // Invoices that named this doctor keep their code; nothing stops the delete.
    amb1().execute(QStringLiteral("DELETE FROM Doctores WHERE Cod_doctor = ?"),
                   {selectedCode()});
}

void Fdoctores::afterDelete()
{
    reloadGrid();
    clearSelection();
    clearFields();
    ui->Text6->setText(QStringLiteral("0"));
    prompts().message(deletedMessage(), Icon::None, messageTitle());
}
