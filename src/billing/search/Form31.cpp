#include "billing/search/Form31.h"

#include "ui_Form31.h"

#include "foundation/base/apperror.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "frame/frame.h"
#include "foundation/ui/pictures.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QCloseEvent>
#include <QDate>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

TQ_REGISTER_SCREEN(Form31)

using namespace tq;

namespace {

// The longest reason the invoice row keeps.
constexpr int kMaxMotivo = 255;

// The void button's picture: the invoice crossed out in red.
QPixmap crossedInvoice(int size)
{
    QPixmap pic = pictures::invoice(size);
    QPainter p(&pic);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(200, 0, 0), size / 10.0, Qt::SolidLine, Qt::RoundCap));
    const int m = size / 6;
    p.drawLine(m, m, size - m, size - m);
    p.drawLine(size - m, m, m, size - m);
    return pic;
}

QString filterFor(std::int32_t numero) { return QStringLiteral("factura=") + QString::number(numero); }

}  // namespace

Form31::Form31(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form31>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form31"));
    setAttribute(Qt::WA_DeleteOnClose);
    ui->Command1->setIcon(QIcon(crossedInvoice(56)));
    // Nothing to void until an invoice is given.
    ui->Command1->setEnabled(false);
    onClick(ui->Command1, QStringLiteral("anular la factura"), [this] { anular(); });
    connect(ui->Command2, &QPushButton::clicked, this, &QWidget::close);
}

Form31::~Form31() = default;

Form31* Form31::showInvoice(std::int32_t numero, bool anulada, bool canVoid)
{
    auto* box = new Form31(mainWindow());
    box->m_factura = numero;
    box->ui->Command1->setEnabled(canVoid && numero != 0);
    const QWidget* main = mainWindow();
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QPoint corner = main ? main->geometry().topLeft()
                               : (screen ? screen->availableGeometry().topLeft() : QPoint());
    box->move(corner);
    box->show();
    box->showCopy(anulada);
    return box;
}

QWidget* Form31::reportWindow() const { return m_voided ? m_voided.data() : m_copy.data(); }

void Form31::showCopy(bool anulada)
{
    // The new copy takes the place of the one on screen.
    QPoint at = frameGeometry().topRight() + QPoint(1, 0);
    for (QPointer<QWidget>* w : {&m_copy, &m_voided}) {
        if (*w) {
            at = (*w)->pos();
            (*w)->close();
        }
    }
    ReportRun run;
    run.report = anulada ? QStringLiteral("DataReport15") : QStringLiteral("DataReport13");
    run.heading = anulada ? 15 : 13;
    run.command = QStringLiteral("rsrfact1");
    run.filter = filterFor(m_factura);
    run.show = ReportRun::Show::Modeless;
    QWidget* shown = runReport(run, this);
    if (shown)
        shown->move(at);
    (anulada ? m_voided : m_copy) = shown;
}

void Form31::anular()
{
    if (prompts().message(QStringLiteral("Esta seguro que desea anular la factura"),
                          Icon::Question, QString::fromLatin1(kAppTitle), Buttons::YesNo)
        != Answer::Yes)
        return;
    // A cancelled box voids all the same, with an empty reason.
    const QString motivo = prompts()
                               .input(QStringLiteral("Ingrese el motivo de anulacion de la factura"),
                                      QStringLiteral("Anulacion de factura"))
                               .value_or(QString());
    if (motivo.size() > kMaxMotivo) {
        prompts().message(QStringLiteral("El motivo de anulación tiene %1 caracteres y caben %2; "
                                         "la factura no se anuló. Escriba un motivo más corto.")
                              .arg(motivo.size())
                              .arg(kMaxMotivo),
                          Icon::Exclamation);
        return;
    }
    const bool done = guardedSaying(
        QStringLiteral("La factura %1 no se anuló: no quedó escrito ningún cambio en ella ni en la "
                       "mesa de trabajo. Puede intentarlo de nuevo.")
            .arg(m_factura),
        [&] { voidInvoice(motivo); });
    if (done)
        showCopy(true);
}

void Form31::voidInvoice(const QString& motivo)
{
    Transaction t;
    const int marked = amb1().execute(
        QStringLiteral("UPDATE Factura SET anulada = ?, motivo_anulacion = ?, fecha_anulacion = ? "
                       "WHERE factura = ?"),
        {true, motivo, QDate::currentDate(), m_factura});
    if (marked == 0)
        throw AppError(QStringLiteral("La factura %1 ya no existe.").arg(m_factura));
    // Only the first waiting exam of the invoice leaves the work table; the
    // others stay on it.
    amb1().execute(QStringLiteral("DELETE FROM EvaluadoTemporal WHERE correlativo = "
                                  "(SELECT MIN(correlativo) FROM EvaluadoTemporal WHERE factura = ?)"),
                   {m_factura});
    t.commit();
}

void Form31::closeEvent(QCloseEvent* event)
{
    for (const QPointer<QWidget>& w : {m_copy, m_voided})
        if (w)
            w->close();
    QWidget::closeEvent(event);
}
