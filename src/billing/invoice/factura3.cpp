#include "billing/invoice/factura3.h"

#include "ui_factura3.h"

#include "billing/invoice/composer.h"
#include "billing/invoice/invoicesave.h"
#include "billing/orders/orderpicker.h"
#include "billing/orders/ordersave.h"
#include "billing/payment/Fcobrar.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/data/numbering.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "frame/frame.h"

TQ_REGISTER_SCREEN(factura3)

using namespace tq;

namespace {

const QString kTitle = QStringLiteral("Facturación");

const DocumentKind kInvoice{PatientCaller::Invoice,
                            ExamCaller::Invoice,
                            1,
                            true,
                            true,
                            kTitle,
                            QStringLiteral("la factura"),
                            QStringLiteral("Primero debe Generar a factura"),
                            QStringLiteral("Desea Ingresar Otra factura"),
                            QStringLiteral("Ingresar Factura..."),
                            QStringLiteral("factura3")};

// Invoice screens open at once; the last to go puts the screen number back.
int g_open = 0;

}  // namespace

factura3::factura3(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::factura3>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("factura3"));
    ++g_open;
    state().screenNumber = 10;
    state().pagoPacienteAsegurado = 0;
    showPaymentKind();
    m_doc = new DocumentComposer(kInvoice, composerControls(ui.get()), this);
    // An invoice emptied for another patient no longer comes from the order.
    connect(m_doc, &DocumentComposer::cleared, this, [this] { m_orden = 0; });

    onClick(ui->importaOrden, QStringLiteral("importar la orden"), [this] { importaOrden(); });
    onClick(ui->guardarfact, QStringLiteral("guardar la factura"), [this] { guardarfact(); });
    onClick(ui->imprimir, QStringLiteral("imprimir la factura"), [this] { imprimir(); });
    connect(ui->salir, &QPushButton::clicked, this, &QWidget::close);

    if (!guarded(QStringLiteral("preparar la factura"), [this] { load(); })) {
        // Without a number or a doctor list no invoice can be composed here.
        ui->clinom->setEnabled(false);
        ui->Factura->setEnabled(false);
    }
}

factura3::~factura3()
{
    if (--g_open == 0 && state().screenNumber == 10)
        state().screenNumber = 0;
}

void factura3::load()
{
    // Last number plus one; nothing is reserved, the save checks again.
    m_numero = nextNumber(QStringLiteral("Factura"), QStringLiteral("factura"));
    showNumber();
    m_doc->load();
}

void factura3::showNumber()
{
    ui->Txt_numfact->setText(QString::number(m_numero));
    // A screen reader reads the number with its caption.
    ui->Txt_numfact->setAccessibleName(QStringLiteral("Factura No. %1").arg(m_numero));
}

void factura3::showPaymentKind()
{
    // The kind chosen beforehand only colours the caption; the amounts decide the payment.
    const QString kind = state().tipoPago;
    QString text;
    QColor colour;
    if (kind == QLatin1String("efectivo")) {
        text = QStringLiteral("Efectivo");
        colour = QColor(0, 128, 0);
    } else if (kind == QLatin1String("Credito")) {
        text = QStringLiteral("Tarjeta");
        colour = QColor(255, 0, 0);
    } else if (kind == QLatin1String("Cheque")) {
        text = QStringLiteral("Cheque");
        colour = QColor(0, 0, 255);
    }
    ui->Label7->setText(text);
    if (colour.isValid())
        ui->Label7->setStyleSheet(QStringLiteral("color: %1; font-weight: bold;").arg(colour.name()));
}

void factura3::closeEvent(QCloseEvent* event)
{
    if (state().screenNumber == 10)
        state().screenNumber = 0;
    QWidget::closeEvent(event);
}

void factura3::importaOrden()
{
    if (const std::optional<std::int32_t> n = chooseOrder())
        importar(*n);
}

void factura3::importar(std::int32_t orden)
{
    const std::optional<StoredOrder> o = readOrder(orden);
    if (!o)
        return;
    m_doc->cancelar();
    m_orden = orden;
    // The order's amounts as they were saved: nothing is priced again.
    ui->subtfact->setText(money(o->subtotal));
    ui->impfact->setText(money(0.0));
    ui->totfact->setText(money(o->total));
    // An order without a discount or surcharge brings none: its invoice
    // stores no extra of 0 under a kind it never had.
    const bool extra = !o->adicional.isEmpty();
    ui->Text1->setText(extra ? money(o->valAdicional) : QString());
    m_doc->setPatient(o->codPaciente, o->paciente, o->direccion, o->nacimiento, o->codSeguro,
                      o->empresa);
    ui->Label12->setText(o->codSeguro != 0 ? o->empresa : QStringLiteral("Precios Normales"));
    ui->Label10->setText(!extra                                      ? QStringLiteral("Extras:")
                         : o->adicional == QLatin1String("Recargo") ? QStringLiteral("Recargo:")
                                                                    : QStringLiteral("Descuento:"));
    ui->Factura->setEnabled(false);
    for (QPushButton* b : {ui->agregar, ui->eliminar, ui->guardarfact, ui->Command1})
        b->setEnabled(true);
    ui->Combo1->setCurrentIndex(o->doctor.isEmpty() ? -1 : ui->Combo1->findText(o->doctor));

    m_doc->setUpGrid(false);
    if (o->lines.isEmpty()) {
        prompts().message(QStringLiteral("no hay Ordenes creadas"), Icon::None, kTitle);
        return;
    }
    FlexGrid* g = ui->Factura;
    g->setRows(int(o->lines.size()) + 2);   // the lines and the blank row
    for (int i = 0; i < o->lines.size(); ++i) {
        const StoredOrder::Line& l = o->lines.at(i);
        g->setTextMatrix(i + 1, DocumentComposer::Cantidad, QString::number(l.cantidad));
        g->setTextMatrix(i + 1, DocumentComposer::Codigo, QString::number(l.codigo));
        g->setTextMatrix(i + 1, DocumentComposer::Descripcion, l.examen);
        g->setTextMatrix(i + 1, DocumentComposer::PrecioU, money(l.precio));
        g->setTextMatrix(i + 1, DocumentComposer::PrecioT, money(l.subtotal));
    }
    ui->guardarfact->setFocus();
}

