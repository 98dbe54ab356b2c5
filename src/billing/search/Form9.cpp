#include "billing/search/Form9.h"

#include "ui_Form9.h"

#include "billing/search/invoicenumber.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>
#include <limits>

TQ_REGISTER_SCREEN(Form9)

using namespace tq;

namespace {

Recordset& consultas() { return amb1().rs(QStringLiteral("rsconsultas")); }

// The three orders of the list, all over the same join and all in invoice
// number order, so that the first rows read (and those read as the list is
// scrolled) are the same on every engine, narrowed or not.
const char* const kPorFecha =
    "SELECT Factura.fecha, Factura.factura, Factura.cod_paciente, Pacientes.nombre_paciente, "
    "Pacientes.apellido_paciente, Factura.total, Factura.faturado, Factura.tipo_factura";
const char* const kPorNombre =
    "SELECT Pacientes.nombre_paciente, Pacientes.apellido_paciente,Factura.fecha, "
    "Factura.factura, Factura.cod_paciente, Factura.total, Factura.faturado, Factura.tipo_factura";
const char* const kPorNumero =
    "SELECT Factura.factura, factura.fecha, Factura.cod_paciente, Pacientes.nombre_paciente, "
    "Pacientes.apellido_paciente, Factura.total, Factura.faturado, Factura.tipo_factura";
const char* const kJoin =
    " FROM Pacientes INNER JOIN Factura ON Pacientes.cod_paciente = Factura.cod_paciente";
const char* const kInNumberOrder = " ORDER BY Factura.factura";
// Narrowed by a name, the patients who bear it are found first and their
// invoices are walked in number order: left to itself, a planner walks every
// invoice looking up its patient until enough of them match.
const char* const kOfNamedPatients =
    " WHERE Factura.cod_paciente IN (SELECT cod_paciente FROM Pacientes "
    "WHERE nombre_paciente LIKE ? ESCAPE '\\')";

QString orderSql(int order, bool byName = false)
{
    return QLatin1String(order == 1 ? kPorFecha : order == 2 ? kPorNombre : kPorNumero)
           + QLatin1String(kJoin) + (byName ? QLatin1String(kOfNamedPatients) : QLatin1String())
           + QLatin1String(kInNumberOrder);
}

// Rows read when the list is loaded: some screenfuls. Scrolling to the end
// of them reads four times as many, so that every invoice can be reached.
constexpr int kFirstRows = 1000;
// Rows the columns are fitted to: a screenful and some.
constexpr int kFittedRows = 40;

// Where each order holds the invoice number.
int numberColumn(int order) { return order == 1 ? 1 : order == 2 ? 3 : 0; }

// Typed text inside a quoted filter text: an apostrophe is doubled.
QString quotedInFilter(QString typed) { return typed.replace(QLatin1Char('\''), QStringLiteral("''")); }

}  // namespace

Form9::Form9(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form9>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form9"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    ui->DTPicker1->setDate(QDate::currentDate());
    // Columns are fitted to the rows in view, not to every row read: each
    // keystroke refits them.
    ui->DataGrid1->horizontalHeader()->setResizeContentsPrecision(kFittedRows);

    // By date the criterion is the picker's; by name or number it is typed.
    connect(ui->Option1, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            ui->Text1->setEnabled(false);
    });
    for (QRadioButton* o : {ui->Option2, ui->Option3})
        connect(o, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                ui->Text1->setEnabled(true);
        });
    onClick(ui->Command1, QStringLiteral("cargar la lista de facturas"), [this] { aplicarFiltro(); });
    connect(ui->DTPicker1, &QDateEdit::dateChanged, this, [this] {
        guarded(QStringLiteral("buscar las facturas de la fecha"), [this] { dateChanged(); });
    });
    connect(ui->Text1, &QLineEdit::textChanged, this, [this] {
        guarded(QStringLiteral("buscar las facturas"), [this] { textChanged(); });
    });
    // Scrolled to the end of the rows read: more are read once the scrolling
    // has settled (never from inside a refill of the list).
    connect(ui->DataGrid1->verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int at) {
        if (m_refilling || at == 0 || at != ui->DataGrid1->verticalScrollBar()->maximum())
            return;
        QTimer::singleShot(0, this, [this] {
            const QScrollBar* bar = ui->DataGrid1->verticalScrollBar();
            if (!m_refilling && bar->value() > 0 && bar->value() == bar->maximum())
                guarded(QStringLiteral("leer más facturas"), [this] { readMore(); });
        });
    });
    connect(ui->DataGrid1, &DataGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("mostrar los exámenes de la factura"), [this, row] { showDetail(row); });
    });
}

