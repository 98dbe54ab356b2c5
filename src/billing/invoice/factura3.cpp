#include "billing/invoice/factura3.h"

#include "ui_factura3.h"

#include "billing/invoice/invoicesave.h"
#include "billing/payment/Fcobrar.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "frame/frame.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "registers/insurers/pricelist.h"
#include "registers/pickers.h"

#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>

TQ_REGISTER_SCREEN(factura3)

using namespace tq;

namespace {

// The line grid's columns.
enum Col { Cantidad, Codigo, Descripcion, PrecioU, PrecioT };
constexpr int kCols = 5;

const QString kTitle = QStringLiteral("Facturación");
const QString kWarning = QStringLiteral("Advertencia");
const QString kExtras = QStringLiteral("Extras:");

// More units of one exam than this on one invoice is a slip of the keyboard.
constexpr std::int32_t kMaxQuantity = 999;

// Invoice screens open at once; the last to go puts the screen number back.
int g_open = 0;

bool isEnter(const QKeyEvent* e) { return e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter; }

// A key that the grid's procedures see: a character, Enter or Backspace.
// Arrows, Tab and the like only move the cursor.
bool isTypedKey(const QKeyEvent* e)
{
    if (isEnter(e) || e->key() == Qt::Key_Backspace)
        return true;
    const QString t = e->text();
    return !t.isEmpty() && t[0].isPrint() && !(e->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
}

}  // namespace

factura3::factura3(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::factura3>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("factura3"));
    ++g_open;
    state().screenNumber = 10;
    state().pagoPacienteAsegurado = 0;
    ui->DT->setDate(QDate::currentDate());
    showPaymentKind();
    makeListOnly(ui->Combo1);
    ui->clinom->installEventFilter(this);
    ui->clidir->installEventFilter(this);

    FlexGrid* g = ui->Factura;
    connect(g, &FlexGrid::rowClicked, this, [this](int row) { m_clickedRow = row; });
    connect(g, &FlexGrid::cellKeyPressed, this, &factura3::gridKey);

    onClick(ui->eliminar, QStringLiteral("quitar el examen de la factura"), [this] { eliminar(); });
    onClick(ui->agregar, QStringLiteral("agregar más examenes a la factura"), [this] { agregar(); });
    onClick(ui->generar, QStringLiteral("calcular los totales de la factura"), [this] { generar(); });
    onClick(ui->Command1, QStringLiteral("aplicar un descuento o recargo"), [this] { descuentoRecargo(); });
    onClick(ui->guardarfact, QStringLiteral("guardar la factura"), [this] { guardarfact(); });
    onClick(ui->limpiar, QStringLiteral("limpiar la factura"), [this] { limpiar(); });
    onClick(ui->imprimir, QStringLiteral("imprimir la factura"), [this] { imprimir(); });
    onClick(ui->Otrafact, QStringLiteral("abrir otra factura"), [this] { otraFactura(); });
    connect(ui->salir, &QPushButton::clicked, this, &QWidget::close);

    if (!guarded(QStringLiteral("preparar la factura"), [this] { load(); })) {
        // Without a number or a doctor list no invoice can be composed here.
        ui->clinom->setEnabled(false);
        ui->Factura->setEnabled(false);
    }
}

