#include "frame/semaforo.h"
#include "frame/frame.h"

#include "ui_semaforo.h"

#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/pictures.h"

#include <QTimer>

semaforo::semaforo(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::semaforo>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("semaforo"));
    setAttribute(Qt::WA_DeleteOnClose);
    ui->Image1->setPixmap(tq::pictures::light(48));

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(200);
    connect(m_timer, &QTimer::timeout, this, &semaforo::tick);
    m_timer->start();
}

semaforo::~semaforo() = default;

// One step every 200 ms: the lamp goes off, comes back, and the pause ends.
void semaforo::tick()
{
    const int v = ui->ProgressBar1->value() + 1;
    ui->ProgressBar1->setValue(v);
    if (v == 1) {
        ui->Image1->setVisible(false);
    } else if (v == 2) {
        ui->Image1->setVisible(true);
    } else if (v >= 3) {
        m_timer->stop();
        close();
    }
}

namespace tq {

void pausa()
{
    prompts().showModal(new semaforo());
}

}  // namespace tq

TQ_REGISTER_SCREEN(semaforo)