Form9::~Form9() = default;

void Form9::aplicarFiltro()
{
    Recordset& rs = consultas();
    rs.setFilter(QString());
    if (rs.isOpen())
        rs.close();
    const int order = ui->Option1->isChecked() ? 1 : ui->Option2->isChecked() ? 2 : 3;
    m_rowsRead = kFirstRows;
    m_order = order;
    m_name.clear();
    reopen();
    refill();
}

void Form9::reopen()
{
    Recordset& rs = consultas();
    if (rs.isOpen())
        rs.close();
    if (m_name.isEmpty())
        rs.open(orderSql(m_order), {}, m_rowsRead);
    else
        rs.open(orderSql(m_order, true), {storeLikePattern(m_name)}, m_rowsRead);
}

void Form9::refill()
{
    m_refilling = true;
    ui->DataGrid1->bind(consultas());
    ui->DataGrid1->scrollToTop();
    m_refilling = false;
}

void Form9::readMore()
{
    Recordset& rs = consultas();
    // Everything the list (and its narrowing) holds is already shown.
    if (m_order == 0 || !rs.isOpen() || ui->DataGrid1->rows() < m_rowsRead)
        return;
    QScrollBar* bar = ui->DataGrid1->verticalScrollBar();
    const int at = bar->value();
    const int current = ui->DataGrid1->currentRow();
    const QString filter = rs.filter();
    m_rowsRead = m_rowsRead > std::numeric_limits<int>::max() / 4 ? std::numeric_limits<int>::max()
                                                                  : m_rowsRead * 4;
    reopen();
    if (!filter.isEmpty())
        rs.setFilter(filter);
    m_refilling = true;
    ui->DataGrid1->bind(rs);
    ui->DataGrid1->setCurrentRow(current);
    bar->setValue(at);
    m_refilling = false;
}

void Form9::narrow(const QString& filter, const QString& name)
{
    // Only the list this screen loaded is narrowed.
    if (m_order == 0 || !consultas().isOpen())
        return;
    // A name reads that patient's invoices afresh; any other criterion
    // narrows the whole list again.
    if (name != m_name) {
        m_name = name;
        consultas().setFilter(QString());
        reopen();
    }
    // The list's own filter, as the laboratory writes it, has the last word.
    consultas().setFilter(filter);
    refill();
}

void Form9::dateChanged()
{
    narrow(QStringLiteral("fecha =") + dateLong(ui->DTPicker1->date()));
}

void Form9::textChanged()
{
    const QString typed = ui->Text1->text();
    if (typed.trimmed().isEmpty())
        return;
    if (ui->Option2->isChecked()) {
        narrow(QStringLiteral("nombre_paciente like '*") + quotedInFilter(typed) + QStringLiteral("*'"),
               QLatin1Char('*') + typed + QLatin1Char('*'));
    } else if (ui->Option3->isChecked()) {
        // A number with decimals names no invoice: the filter keeps it and finds none.
        const std::optional<std::int32_t> n = typedInvoiceNumber(typed);
        narrow(QStringLiteral("factura =")
               + (n ? QString::number(*n) : QString::number(Val(typed), 'g', 15)));
    }
}

void Form9::showDetail(int row)
{
    if (m_order == 0)
        return;
    const std::int32_t numero = toInt32(ui->DataGrid1->value(row, numberColumn(m_order)));
    Recordset& lines = amb1().rs(QStringLiteral("rsDetallefact"));
    if (!lines.isOpen())
        lines.open();
    lines.setFilter(QStringLiteral("factura =") + QString::number(numero));
    openModal(QStringLiteral("Form12"));
}
