#include "registers/exams/Form3.h"

#include "ui_Form3.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form3)

using namespace tq;

namespace {
constexpr int kTypeWidth = 60;   // TipoExamen.tipo_examen
}

Form3::Form3(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Form3>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form3"));
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->DataGrid1, &DataGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("mostrar el tipo de examen"), [this, row] {
            m_code = toInt32(ui->DataGrid1->value(row, QStringLiteral("cod_tipo_examen")));
            m_chosen = true;
            ui->Text1->setText(ui->DataGrid1->text(row, QStringLiteral("tipo_examen")));
        });
    });
    onClick(ui->Command1, QStringLiteral("agregar el tipo de examen"), [this] { addType(); });
    // The rename has always had its own trap: whatever fails is told as the
    // failure of the rename, and the screen stays open.
    onClick(ui->Command2, QStringLiteral("modificar el tipo de examen"), [this] { renameType(); });
    guarded(QStringLiteral("cargar la lista de tipos de examen"), [this] { refresh(); });
}

Form3::~Form3() = default;

void Form3::refresh()
{
    Recordset& rs = amb1().rs(QStringLiteral("rstipoexamen"));
    if (rs.isOpen())
        rs.close();
    rs.open();
    ui->DataGrid1->bind(rs);
    if (m_chosen) {
        const int row = ui->DataGrid1->findRow(QStringLiteral("cod_tipo_examen"), m_code);
        ui->DataGrid1->setCurrentRow(row);
    }
}

bool Form3::fits(const QString& text)
{
    if (text.size() <= kTypeWidth)
        return true;
    prompts().message(QStringLiteral("El tipo de examen no puede tener más de %1 caracteres.")
                          .arg(kTypeWidth),
                      Icon::Exclamation);
    ui->Text1->setFocus();
    return false;
}

void Form3::addType()
{
    const QString text = ui->Text1->text();
    if (text.isEmpty() || !fits(text))
        return;
    amb1().insert(QStringLiteral("TipoExamen"), {QStringLiteral("tipo_examen")}, {text});
    refresh();
    ui->Text1->clear();
}

void Form3::renameType()
{
    const QString text = ui->Text1->text();
    if (!m_chosen) {
        prompts().message(QStringLiteral("Debe seleccionar un tipo de examen de la lista."),
                          Icon::Exclamation);
        return;
    }
    if (text.isEmpty() || !fits(text))
        return;
    const int changed = amb1().execute(
        QStringLiteral("UPDATE TipoExamen SET tipo_examen = ? WHERE cod_tipo_examen = ?"),
        {text, m_code});
    if (changed == 0)
        throw AppError(QStringLiteral("El tipo de examen ya no existe."));
    refresh();
    prompts().message(QStringLiteral("Se ha modificado el registro"));
}
