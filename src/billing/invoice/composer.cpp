#include "billing/invoice/composer.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "registers/doctors/doctorlist.h"
#include "registers/insurers/pricelist.h"

#include <QComboBox>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>

namespace tq {

namespace {

constexpr int kCols = 5;
const QString kWarning = QStringLiteral("Advertencia");
const QString kExtras = QStringLiteral("Extras:");

// More units of one exam on one document than this is a slip of the keyboard.
constexpr std::int32_t kMaxQuantity = 999;

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

DocumentComposer::DocumentComposer(DocumentKind kind, const ComposerControls& controls, QWidget* screen)
    : QObject(screen), m_kind(std::move(kind)), m_c(controls), m_screen(screen)
{
    m_c.DT->setDate(QDate::currentDate());
    makeListOnly(m_c.Combo1);
    m_c.clinom->installEventFilter(this);
    m_c.clidir->installEventFilter(this);

    FlexGrid* g = m_c.Factura;
    connect(g, &FlexGrid::rowClicked, this, [this](int row) { m_clickedRow = row; });
    connect(g, &FlexGrid::cellKeyPressed, this, &DocumentComposer::gridKey);

    const QString& of = m_kind.noun;
    onClick(m_c.eliminar, QStringLiteral("quitar el examen de ") + of, [this] { eliminar(); });
    onClick(m_c.agregar, QStringLiteral("agregar más examenes a ") + of, [this] { agregar(); });
    onClick(m_c.generar, QStringLiteral("calcular los totales de ") + of, [this] { generar(); });
    onClick(m_c.Command1, QStringLiteral("aplicar un descuento o recargo"), [this] { descuentoRecargo(); });
    onClick(m_c.limpiar, QStringLiteral("limpiar ") + of, [this] { limpiar(); });
    onClick(m_c.Otrafact, QStringLiteral("abrir otro documento"), [this] { another(); });
}

DocumentComposer::~DocumentComposer()
{
    if (extraTarget(m_kind.discountSelector) == this)
        setExtraTarget(m_kind.discountSelector, nullptr);
}

bool DocumentComposer::load()
{
    if (fillDoctors(m_c.Combo1) == 0) {
        prompts().message(QStringLiteral("no hay familias creadas"), Icon::None, m_kind.title);
        // Doctors must exist before a document is composed.
        m_c.clinom->setEnabled(false);
        m_c.Factura->setEnabled(false);
        return false;
    }
    m_c.clinom->setEnabled(true);
    m_c.Factura->setEnabled(true);
    setUpGrid(true);
    return true;
}

void DocumentComposer::setUpGrid(bool firstLoad)
{
    FlexGrid* g = m_c.Factura;
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

bool DocumentComposer::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || (watched != m_c.clinom && watched != m_c.clidir))
        return QObject::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    // Focus moves on as everywhere else.
    if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)
        return false;
    // The patient comes only from the picker: Enter on the name opens it, and
    // nothing is typed into either field.
    if (watched == m_c.clinom && isEnter(key))
        guarded(QStringLiteral("elegir el paciente de ") + m_kind.noun, [this] { choosePatient(); });
    return true;
}

void DocumentComposer::setPatient(std::int32_t code, const QString& name, const QString& address,
                                  const QDate& birth, std::int32_t insurer, const QString& insurerName)
{
    m_c.clinom->setText(name);
    m_c.clidir->setText(address);
    m_codPaciente = code;
    m_fechaNacimiento = birth;
    m_codSeguro = insurer;
    m_empresa = insurerName;
}

void DocumentComposer::choosePatient()
{
    // Lines already typed belong to the patient before.
    cancelar();
    setUpGrid(false);
    const auto p = tq::choosePatient(m_kind.patientCaller);
    if (!p)
        return;
    QString empresa;
    if (p->insurer != 0)
        empresa = amb1()
                      .scalar(QStringLiteral("SELECT Empresa FROM seguros WHERE cod_seguro = ?"),
                              {p->insurer})
                      .toString();
    setPatient(p->code, p->name, p->address, p->birth, p->insurer, empresa);
    m_c.Label12->setText(p->insurer != 0 ? QStringLiteral("Precios de: ") + empresa
                                         : QStringLiteral("Precios Normales"));
    m_c.Factura->setRow(1);
    m_c.Factura->setCol(Cantidad);
    m_c.Factura->setFocus();
}

