#include "billing/orders/FOrden.h"

#include "ui_FOrden.h"

#include "billing/invoice/composer.h"
#include "billing/orders/orderreport.h"
#include "billing/orders/ordersave.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(FOrden)

using namespace tq;

namespace {

const QString kTitle = QStringLiteral("Ordenes/Cotizaciones");

const DocumentKind kOrder{PatientCaller::Order,
                          ExamCaller::Order,
                          2,
                          false,
                          false,
                          kTitle,
                          QStringLiteral("la orden"),
                          QStringLiteral("Primero debe Generar la Orden"),
                          QStringLiteral("Desea Ingresar Otra Orden"),
                          QStringLiteral("Ingresar Orden..."),
                          QStringLiteral("FOrden")};

}  // namespace

FOrden::FOrden(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FOrden>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FOrden"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    m_doc = new DocumentComposer(kOrder, composerControls(ui.get()), this);
    onClick(ui->guardarfact, QStringLiteral("guardar la orden"), [this] { guardarfact(); });
    onClick(ui->imprimir, QStringLiteral("imprimir la orden"), [this] { imprimir(); });
    connect(ui->salir, &QPushButton::clicked, this, &QWidget::close);
    // The number is taken at the save, not before.
    showNumber();
    if (!guarded(QStringLiteral("preparar la orden"), [this] { m_doc->load(); })) {
        ui->clinom->setEnabled(false);
        ui->Factura->setEnabled(false);
    }
}

FOrden::~FOrden() = default;

void FOrden::showNumber()
{
    ui->Txt_numfact->setText(m_numero ? QString::number(m_numero) : QString());
    ui->Txt_numfact->setAccessibleName(m_numero ? QStringLiteral("Orden No. %1").arg(m_numero)
                                                : QStringLiteral("Orden No."));
}

void FOrden::guardarfact()
{
    // An order is saved as it stands: no question, no payment, no insurer.
    if (m_doc->zeroTotal()) {
        prompts().message(QStringLiteral("La factura no puede ser Cero (0)"), Icon::None, kTitle);
        return;
    }
    ui->eliminar->setEnabled(false);
    ui->Command1->setEnabled(false);
    SaveOutcome out;
    std::int32_t proposed = 0;
    const bool saved = guardedSaying(
        QStringLiteral("La orden no se guardó y no quedó escrita ninguna parte de ella; "
                       "puede intentar guardarla de nuevo."),
        [&] {
            PricedDocument doc = m_doc->document();
            proposed = nextOrderNumber();
            doc.numero = proposed;
            out = saveOrder(doc);
        });
    if (!saved)
        return;
    m_numero = out.numero;
    showNumber();
    if (out.renumbered)
        prompts().message(QStringLiteral("El numero de orden %1 ya fue usado en otra estacion; "
                                         "la orden se guardo con el numero %2.")
                              .arg(proposed)
                              .arg(out.numero),
                          Icon::Information, kTitle);
    prompts().message(QStringLiteral("La Orden se guardo Satisfactoriamente."), Icon::Information, kTitle);
    m_doc->showSaved();
}

void FOrden::imprimir()
{
    // The quotation just saved, straight to its report.
    showOrderReport(m_numero, this);
}