void factura3::guardarfact()
{
    guarded(QStringLiteral("guardar la factura"), [this] { chargeOrCollect(); });
    // Whatever was decided, an order brought into this invoice is closed.
    guarded(QStringLiteral("cerrar la orden importada"), [this] { quitarorden(); });
}

void factura3::chargeOrCollect()
{
    Recordset paciente;
    paciente.open(QStringLiteral("SELECT asegurado FROM Pacientes WHERE cod_paciente = ?"),
                  {m_doc->patient()});
    if (paciente.recordCount() == 0) {
        prompts().message(QStringLiteral("El paciente de esta factura ya no está registrado. "
                                         "Elija el paciente de nuevo."),
                          Icon::Exclamation, kTitle);
        return;
    }
    if (paciente.field(QStringLiteral("asegurado")).toBool()) {
        const Answer a = prompts().message(
            QStringLiteral("el paciente es ASEGURADO\nDesea cargar la factura a la cuenta del seguro?"),
            Icon::Question, QStringLiteral("Verifique"), Buttons::YesNo);
        if (a == Answer::Yes) {
            save(Settlement::Insurer, Payment{});
            return;
        }
        // The insured patient pays this one himself.
        state().pagoPacienteAsegurado = 1;
    }
    // The payment screen takes the amounts and saves through savePaid().
    openModal(QStringLiteral("Fcobrar"), [this](QWidget* w) {
        if (auto* cobro = qobject_cast<Fcobrar*>(w))
            cobro->setTarget(this);
    });
}

QString factura3::totalText() const { return ui->totfact->text(); }

void factura3::savePaid(const Payment& payment, bool credit)
{
    save(credit ? Settlement::Credit : Settlement::Paid, payment);
}

void factura3::save(Settlement settlement, const Payment& payment)
{
    const bool insurer = settlement == Settlement::Insurer;
    if (!insurer) {
        if (m_doc->zeroTotal()) {
            prompts().message(QStringLiteral("La factura no puede ser Cero (0)"), Icon::None, kTitle);
            return;
        }
        ui->eliminar->setEnabled(false);
        ui->Command1->setEnabled(false);
        if (prompts().message(QStringLiteral("Desea Guardar la factura. "), Icon::Question,
                              QStringLiteral("Confirmar"), Buttons::YesNo)
            != Answer::Yes)
            return;
    }
    SaveOutcome out;
    QString refusal;
    const bool saved = guardedSaying(
        QStringLiteral("La factura no se guardó y no quedó escrita ninguna parte de ella; "
                       "puede intentar guardarla de nuevo."),
        [&] {
            PricedDocument doc = m_doc->document();
            doc.numero = m_numero;
            doc.orden = m_orden;
            // An insured patient who pays at the desk owes the insurer nothing.
            const bool asegurado = amb1()
                                       .scalar(QStringLiteral("SELECT asegurado FROM Pacientes "
                                                              "WHERE cod_paciente = ?"),
                                               {m_doc->patient()})
                                       .toBool();
            const bool withCxc = insurer || (asegurado && state().pagoPacienteAsegurado == 0);
            try {
                out = saveInvoice(doc, settlement, payment, withCxc,
                                  insurer ? nullptr : &cardDetails());
            } catch (const OrderAlreadyBilled& e) {
                // Another station billed the order first; nothing was written.
                refusal = e.message();
            }
        });
    if (!refusal.isEmpty())
        prompts().message(refusal, Icon::Exclamation, kTitle);
    if (!saved || !refusal.isEmpty())
        return;
    if (!insurer)
        cardDetails().entered = false;
    if (out.renumbered) {
        prompts().message(QStringLiteral("El numero de factura %1 ya fue usado en otra estacion; "
                                         "la factura se guardo con el numero %2.")
                              .arg(m_numero)
                              .arg(out.numero),
                          Icon::Information, kTitle);
        m_numero = out.numero;
        showNumber();
    }
    prompts().message(QStringLiteral("La factura se guardo Satisfactoriamente."), Icon::Information, kTitle);
    m_doc->showSaved();
    ui->importaOrden->setEnabled(false);
    pausa();
}

void factura3::quitarorden()
{
    if (m_orden != 0)
        closeOrders({m_orden}, state().currentUser);
}

void factura3::imprimir()
{
    // The laboratory's usual form comes ticked; the print box may still switch it.
    Recordset& rs = amb1().rs(QStringLiteral("rstemporal"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("SELECT ticketera FROM datos"));
    const bool ticketera = rs.recordCount() > 0 && rs.field(QStringLiteral("ticketera")).toBool();
    const std::int32_t n = m_numero;
    openModal(QStringLiteral("FImpresion"), [n, ticketera](QWidget* w) {
        const QString option = ticketera ? QStringLiteral("Option1") : QStringLiteral("Option2");
        if (auto* form = w->findChild<QAbstractButton*>(option))
            form->setChecked(true);
        // This invoice and no other: the number can't be changed or cleared.
        if (auto* number = w->findChild<QLineEdit*>(QStringLiteral("Text1"))) {
            number->setText(QString::number(n));
            number->setEnabled(false);
        }
        if (auto* cancel = w->findChild<QAbstractButton*>(QStringLiteral("Command2")))
            cancel->setEnabled(false);
    });
}