factura3::~factura3()
{
    if (extraTarget(1) == this)
        setExtraTarget(1, nullptr);
    if (--g_open == 0 && state().screenNumber == 10)
        state().screenNumber = 0;
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

void factura3::load()
{
    // Last number plus one; nothing is reserved, the save checks again.
    const QVariant last = amb1().scalar(QStringLiteral("SELECT MAX(factura) FROM Factura"));
    m_numero = last.isNull() ? 1 : toInt32(double(toInt32(last)) + 1);
    showNumber();

    Recordset doctores;
    doctores.open(QStringLiteral(
        "SELECT Cod_doctor, Nombre_doctor, Apellido_doctor FROM Doctores ORDER BY Cod_doctor"));
    if (doctores.recordCount() == 0) {
        prompts().message(QStringLiteral("no hay familias creadas"), Icon::None, kTitle);
        // Doctors must exist before invoicing.
        ui->clinom->setEnabled(false);
        ui->Factura->setEnabled(false);
        return;
    }
    ui->Combo1->clear();
    for (int r = 0; r < doctores.recordCount(); ++r)
        ui->Combo1->addItem(doctores.valueAt(r, QStringLiteral("Cod_doctor")).toString()
                            + QStringLiteral(" - ")
                            + doctores.valueAt(r, QStringLiteral("Nombre_doctor")).toString()
                            + QLatin1Char(' ')
                            + doctores.valueAt(r, QStringLiteral("Apellido_doctor")).toString());
    ui->Combo1->setCurrentIndex(-1);   // the doctor may stay blank

    ui->clinom->setEnabled(true);
    ui->Factura->setEnabled(true);
    setUpGrid(true);
}

void factura3::setUpGrid(bool firstLoad)
{
    FlexGrid* g = ui->Factura;
    g->setRows(2);
    g->setCols(kCols);
    g->clear();
    g->setTextMatrix(0, Cantidad, QStringLiteral("CANTIDAD"));
    g->setTextMatrix(0, Codigo, QStringLiteral("CÓDIGO"));
    g->setTextMatrix(0, Descripcion, firstLoad ? QStringLiteral("                    DESCRIPCIÓN")
                                               : QStringLiteral("DESCRIPCIÓN"));
    g->setTextMatrix(0, PrecioU, QStringLiteral("PRECIO U"));
    g->setTextMatrix(0, PrecioT, QStringLiteral("PRECIO T"));
    g->setColWidth(Cantidad, 1100);
    g->setColWidth(Descripcion, 6000);
    g->setColWidth(PrecioT, 1400);
    g->setRow(1);
    g->setCol(Cantidad);
}

bool factura3::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || (watched != ui->clinom && watched != ui->clidir))
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    // Focus moves on as everywhere else.
    if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)
        return false;
    // The patient comes only from the picker: Enter on the name opens it, and
    // nothing is typed into either field.
    if (watched == ui->clinom && isEnter(key))
        guarded(QStringLiteral("elegir el paciente de la factura"), [this] { choosePatient(); });
    return true;
}

void factura3::choosePatient()
{
    // Lines already typed belong to the patient before.
    cancelar();
    setUpGrid(false);
    const auto p = tq::choosePatient(PatientCaller::Invoice);
    if (!p)
        return;
    ui->clinom->setText(p->name);
    ui->clidir->setText(p->address);
    m_fechaNacimiento = p->birth;
    m_codPaciente = p->code;
    m_codSeguro = p->insurer;
    if (m_codSeguro != 0) {
        Recordset seguro;
        seguro.open(QStringLiteral("SELECT Empresa FROM seguros WHERE cod_seguro = ?"), {m_codSeguro});
        ui->Label12->setText(QStringLiteral("Precios de: ")
                             + (seguro.recordCount() ? seguro.text(QStringLiteral("Empresa")) : QString()));
    } else {
        ui->Label12->setText(QStringLiteral("Precios Normales"));
    }
    ui->Factura->setRow(1);
    ui->Factura->setCol(Cantidad);
    ui->Factura->setFocus();
}

void factura3::gridKey(int row, int col, QKeyEvent* event)
{
    if (!isTypedKey(event))
        return;   // the grid moves its cursor
    event->accept();
    if (row < 1)
        return;
    if (ui->clinom->text().trimmed().isEmpty()) {
        prompts().message(QStringLiteral("Debe ingresar el nombre."), Icon::Information, kWarning);
        ui->clinom->setFocus();
        return;
    }
    if (col != Cantidad && col != Codigo)
        return;   // description and prices are the screen's own

    FlexGrid* g = ui->Factura;
    const QString cell = g->textMatrix(row, col);
    if (event->key() == Qt::Key_Backspace) {
        if (!cell.trimmed().isEmpty())
            g->setTextMatrix(row, col, cell.left(cell.size() - 1));
        return;
    }
    if (isEnter(event)) {
        if (col == Codigo)
            guarded(QStringLiteral("agregar el examen a la factura"), [this, row] { acceptLine(row); });
        else if (!cell.trimmed().isEmpty())
            guarded(QStringLiteral("buscar el examen"), [this, row] { chooseExam(row); });
        return;
    }
    const QString t = event->text();
    if (t.size() == 1 && t[0] >= QLatin1Char('0') && t[0] <= QLatin1Char('9'))
        g->setTextMatrix(row, col, (cell + t).toUpper());
}

void factura3::chooseExam(int row)
{
    const auto exam = tq::chooseExam(ExamCaller::Invoice, m_codSeguro);
    if (!exam)
        return;
    FlexGrid* g = ui->Factura;
    if (row >= g->rows())
        return;
    g->setTextMatrix(row, Codigo, QString::number(exam->code));
    // Enter on the code accepts the line.
    g->setRow(row);
    g->setCol(Codigo);
    g->setFocus();
}

