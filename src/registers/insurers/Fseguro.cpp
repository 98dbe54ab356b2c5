#include "registers/insurers/Fseguro.h"

#include "ui_Fseguro.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"

#include <cmath>

TQ_REGISTER_SCREEN(Fseguro)

using namespace tq;

namespace {

// What each field holds at most, as the store keeps it, and how the
// refusal names it.
struct Width {
    QLineEdit* field;
    int chars;
    const char* what;
};

}  // namespace

Fseguro::Fseguro(QWidget* parent) : RegisterScreen(parent), ui(std::make_unique<Ui::Fseguro>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Fseguro"));
    setUpRegister({ui->agregar, ui->modificar, ui->eliminar, ui->guardar, ui->cancelar, ui->salir},
                  {ui->Text1, ui->Text2, ui->Text3, ui->Text4, ui->Text5, ui->Text6},
                  ui->DataGrid1, QStringLiteral("el seguro"));
    setListNoun(QStringLiteral("seguros"));
    start();
}

Fseguro::~Fseguro() = default;

QString Fseguro::emptyListMessage() const
{
    return QStringLiteral("No existe ningun seguro ingresado hasta el momento ");
}

void Fseguro::loadGrid()
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT * FROM seguros ORDER BY Cod_Seguro"));
    ui->DataGrid1->bind(rs);
}

void Fseguro::showRow(int row)
{
    const DataGrid* g = ui->DataGrid1;
    ui->Text1->setText(g->text(row, QStringLiteral("Cod_Seguro")));
    ui->Text2->setText(g->text(row, QStringLiteral("Empresa")));
    ui->Text3->setText(g->text(row, QStringLiteral("Contacto")));
    ui->Text4->setText(g->text(row, QStringLiteral("Tel")));
    ui->Text5->setText(g->text(row, QStringLiteral("Banco")));
    ui->Text6->setText(g->text(row, QStringLiteral("Cuenta")));
}

void Fseguro::editStarted(int mode)
{
    if (mode == AddMode) {
        // The next code is proposed; the user may type another.
        ui->Text1->setText(QString::number(
            proposeNextCode(QStringLiteral("seguros"), QStringLiteral("Cod_Seguro"))));
        ui->Text1->setEnabled(true);
    } else {
        // A modify writes every field but the code.
        ui->Text1->setEnabled(false);
        ui->Text2->setFocus();
    }
}

bool Fseguro::canModify()
{
    if (selectedCode() == 0) {
        prompts().message(
            QStringLiteral("el Seguro con codigo 0 Sin seguro no puede ser Modificado"),
            Icon::Exclamation, messageTitle());
        return false;
    }
    return true;
}

std::optional<Refusal> Fseguro::validate(int mode)
{
    if (mode == AddMode) {
        if (ui->Text1->text().isEmpty())
            return Refusal{QStringLiteral("Debe Ingresar el Codigo."), ui->Text1, Icon::Exclamation};
        if (ui->Text2->text().isEmpty())
            return Refusal{QStringLiteral("Debe Ingresar la Empresa."), ui->Text2, Icon::Exclamation};
        if (const auto r = codeRefusal(ui->Text1, QStringLiteral("del seguro")))
            return r;
    }
    const Width widths[] = {{ui->Text2, 100, "El nombre de la empresa"},
                            {ui->Text3, 60, "El contacto"},
                            {ui->Text4, 30, "El teléfono"},
                            {ui->Text5, 60, "El banco"},
                            {ui->Text6, 40, "La cuenta"}};
    for (const Width& w : widths)
        if (w.field->text().size() > w.chars)
            return Refusal{QStringLiteral("%1 no puede tener más de %2 caracteres.")
                               .arg(QString::fromUtf8(w.what))
                               .arg(w.chars),
                           w.field, Icon::Exclamation};
    if (mode == AddMode) {
        if (amb1().scalar(QStringLiteral("SELECT Cod_Seguro FROM seguros WHERE Empresa = ? LIMIT 1"),
                          {ui->Text2->text()})
                .isValid())
            return Refusal{QStringLiteral("El nombre de esa Empresa ya existe, verifique el nombre"),
                           ui->Text2, Icon::Exclamation};
        // The code is the table's key: a code typed that is already given is
        // told here, not left to the store to refuse. The proposed one, taken
        // meanwhile at another station, moves on at the save.
        const std::int32_t code = toInt32(ui->Text1->text().trimmed());
        if (!isProposedCode(code) && amb1().scalar(QStringLiteral("SELECT Cod_Seguro FROM seguros WHERE Cod_Seguro = ?"),
                          {code})
                .isValid())
            return Refusal{QStringLiteral("Ya existe un seguro con el código %1.").arg(code),
                           ui->Text1, Icon::Exclamation};
    }
    return std::nullopt;
}

QVariant Fseguro::saveAdd()
{
    const std::int32_t typed = toInt32(ui->Text1->text().trimmed());
    const std::int32_t code =
        takeCode(typed, QStringLiteral("seguros"), QStringLiteral("Cod_Seguro"),
                 QStringLiteral("Ya existe un seguro con el código %1.").arg(typed));
    amb1().insert(QStringLiteral("seguros"),
                  {QStringLiteral("Cod_Seguro"), QStringLiteral("Empresa"),
                   QStringLiteral("Contacto"), QStringLiteral("Tel"), QStringLiteral("Banco"),
                   QStringLiteral("Cuenta")},
                  {code, ui->Text2->text(), ui->Text3->text(), ui->Text4->text(),
                   ui->Text5->text(), ui->Text6->text()});
    return code;
}

void Fseguro::saveModify()
{
    amb1().execute(QStringLiteral("UPDATE seguros SET Empresa = ?, Contacto = ?, Tel = ?, "
                                  "Banco = ?, Cuenta = ? WHERE Cod_Seguro = ?"),
                   {ui->Text2->text(), ui->Text3->text(), ui->Text4->text(), ui->Text5->text(),
                    ui->Text6->text(), selectedCode()});
}

bool Fseguro::canDelete()
{
    if (selectedCode() == 0) {
        prompts().message(
            QStringLiteral("el Seguro con codigo 0 Sin seguro no puede ser eliminado"),
            Icon::Exclamation, messageTitle());
        return false;
    }
    if (ui->Text1->text().isEmpty()) {
        prompts().message(QStringLiteral("Debe seleccionar el dato a eliminar."),
                          Icon::Exclamation, messageTitle());
        return false;
    }
    if (amb1().scalar(QStringLiteral("SELECT cod_paciente FROM Pacientes WHERE Cod_seguro = ? LIMIT 1"),
                      {selectedCode()})
            .isValid()) {
        prompts().message(
            QStringLiteral("No puede eliminar el seguro porque tiene pacientes relacionados"),
            Icon::Exclamation, messageTitle());
        return false;
    }
    return true;
}

void Fseguro::deleteSelected()
{
    // Its price list stays: the rows of RelSeguroPrecios are not touched.
    amb1().execute(QStringLiteral("DELETE FROM seguros WHERE Cod_Seguro = ?"), {selectedCode()});
}

QString Fseguro::deleteQuestion() const
{
    return QStringLiteral("Esta seguro de querer eliminar el seguro");
}
QString Fseguro::addedMessage() const
{
    return QStringLiteral("El nuevo seguro ha sido ingresado a sus datos");
}
QString Fseguro::modifiedMessage() const
{
    return QStringLiteral("El seguro ha sido modificado exitosamente");
}
QString Fseguro::deletedMessage() const { return QStringLiteral("El seguro se elimino extosamente"); }
