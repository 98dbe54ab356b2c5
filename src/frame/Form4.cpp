#include "frame/Form4.h"

#include "ui_Form4.h"

#include "foundation/base/appstate.h"
#include "foundation/reports/report.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/pictures.h"
#include "foundation/base/values.h"

#include <QMouseEvent>
#include <QTime>
#include <QTimer>

Form4::Form4(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Form4>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form4"));
    setAttribute(Qt::WA_DeleteOnClose);

    // The working date is fixed when the panel opens; the day's cut filters on it.
    const QString today = tq::dateLong(QDate::currentDate());
    ui->Label4->setText(today);
    tq::state().workingDate = today;
    ui->Label2->setText(tq::state().currentUser);

    const int side = ui->Image1->iconSize().width();
    ui->Image1->setIcon(tq::pictures::patients(side));
    ui->Image2->setIcon(tq::pictures::exams(side));
    ui->Image3->setIcon(tq::pictures::employees(side));
    ui->Image4->setIcon(tq::pictures::invoice(side));
    ui->Image5->setIcon(tq::pictures::results(side));
    ui->Command1->setIcon(tq::pictures::exitDoor(ui->Command1->iconSize().width()));

    wire(ui->Image1, ui->Label6, &Form4::pacientes);
    wire(ui->Image2, ui->Label7, &Form4::examenes);
    wire(ui->Image3, ui->Label8, &Form4::empleados);
    wire(ui->Image4, ui->Label9, &Form4::facturacion);
    wire(ui->Image5, ui->Label10, &Form4::resultados);

    // The day's cut and the exam list, straight from the panel: without the
    // laboratory's heading, as the panel always ran them.
    tq::onClick(ui->Command2, QStringLiteral("mostrar el corte diario"), [this] {
        tq::ReportRun run;
        run.report = QStringLiteral("DataReport2");
        run.command = QStringLiteral("rsrcorte_Grouping");
        run.filter = QStringLiteral("anulada =0 and fecha =") + ui->Label4->text();
        tq::runReport(run, window());
    });
    tq::onClick(ui->Command3, QStringLiteral("mostrar la lista de exámenes"), [this] {
        tq::ReportRun run;
        run.report = QStringLiteral("DataReport3");
        run.command = QStringLiteral("rsrexamenes");
        tq::runReport(run, window());
    });

    connect(ui->Command1, &QToolButton::clicked, this, [this] {
        if (tq::prompts().message(QStringLiteral("Esta Seguro que Desea Salir del Sistema"),
                                  tq::Icon::Question, QString::fromLatin1(tq::kAppTitle),
                                  tq::Buttons::YesNo)
            == tq::Answer::Yes)
            emit salirSistema();
    });

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(1000);
    connect(m_timer, &QTimer::timeout, this, &Form4::showTime);
    m_timer->start();
    showTime();
}

Form4::~Form4() = default;

void Form4::wire(QToolButton* picture, QLabel* caption, void (Form4::*signal)())
{
    connect(picture, &QToolButton::clicked, this, signal);
    caption->installEventFilter(this);
    m_captionOf.insert(caption, picture);
}

// A click on a caption does what its picture does.
bool Form4::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        QToolButton* picture = m_captionOf.value(watched);
        auto* caption = qobject_cast<QLabel*>(watched);
        if (picture && caption && picture->isEnabled() && caption->isVisible()) {
            picture->click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void Form4::showTime()
{
    ui->Label5->setText(QTime::currentTime().toString(QStringLiteral("hh:mm:ss")));
}

void Form4::applyLimitedRole()
{
    ui->Image2->setEnabled(false);
    ui->Image3->setEnabled(false);
    ui->Label7->setVisible(false);
    ui->Label8->setVisible(false);
}