void DocumentComposer::gridKey(int row, int col, QKeyEvent* event)
{
    if (!isTypedKey(event))
        return;   // the grid moves its cursor
    event->accept();
    if (row < 1)
        return;
    if (m_c.clinom->text().trimmed().isEmpty()) {
        prompts().message(QStringLiteral("Debe ingresar el nombre."), Icon::Information, kWarning);
        m_c.clinom->setFocus();
        return;
    }
    if (col != Cantidad && col != Codigo)
        return;   // description and prices are the screen's own

    FlexGrid* g = m_c.Factura;
    const QString cell = g->textMatrix(row, col);
    if (event->key() == Qt::Key_Backspace) {
        if (!cell.trimmed().isEmpty())
            g->setTextMatrix(row, col, cell.left(cell.size() - 1));
        return;
    }
    if (isEnter(event)) {
        if (col == Codigo)
            guarded(QStringLiteral("agregar el examen a ") + m_kind.noun, [this, row] { acceptLine(row); });
        else if (!cell.trimmed().isEmpty())
            guarded(QStringLiteral("buscar el examen"), [this, row] { chooseExam(row); });
        return;
    }
    const QString t = event->text();
    if (t.size() == 1 && t[0] >= QLatin1Char('0') && t[0] <= QLatin1Char('9'))
        g->setTextMatrix(row, col, (cell + t).toUpper());
}

void DocumentComposer::chooseExam(int row)
{
    // The invoice tells the picker whose prices it lists; the order leaves its title be.
    QString title;
    if (m_kind.titlesExamPicker)
        title = m_codSeguro != 0 ? m_empresa : QStringLiteral("PRECIOS NORMALES");
    const auto exam = tq::chooseExam(m_kind.examCaller, m_codSeguro, title);
    if (!exam)
        return;
    FlexGrid* g = m_c.Factura;
    if (row >= g->rows())
        return;
    g->setTextMatrix(row, Codigo, QString::number(exam->code));
    // Enter on the code accepts the line.
    g->setRow(row);
    g->setCol(Codigo);
    g->setFocus();
}

int DocumentComposer::lastLine() const { return m_c.Factura->rows() - 2; }

