#include "maintenance/frmBackup.h"

#include "ui_frmBackup.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/base/values.h"

#include <QDate>
#include <QDateTime>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QTimer>

using namespace tq;

namespace {

// The suffix of the store's own file, which every copy carries.
QString storeSuffix()
{
    const QString suffix = QFileInfo(amb1().storeFile()).suffix();
    return suffix.isEmpty() ? QStringLiteral("db") : suffix;
}

}  // namespace

frmBackup::frmBackup(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::frmBackup>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("frmBackup"));
    setAttribute(Qt::WA_DeleteOnClose);

    ui->ProgressBar1->setRange(0, 10);
    ui->ProgressBar1->setValue(0);

    // The bar only paces the end of the backup; its speed means nothing.
    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(100);
    connect(m_timer, &QTimer::timeout, this, &frmBackup::tick);

    onClick(ui->Command1, QStringLiteral("respaldar la base de datos"), [this] { startBackup(); });

    guarded(QStringLiteral("leer los respaldos realizados"), [this] { showLastBackup(); });
}

frmBackup::~frmBackup() = default;

void frmBackup::showLastBackup()
{
    Recordset& rs = amb1().rs(QStringLiteral("rsDetallefact"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("Select * from respaldos order by id"));
    if (rs.recordCount() == 0) {
        ui->Label4->setText(QStringLiteral("Cero(0)Respaldos realizados"));
        return;
    }
    rs.moveLast();
    ui->Label4->setText(dateLong(storedDate(rs.field(QStringLiteral("fecha_res")))));
}

void frmBackup::startBackup()
{
    if (m_flag == 1)
        return;   // one backup at a time
    m_flag = 1;
    ui->ProgressBar1->setValue(0);

    const QDate today = QDate::currentDate();
    const QString proposed = QStringLiteral("Backup_") + today.toString(QStringLiteral("dd")) + '_'
                             + today.toString(QStringLiteral("MM")) + '_'
                             + today.toString(QStringLiteral("yyyy"));
    const QString suffix = storeSuffix();
    const QString chosen = prompts().saveFile(
        QStringLiteral("Guardar copia de respaldo"), QDir(dataFolder()).filePath(proposed),
        QStringLiteral("Copias de respaldo (*.%1);;Todos los archivos (*)").arg(suffix));
    if (chosen.isEmpty()) {
        // Dialog cancelled: nothing is copied and nothing is recorded.
        m_flag = 0;
        ui->ProgressBar1->setValue(0);
        return;
    }

    // The store's suffix is always added, even to a name that already has it.
    m_target = chosen + '.' + suffix;
    m_result = backupStore(m_target);
    if (!m_result.ok)
        logLine(QStringLiteral("Respaldo fallido en %1: %2 | %3")
                    .arg(m_target, m_result.error, m_result.detail));
    m_timer->start();
}

void frmBackup::tick()
{
    if (m_flag != 1)
        return;
    if (ui->ProgressBar1->value() < 10)
        ui->ProgressBar1->setValue(ui->ProgressBar1->value() + 1);
    if (ui->ProgressBar1->value() < 10)
        return;
    m_timer->stop();
    m_flag = 0;
    finish();
}

void frmBackup::finish(bool closeAfter)
{
    prompts().message(QStringLiteral("Su base de Datos se respaldo exitosamente"));
    // The row records that a backup was asked for; when the copy itself
    // failed the user must hear it, or the laboratory believes it has a
    // backup it lacks.
    if (!m_result.ok)
        prompts().message(QStringLiteral("ATENCION: la copia de respaldo NO se pudo crear en %1: %2. "
                                         "Vuelva a intentarlo en otra carpeta.")
                              .arg(QDir::toNativeSeparators(m_target), m_result.error),
                          Icon::Critical);

    guarded(QStringLiteral("registrar el respaldo"), [this] {
        const QDate today = QDate::currentDate();
        amb1().execute(QStringLiteral("INSERT INTO respaldos (fecha_res, usuario) VALUES (?, ?)"),
                       {today, state().currentUser});
        ui->Label4->setText(dateLong(today));
        Recordset& rs = amb1().rs(QStringLiteral("rsDetallefact"));
        if (rs.isOpen())
            rs.close();
    });
    if (closeAfter)
        close();
}

void frmBackup::closeEvent(QCloseEvent* event)
{
    // The copy is already made when the bar starts: closing the screen before
    // the bar ends still tells the user and records the backup.
    if (m_flag == 1 && m_timer->isActive()) {
        m_timer->stop();
        m_flag = 0;
        finish(false);
    }
    QWidget::closeEvent(event);
}

TQ_REGISTER_SCREEN(frmBackup)