int factura3::lastLine() const { return ui->Factura->rows() - 2; }

void factura3::acceptLine(int row)
{
    FlexGrid* g = ui->Factura;
    const QString code = g->textMatrix(row, Codigo).trimmed().toUpper();
    if (code.isEmpty())
        return;
    const bool newLine = g->textMatrix(row, Descripcion).trimmed().isEmpty();
    const QString quantityText = g->textMatrix(row, Cantidad);
    if (quantityText.trimmed().isEmpty()) {
        prompts().message(QStringLiteral("La cantidad está vacia"), Icon::None, kWarning);
        return;
    }
    const std::int32_t exam = toInt32(code);

    // The patient's insurer (as picked) selects its list; no insurer, the
    // catalogue price. An exam missing from the insurer's list is refused,
    // never billed at the catalogue price.
    Recordset price;
    if (m_codSeguro != 0)
        price.open(insurerPriceListSql()
                       + QStringLiteral("AND Examenes.cod_descripcionexamen = ? LIMIT 1"),
                   {m_codSeguro, exam});
    else
        price.open(QStringLiteral("SELECT examen, precio FROM Examenes "
                                  "WHERE Cod_descripcionexamen = ? LIMIT 1"),
                   {exam});
    if (price.recordCount() == 0) {
        prompts().message(QStringLiteral("el examen no tiene pecio asignado"), Icon::None, kTitle);
        g->setTextMatrix(row, Codigo, QString());
        g->setTextMatrix(row, Descripcion, QString());
        g->setRow(row);
        g->setCol(Cantidad);
        return;
    }
    const double precio = Val(money(price.field(QStringLiteral("precio"))));
    const double quantity = Val(quantityText);
    g->setTextMatrix(row, Descripcion, price.text(QStringLiteral("examen")));
    g->setTextMatrix(row, PrecioU, money(precio));
    g->setTextMatrix(row, PrecioT, money(quantity * precio));
    const bool onBlankRow = row == g->rows() - 1;
    if (onBlankRow)
        g->setRows(g->rows() + 1);   // always one blank row at the end
    ui->generar->setEnabled(true);
    ui->agregar->setEnabled(true);
    ui->eliminar->setEnabled(true);

    // One exam stands once on an invoice: a code keyed again on a new line
    // adds its quantity to the line that has it; keyed again over a line, the
    // line that had it keeps its quantity and takes the price just read.
    for (int r = 1; r <= lastLine(); ++r) {
        if (r == row || g->textMatrix(r, Codigo).trimmed().toUpper() != code)
            continue;
        double merged = Val(g->textMatrix(r, Cantidad));
        if (newLine)
            merged += quantity;
        g->setTextMatrix(r, Cantidad, QString::number(merged));
        g->setTextMatrix(r, PrecioT, money(merged * precio));
        removeRow(row);
        break;
    }
    g->setRow(g->rows() - 1);
    g->setCol(Cantidad);
}

void factura3::removeRow(int row)
{
    FlexGrid* g = ui->Factura;
    for (int r = row; r < g->rows() - 1; ++r)
        for (int c = 0; c < kCols; ++c)
            g->setTextMatrix(r, c, g->textMatrix(r + 1, c));
    g->setRows(g->rows() - 1);
}

void factura3::eliminar()
{
    ui->guardarfact->setEnabled(false);
    ui->Command1->setEnabled(false);
    FlexGrid* g = ui->Factura;
    const int row = m_clickedRow;
    // Never the header, a blank row, nor the last row of a grid that has no other.
    if (row > 0 && row < g->rows() && !g->textMatrix(row, Cantidad).isEmpty() && g->rows() > 2) {
        removeRow(row);
        m_clickedRow = 0;
    }
    for (QLineEdit* box : {ui->subtfact, ui->impfact, ui->Text1, ui->totfact})
        box->clear();
    if (nothingToTotal())
        ui->generar->setEnabled(false);
}

bool factura3::nothingToTotal() const
{
    const FlexGrid* g = ui->Factura;
    if (g->rows() < 3 || g->textMatrix(1, Codigo).trimmed().isEmpty())
        return true;
    return g->row() == 1 && g->text().trimmed().isEmpty();
}

void factura3::agregar()
{
    if (nothingToTotal()) {
        ui->generar->setEnabled(false);
        return;
    }
    ui->guardarfact->setEnabled(false);
    ui->Command1->setEnabled(false);
    ui->clinom->setEnabled(true);
    ui->clidir->setEnabled(true);
    ui->Combo1->setEnabled(true);
    ui->Factura->setEnabled(true);
    ui->generar->setEnabled(true);
    for (QLineEdit* box : {ui->subtfact, ui->impfact, ui->Text1, ui->totfact})
        box->clear();
    ui->Label10->setText(kExtras);
}