void DocumentComposer::acceptLine(int row)
{
    FlexGrid* g = m_c.Factura;
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
        prompts().message(QStringLiteral("el examen no tiene pecio asignado"), Icon::None, m_kind.title);
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
    if (row == g->rows() - 1)
        g->setRows(g->rows() + 1);   // always one blank row at the end
    m_c.generar->setEnabled(true);
    m_c.agregar->setEnabled(true);
    m_c.eliminar->setEnabled(true);

    // One exam stands once on a document: a code keyed again on a new line
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

void DocumentComposer::removeRow(int row)
{
    FlexGrid* g = m_c.Factura;
    for (int r = row; r < g->rows() - 1; ++r)
        for (int c = 0; c < kCols; ++c)
            g->setTextMatrix(r, c, g->textMatrix(r + 1, c));
    g->setRows(g->rows() - 1);
}

void DocumentComposer::clearAmounts()
{
    for (QLineEdit* box : {m_c.subtfact, m_c.impfact, m_c.Text1, m_c.totfact})
        box->clear();
}

void DocumentComposer::eliminar()
{
    m_c.guardarfact->setEnabled(false);
    m_c.Command1->setEnabled(false);
    FlexGrid* g = m_c.Factura;
    const int row = m_clickedRow;
    // Never the header, a blank row, nor the last row of a grid that has no other.
    if (row > 0 && row < g->rows() && !g->textMatrix(row, Cantidad).isEmpty() && g->rows() > 2) {
        removeRow(row);
        m_clickedRow = 0;
    }
    clearAmounts();
    if (nothingToTotal())
        m_c.generar->setEnabled(false);
}

bool DocumentComposer::nothingToTotal() const
{
    const FlexGrid* g = m_c.Factura;
    if (g->rows() < 3 || g->textMatrix(1, Codigo).trimmed().isEmpty())
        return true;
    return g->row() == 1 && g->text().trimmed().isEmpty();
}

void DocumentComposer::agregar()
{
    if (nothingToTotal()) {
        m_c.generar->setEnabled(false);
        return;
    }
    m_c.guardarfact->setEnabled(false);
    m_c.Command1->setEnabled(false);
    for (QWidget* w : std::initializer_list<QWidget*>{m_c.clinom, m_c.clidir, m_c.Combo1, m_c.Factura,
                                                      m_c.generar})
        w->setEnabled(true);
    clearAmounts();
    m_c.Label10->setText(kExtras);
}

void DocumentComposer::generar()
{
    if (nothingToTotal()) {
        m_c.generar->setEnabled(false);
        return;
    }
    m_c.Command1->setEnabled(true);
    FlexGrid* g = m_c.Factura;
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
    const bool thirdAgeAuto =
        amb1().scalar(QStringLiteral("SELECT terceraedadauto FROM datos LIMIT 1")).toBool();
    // The age is always today's, whatever date the document carries.
    const int years = m_fechaNacimiento.isValid() ? calculoedad(m_fechaNacimiento).years : 0;
    if (thirdAgeAuto && years >= 60) {
        // DTE is a plain factor: 0.10 takes off a tenth.
        const double factor = amb1().scalar(QStringLiteral("SELECT DTE FROM DTE LIMIT 1")).toDouble();
        const QString discount = money(factor * subtotal);
        m_c.Text1->setText(discount);
        m_c.Label10->setText(QStringLiteral("Descuento:"));
        total = subtotal + tax - Val(discount);
    }
    m_c.subtfact->setText(money(subtotal));
    m_c.impfact->setText(money(tax));
    m_c.totfact->setText(money(total));

    m_c.guardarfact->setEnabled(true);
    m_c.guardarfact->setFocus();
    m_c.generar->setEnabled(false);
    m_c.Factura->setEnabled(false);
    m_c.clinom->setEnabled(false);
    m_c.clidir->setEnabled(false);
    if (m_kind.doctorLockedByTotals)
        m_c.Combo1->setEnabled(false);
}

QString DocumentComposer::subtotalText() const { return m_c.subtfact->text(); }

void DocumentComposer::applyExtra(const QString& caption, const QString& extra, const QString& total)
{
    m_c.Label10->setText(caption);
    m_c.Text1->setText(extra);
    m_c.totfact->setText(total);
}

void DocumentComposer::descuentoRecargo()
{
    if (m_c.subtfact->text().trimmed().isEmpty()) {
        prompts().message(m_kind.totalsFirst, Icon::None, m_kind.title);
        return;
    }
    state().discountBoxFor = m_kind.discountSelector;
    setExtraTarget(m_kind.discountSelector, this);
    const bool askAdmin =
        amb1().scalar(QStringLiteral("SELECT pidecontrasena FROM datos LIMIT 1")).toBool();
    // With the switch on an administrator signs first; Form11 then opens the box.
    openModal(askAdmin ? QStringLiteral("Form11") : QStringLiteral("Form10"));
}

bool DocumentComposer::zeroTotal() const { return Val(m_c.totfact->text()) == 0; }

PricedDocument DocumentComposer::document() const
{
    PricedDocument doc;
    doc.fecha = m_c.DT->date();
    doc.faturado = state().currentUser;
    doc.codPaciente = m_codPaciente;
    doc.subtotal = money(Val(m_c.subtfact->text()));
    doc.total = money(Val(m_c.totfact->text()));
    if (m_fechaNacimiento.isValid())
        doc.edad = calculoedad(m_fechaNacimiento).text;
    const QString doctor = m_c.Combo1->currentText();
    if (!doctor.trimmed().isEmpty())
        doc.codDoctor = toInt32(doctor);   // the leading digits are the doctor's code
    if (!m_c.Text1->text().trimmed().isEmpty()) {
        doc.valAdicional = money(Val(m_c.Text1->text()));
        if (m_c.Label10->text() == QLatin1String("Descuento:"))
            doc.adicional = QStringLiteral("Descuento");
        else if (m_c.Label10->text() == QLatin1String("Recargo:"))
            doc.adicional = QStringLiteral("Recargo");
    }
    const FlexGrid* g = m_c.Factura;
    for (int r = 1; r <= lastLine(); ++r) {
        PricedLine line;
        line.cantidad = toInt32(g->textMatrix(r, Cantidad));
        line.codigo = toInt32(g->textMatrix(r, Codigo).trimmed().toUpper());
        line.precio = money(Val(g->textMatrix(r, PrecioU)));
        line.subtotal = money(Val(g->textMatrix(r, PrecioT)));
        if (line.cantidad < 1 || line.cantidad > kMaxQuantity)
            throw AppError(QStringLiteral("La cantidad de %1 debe estar entre 1 y %2.")
                               .arg(g->textMatrix(r, Descripcion).trimmed())
                               .arg(kMaxQuantity));
        doc.lines << line;
    }
    return doc;
}

void DocumentComposer::showSaved()
{
    m_saved = true;
    m_c.guardarfact->setEnabled(false);
    m_c.imprimir->setEnabled(true);
    m_c.Otrafact->setEnabled(true);
    for (QLineEdit* box : {m_c.subtfact, m_c.totfact, m_c.impfact}) {
        QPalette pal = box->palette();
        pal.setColor(QPalette::Text, QColor(255, 0, 0));
        box->setPalette(pal);
    }
    for (QWidget* w : std::initializer_list<QWidget*>{m_c.Factura, m_c.clinom, m_c.clidir, m_c.Combo1})
        w->setEnabled(false);
}

void DocumentComposer::cancelar()
{
    m_c.clinom->clear();
    m_c.clidir->clear();
    m_c.Label12->clear();
    m_c.Factura->clear();
    clearAmounts();
    m_c.Combo1->setCurrentIndex(-1);
    for (QPushButton* b : {m_c.generar, m_c.imprimir, m_c.agregar, m_c.eliminar, m_c.guardarfact})
        b->setEnabled(false);
    m_c.Label10->setText(kExtras);
    m_codPaciente = 0;
    m_codSeguro = 0;
    m_fechaNacimiento = QDate();
    m_empresa.clear();
    m_clickedRow = 0;
    // Back to an empty document: the patient and the lines can be chosen again.
    for (QWidget* w : std::initializer_list<QWidget*>{m_c.clinom, m_c.clidir, m_c.Combo1, m_c.Factura})
        w->setEnabled(true);
    emit cleared();
}

void DocumentComposer::limpiar()
{
    if (m_saved)
        return;
    cancelar();
    setUpGrid(false);
}

void DocumentComposer::another()
{
    if (prompts().message(m_kind.anotherQuestion, Icon::Question, m_kind.anotherTitle, Buttons::YesNo)
        != Answer::Yes)
        return;
    // A fresh screen starts the next document: in the main window where this
    // one stood, or modal as this one was.
    const QString name = m_kind.screen;
    auto* sw = qobject_cast<QMdiSubWindow*>(m_screen->parentWidget());
    if (!sw && m_screen->isWindow() && m_screen->windowModality() != Qt::NonModal) {
        handOver(m_screen, [name] { openModal(name); });
        return;
    }
    QMdiArea* area = sw ? sw->mdiArea() : nullptr;
    const QPoint place = sw ? sw->pos() : m_screen->pos();
    if (sw)
        sw->close();
    else
        m_screen->close();
    QWidget* next = ScreenRegistry::instance().create(name);
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

}  // namespace tq
