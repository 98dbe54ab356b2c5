#include "lab/parameters/mparametros.h"

#include "ui_mparametros.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"

#include <cmath>

TQ_REGISTER_SCREEN(mparametros)

using namespace tq;

namespace {

constexpr std::int16_t kHombre = 1, kMujer = 2, kNino = 3, kUnico = 4;

}  // namespace

mparametros::mparametros(QWidget* parent)
    : RegisterScreen(parent), ui(std::make_unique<Ui::mparametros>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("mparametros"));
    setUpRegister({ui->agregar, ui->modificar, ui->eliminar, ui->guardar, ui->cancelar, ui->salir},
                  {ui->Text1, ui->Text2, ui->Text3, ui->Text5, ui->Text6, ui->Text7, ui->Text4},
                  ui->DataGrid1, QStringLiteral("el parámetro"));
    setListNoun(QStringLiteral("parámetros"));
    start();
}

mparametros::~mparametros() = default;

QString mparametros::emptyListMessage() const
{
    return QStringLiteral("No existe ningun parametro ingresado hasta el momento ");
}

void mparametros::loadGrid()
{
    Recordset& rs = amb1().rs(QStringLiteral("rsmultiusos"));
    if (rs.state() == 1)
        rs.close();
    rs.open(QStringLiteral("SELECT * FROM parametros ORDER BY parametro"));
    ui->DataGrid1->bind(rs);
}

// The code, name and unit; then each population's value without the unit
// behind it (the blank before the unit stays, as it was typed).
void mparametros::showRow(int row)
{
    const DataGrid* g = ui->DataGrid1;
    ui->Text1->setText(g->text(row, QStringLiteral("cod_parametro")));
    ui->Text2->setText(g->text(row, QStringLiteral("parametro")));
    ui->Text3->setText(g->text(row, QStringLiteral("unidad")));
    for (QLineEdit* f : {ui->Text4, ui->Text5, ui->Text6, ui->Text7})
        f->clear();
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_sexo, valor_normal FROM valparametros "
                           "WHERE cod_parametro = ?"),
            {selectedCode()});
    const qsizetype unit = ui->Text3->text().size();
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const QString stored = rs.text(QStringLiteral("valor_normal"));
        const QString range = stored.left(std::max<qsizetype>(0, stored.size() - unit));
        switch (toInt16(rs.field(QStringLiteral("cod_sexo")))) {
        case kHombre: ui->Text5->setText(range); break;
        case kMujer: ui->Text6->setText(range); break;
        case kNino: ui->Text7->setText(range); break;
        case kUnico: ui->Text4->setText(range); break;
        default: break;
        }
    }
}

void mparametros::editStarted(int mode)
{
    if (mode == AddMode)
        ui->Text1->setText(QString::number(
            proposeNextCode(QStringLiteral("parametros"), QStringLiteral("cod_parametro"))));
    ui->Text2->setFocus();
}

std::optional<Refusal> mparametros::validate(int mode)
{
    // A modify checks nothing: a name may even match another's.
    if (mode != AddMode)
        return std::nullopt;
    if (ui->Text1->text().isEmpty())
        return Refusal{QStringLiteral("Debe Ingresar el Codigo."), ui->Text1, Icon::Exclamation};
    if (ui->Text2->text().isEmpty())
        return Refusal{QStringLiteral("Debe Ingresar el Nombre."), ui->Text2, Icon::Exclamation};
    if (const auto r = codeRefusal(ui->Text1, QStringLiteral("del parámetro")))
        return r;
    // The same name, both trimmed, case counting.
    if (amb1().scalar(QStringLiteral("SELECT cod_parametro FROM parametros "
                                     "WHERE TRIM(parametro) = ? LIMIT 1"),
                      {ui->Text2->text().trimmed()})
            .isValid()) {
        ui->Text2->clear();
        return Refusal{QStringLiteral("El nombre de ese Parametro ya existe, verifique el nombre"),
                       ui->Text2, Icon::Exclamation};
    }
    return std::nullopt;
}

void mparametros::writeNormalValues(std::int32_t code)
{
    const std::pair<std::int16_t, QLineEdit*> populations[] = {
        {kHombre, ui->Text5}, {kMujer, ui->Text6}, {kNino, ui->Text7}, {kUnico, ui->Text4}};
    for (const auto& [sexo, field] : populations)
        if (!field->text().isEmpty())
            amb1().insert(QStringLiteral("valparametros"),
                          {QStringLiteral("cod_parametro"), QStringLiteral("cod_sexo"),
                           QStringLiteral("valor_normal")},
                          {code, sexo, field->text() + QLatin1Char(' ') + ui->Text3->text()});
}

QVariant mparametros::saveAdd()
{
    const std::int32_t typed = toInt32(ui->Text1->text().trimmed());
    const std::int32_t code =
        takeCode(typed, QStringLiteral("parametros"), QStringLiteral("cod_parametro"),
                 QStringLiteral("Ya existe un parámetro con el código %1.").arg(typed));
    amb1().insert(QStringLiteral("parametros"),
                  {QStringLiteral("cod_parametro"), QStringLiteral("parametro"),
                   QStringLiteral("unidad")},
                  {code, ui->Text2->text().trimmed(), ui->Text3->text().trimmed()});
    writeNormalValues(code);
    return code;
}

void mparametros::saveModify()
{
    amb1().execute(QStringLiteral("UPDATE parametros SET parametro = ?, unidad = ? "
                                  "WHERE cod_parametro = ?"),
                   {ui->Text2->text().trimmed(), ui->Text3->text().trimmed(), selectedCode()});
    amb1().execute(QStringLiteral("DELETE FROM valparametros WHERE cod_parametro = ?"),
                   {selectedCode()});
    writeNormalValues(selectedCode());
}

bool mparametros::canDelete()
{
    // A parameter in any version of any template stays.
    if (!ui->Text1->text().isEmpty()
        && amb1().scalar(QStringLiteral("SELECT cod_Parametro FROM PlantillaParametro "
                                        "WHERE cod_Parametro = ? LIMIT 1"),
                         {selectedCode()})
               .isValid()) {
        prompts().message(QStringLiteral("No puede eliminar el parametro porque tiene formato "
                                         "aplicado"),
                          Icon::Exclamation, messageTitle());
        return false;
    }
    if (ui->Text1->text().isEmpty()) {
        prompts().message(QStringLiteral("Debe seleccionar el dato a eliminar."), Icon::Exclamation,
                          messageTitle());
        return false;
    }
    return true;
}

// The parameter goes; its normal values stay behind, and a later parameter
// given the same code takes them over.
void mparametros::deleteSelected()
{
    amb1().execute(QStringLiteral("DELETE FROM parametros WHERE cod_parametro = ?"),
                   {selectedCode()});
}

void mparametros::afterDelete()
{
    reloadGrid();
    prompts().message(deletedMessage(), Icon::None, messageTitle());
    if (dataGrid()->rows() > 0)
        chooseRow(0);
    else {
        clearSelection();
        clearFields();
    }
}

QString mparametros::deleteQuestion() const
{
    return QStringLiteral("Esta seguro que desea eliminar el parametro");
}
QString mparametros::addedMessage() const
{
    return QStringLiteral("El nuevo parametro ha sido ingresado a sus datos");
}
QString mparametros::modifiedMessage() const
{
    return QStringLiteral("El parametro ha sido modificado exitosamente");
}
QString mparametros::deletedMessage() const
{
    return QStringLiteral("El Parametro a sido eliminado ha sido Eliminado");
}