void factura3::generar()
{
    if (nothingToTotal()) {
        ui->generar->setEnabled(false);
        return;
    }
    ui->Command1->setEnabled(true);
    FlexGrid* g = ui->Factura;
    // The subtotal adds the line amounts as shown, each rounded to cents.
    double subtotal = 0;
    for (int r = 1; r <= lastLine(); ++r) {
        const QString amount = money(Val(g->textMatrix(r, PrecioU)) * Val(g->textMatrix(r, Cantidad)));
        g->setTextMatrix(r, PrecioT, amount);
        subtotal += Val(amount);
    }
    subtotal = Val(money(subtotal));
    const double tax = 0;

    double total = subtotal + tax;
    const bool thirdAgeAuto = amb1().scalar(QStringLiteral("SELECT terceraedadauto FROM datos LIMIT 1")).toBool();
    // The age is always today's, whatever date the invoice carries.
    const int years = m_fechaNacimiento.isValid() ? calculoedad(m_fechaNacimiento).years : 0;
    if (thirdAgeAuto && years >= 60) {
        // DTE is a plain factor: 0.10 takes off a tenth.
        const double factor = amb1().scalar(QStringLiteral("SELECT DTE FROM DTE LIMIT 1")).toDouble();
        const QString discount = money(factor * subtotal);
        ui->Text1->setText(discount);
        ui->Label10->setText(QStringLiteral("Descuento:"));
        total = subtotal + tax - Val(discount);
    }
    ui->subtfact->setText(money(subtotal));
    ui->impfact->setText(money(tax));
    ui->totfact->setText(money(total));

    ui->guardarfact->setEnabled(true);
    ui->guardarfact->setFocus();
    ui->generar->setEnabled(false);
    ui->Factura->setEnabled(false);
    ui->clinom->setEnabled(false);
    ui->clidir->setEnabled(false);
    ui->Combo1->setEnabled(false);
}

QString factura3::subtotalText() const { return ui->subtfact->text(); }

void factura3::applyExtra(const QString& caption, const QString& extra, const QString& total)
{
    ui->Label10->setText(caption);
    ui->Text1->setText(extra);
    ui->totfact->setText(total);
}

