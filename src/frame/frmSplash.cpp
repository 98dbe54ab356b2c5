#include "frame/frmSplash.h"

#include "ui_frmSplash.h"

#include "foundation/data/datafolder.h"
#include "foundation/ui/registry.h"
#include "frame/accesos.h"
#include "foundation/ui/pictures.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPixmap>
#include <QTimer>

frmSplash::frmSplash(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::frmSplash>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("frmSplash"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlags(Qt::SplashScreen | Qt::FramelessWindowHint);
    setFocusPolicy(Qt::StrongFocus);

    ui->lblProductName->setText(
        QStringLiteral("Tarvenquil 4.0 - Sistema de Gestion de Laboratorios Clinicos"));
    ui->lblVersion->setText(QStringLiteral("Version %1.%2.%3")
                                .arg(TARVENQUIL_VERSION_MAJOR)
                                .arg(TARVENQUIL_VERSION_MINOR)
                                .arg(TARVENQUIL_VERSION_PATCH));

    // The laboratory's own logo when it has one, else the program's flask.
    QPixmap logo;
    if (!tq::dataFolder().isEmpty() && QFileInfo::exists(tq::logoPath()))
        logo.load(tq::logoPath());
    if (logo.isNull())
        logo = tq::pictures::flask(128);
    ui->imgLogo->setPixmap(logo.scaled(128, 128, Qt::KeepAspectRatio, Qt::SmoothTransformation));

    ui->Frame1->installEventFilter(this);

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(2000);
    connect(m_timer, &QTimer::timeout, this, &frmSplash::timeUp);
    m_timer->start();
}

frmSplash::~frmSplash() = default;

void frmSplash::timeUp()
{
    m_timer->stop();
    m_toSignOn = true;
    tq::showSignOn();   // before the splash goes, so the program never runs out of windows
    close();
}

// A key or a click on the frame unloads the splash without the sign-on:
// with nothing left open, the program ends.
void frmSplash::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    close();
}

bool frmSplash::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->Frame1 && event->type() == QEvent::MouseButtonRelease) {
        close();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void frmSplash::closeEvent(QCloseEvent* event)
{
    m_timer->stop();
    QWidget::closeEvent(event);
    if (!m_toSignOn)
        tq::endProgram();
}

TQ_REGISTER_SCREEN(frmSplash)
