#include "administration/settings/RateScreen.h"

#include "ui_RateScreen.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/base/values.h"

using namespace tq;

RateScreen::RateScreen(const Config& config, QWidget* parent)
    : QWidget(parent, Qt::Window), m_config(config), ui(std::make_unique<Ui::RateScreen>())
{
    ui->setupUi(this);
    setObjectName(m_config.screen);
    setWindowTitle(m_config.title);
    setAttribute(Qt::WA_DeleteOnClose);
    ui->lblText1->setText(m_config.caption);

    onClick(ui->boton2, QStringLiteral("preparar el valor para cambiarlo"), [this] {
        lock(false);
        ui->Text1->setFocus();
        ui->Text1->selectAll();
    });
    onClick(ui->boton, QStringLiteral("guardar el valor"), [this] { save(); });
    onClick(ui->Command2, QStringLiteral("cerrar la pantalla"), [this] { close(); });

    guarded(QStringLiteral("leer el valor guardado"), [this] { load(); });
}

RateScreen::~RateScreen() = default;

void RateScreen::load()
{
    Recordset rs;
    rs.open(QStringLiteral("select * from %1").arg(m_config.table));
    if (rs.recordCount() == 0) {
        m_mode = 1;
        ui->boton2->setText(QStringLiteral("Nuevo"));
        ui->Text1->clear();
    } else {
        m_mode = 2;
        ui->boton2->setText(QStringLiteral("Modificar"));
        rs.moveFirst();
        ui->Text1->setText(rs.text(m_config.column));
    }
    lock(true);
}

void RateScreen::lock(bool locked)
{
    ui->Text1->setReadOnly(locked);
    ui->boton->setEnabled(!locked);
    ui->boton2->setEnabled(locked);
}

void RateScreen::save()
{
    const QString typed = ui->Text1->text();
    // The column is numeric; anything else is refused before it reaches the store.
    if (!isNumeric(typed)) {
        prompts().message(
            QStringLiteral("El valor debe ser numérico, por ejemplo %1").arg(m_config.example),
            Icon::Exclamation, windowTitle());
        ui->Text1->setFocus();
        return;
    }
    // Stored as typed: 0.03 stays 0.03, nothing is scaled.
    const double value = Val(typed);
    if (m_mode == 1) {
        amb1().execute(
            QStringLiteral("INSERT INTO %1 (%2) VALUES (?)").arg(m_config.table, m_config.column),
            {value});
        // The table has its row now; a second save changes it instead of adding another.
        m_mode = 2;
        ui->boton2->setText(QStringLiteral("Modificar"));
    } else {
        // The table holds one row.
        amb1().execute(
            QStringLiteral("UPDATE %1 SET %2 = ?").arg(m_config.table, m_config.column), {value});
    }
    lock(true);
}

FInpuestoTarjeta::FInpuestoTarjeta(QWidget* parent)
    : RateScreen({QStringLiteral("FInpuestoTarjeta"), QStringLiteral("% uso de Tarjeta"),
                  QStringLiteral("IST"), QStringLiteral("IST"),
                  QStringLiteral("Impuesto uso de tarjeta:"), QStringLiteral("0.03")},
                 parent)
{
}

FdescuentoTedad::FdescuentoTedad(QWidget* parent)
    : RateScreen({QStringLiteral("FdescuentoTedad"), QStringLiteral("% descuento 3ra Edad"),
                  QStringLiteral("DTE"), QStringLiteral("DTE"), QStringLiteral("% Descuento:"),
                  QStringLiteral("0.10")},
                 parent)
{
}

TQ_REGISTER_SCREEN(FInpuestoTarjeta)
TQ_REGISTER_SCREEN(FdescuentoTedad)