void factura3::descuentoRecargo()
{
    if (ui->subtfact->text().trimmed().isEmpty()) {
        prompts().message(QStringLiteral("Primero debe Generar a factura"), Icon::None, kTitle);
        return;
    }
    state().discountBoxFor = 1;
    setExtraTarget(1, this);
    const bool askAdmin = amb1().scalar(QStringLiteral("SELECT pidecontrasena FROM datos LIMIT 1")).toBool();
    // With the switch on an administrator signs first; Form11 then opens the box.
    openModal(askAdmin ? QStringLiteral("Form11") : QStringLiteral("Form10"));
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
    paciente.open(QStringLiteral("SELECT asegurado FROM Pacientes WHERE cod_paciente = ?"), {m_codPaciente});
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

InvoiceDocument factura3::document() const
{
    InvoiceDocument doc;
    doc.numero = m_numero;
    doc.fecha = ui->DT->date();
    doc.faturado = state().currentUser;
    doc.codPaciente = m_codPaciente;
    doc.subtotal = money(Val(ui->subtfact->text()));
    doc.total = money(Val(ui->totfact->text()));
    if (m_fechaNacimiento.isValid())
        doc.edad = calculoedad(m_fechaNacimiento).text;
    const QString doctor = ui->Combo1->currentText();
    if (!doctor.trimmed().isEmpty())
        doc.codDoctor = toInt32(doctor);   // the leading digits are the doctor's code
    if (!ui->Text1->text().trimmed().isEmpty()) {
        doc.valAdicional = money(Val(ui->Text1->text()));
        if (ui->Label10->text() == QLatin1String("Descuento:"))
            doc.adicional = QStringLiteral("Descuento");
        else if (ui->Label10->text() == QLatin1String("Recargo:"))
            doc.adicional = QStringLiteral("Recargo");
    }
    const FlexGrid* g = ui->Factura;
    for (int r = 1; r <= lastLine(); ++r) {
        InvoiceLine line;
        line.cantidad = toInt32(g->textMatrix(r, Cantidad));
        line.codigo = toInt32(g->textMatrix(r, Codigo).trimmed().toUpper());
        line.subtotal = money(Val(g->textMatrix(r, PrecioT)));
        if (line.cantidad < 1 || line.cantidad > kMaxQuantity)
            throw AppError(QStringLiteral("La cantidad de %1 debe estar entre 1 y %2.")
                               .arg(g->textMatrix(r, Descripcion).trimmed())
                               .arg(kMaxQuantity));
        doc.lines << line;
    }
    return doc;
}

void factura3::save(Settlement settlement, const Payment& payment)
{
    const bool insurer = settlement == Settlement::Insurer;
    if (!insurer) {
        if (Val(ui->totfact->text()) == 0) {
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
    const bool saved = guardedSaying(
        QStringLiteral("La factura no se guardó y no quedó escrita ninguna parte de ella; "
                       "puede intentar guardarla de nuevo."),
        [&] {
            const InvoiceDocument doc = document();
            // An insured patient who pays at the desk owes the insurer nothing.
            const bool asegurado = amb1()
                                       .scalar(QStringLiteral("SELECT asegurado FROM Pacientes "
                                                              "WHERE cod_paciente = ?"),
                                               {m_codPaciente})
                                       .toBool();
            const bool withCxc = insurer || (asegurado && state().pagoPacienteAsegurado == 0);
            out = saveInvoice(doc, settlement, payment, withCxc, insurer ? nullptr : &cardDetails());
        });
    if (!saved)
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
    showSaved();
    pausa();
}

void factura3::showSaved()
{
    m_saved = 1;
    ui->guardarfact->setEnabled(false);
    ui->imprimir->setEnabled(true);
    ui->Otrafact->setEnabled(true);
    for (QLineEdit* box : {ui->subtfact, ui->totfact, ui->impfact}) {
        QPalette pal = box->palette();
        pal.setColor(QPalette::Text, QColor(255, 0, 0));
        box->setPalette(pal);
    }
    for (QWidget* w : std::initializer_list<QWidget*>{ui->Factura, ui->clinom, ui->clidir, ui->Combo1})
        w->setEnabled(false);
}

void factura3::quitarorden()
{
    if (m_orden == 0)
        return;
    amb1().execute(QStringLiteral("UPDATE orden SET anulada = ?, anulacion = ?, quien_anulo = ? "
                                  "WHERE orden = ?"),
                   {true, QDate::currentDate(), state().currentUser, m_orden});
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

void factura3::cancelar()
{
    ui->clinom->clear();
    ui->clidir->clear();
    ui->Label12->clear();
    ui->Factura->clear();
    for (QLineEdit* box : {ui->subtfact, ui->totfact, ui->impfact, ui->Text1})
        box->clear();
    ui->Combo1->setCurrentIndex(-1);
    for (QPushButton* b : {ui->generar, ui->imprimir, ui->agregar, ui->eliminar, ui->guardarfact})
        b->setEnabled(false);
    ui->Label10->setText(kExtras);
    m_codPaciente = 0;
    m_codSeguro = 0;
    m_fechaNacimiento = QDate();
    m_clickedRow = 0;
    // Back to an empty invoice: the patient and the lines can be chosen again.
    ui->clinom->setEnabled(true);
    ui->clidir->setEnabled(true);
    ui->Combo1->setEnabled(true);
    ui->Factura->setEnabled(true);
}

void factura3::limpiar()
{
    if (m_saved == 1)
        return;
    cancelar();
    setUpGrid(false);
}

void factura3::otraFactura()
{
    if (prompts().message(QStringLiteral("Desea Ingresar Otra factura"), Icon::Question,
                          QStringLiteral("Ingresar Factura..."), Buttons::YesNo)
        != Answer::Yes)
        return;
    // A fresh screen proposes the next number.
    auto* sw = qobject_cast<QMdiSubWindow*>(parentWidget());
    QMdiArea* area = sw ? sw->mdiArea() : nullptr;
    const QPoint place = sw ? sw->pos() : pos();
    if (sw)
        sw->close();
    else
        close();
    QWidget* next = ScreenRegistry::instance().create(QStringLiteral("factura3"));
    next->setAttribute(Qt::WA_DeleteOnClose);
    if (area) {
        QMdiSubWindow* nsw = area->addSubWindow(next);
        nsw->setAttribute(Qt::WA_DeleteOnClose);
        connect(next, &QObject::destroyed, nsw, &QObject::deleteLater);
        nsw->move(place);
        nsw->show();
    } else {
        next->move(place);
        next->show();
    }
    next->setFocus();
}
