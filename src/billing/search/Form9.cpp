#include "billing/search/Form9.h"

#include "ui_Form9.h"

#include "billing/search/invoicenumber.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(Form9)

using namespace tq;

namespace {

Recordset& consultas() { return amb1().rs(QStringLiteral("rsconsultas")); }

// The three orders of the list, all over the same join.
const char* const kPorFecha =
    "SELECT Factura.fecha, Factura.factura, Factura.cod_paciente, Pacientes.nombre_paciente, "
    "Pacientes.apellido_paciente, Factura.total, Factura.faturado, Factura.tipo_factura "
    "FROM Pacientes INNER JOIN Factura ON Pacientes.cod_paciente = Factura.cod_paciente";
const char* const kPorNombre =
    "SELECT Pacientes.nombre_paciente, Pacientes.apellido_paciente,Factura.fecha, "
    "Factura.factura, Factura.cod_paciente, Factura.total, Factura.faturado, Factura.tipo_factura "
    "FROM Pacientes INNER JOIN Factura ON Pacientes.cod_paciente = Factura.cod_paciente";
const char* const kPorNumero =
    "SELECT Factura.factura, factura.fecha, Factura.cod_paciente, Pacientes.nombre_paciente, "
    "Pacientes.apellido_paciente, Factura.total, Factura.faturado, Factura.tipo_factura "
    "FROM Pacientes INNER JOIN Factura ON Pacientes.cod_paciente = Factura.cod_paciente";

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
    rs.open(QLatin1String(order == 1 ? kPorFecha : order == 2 ? kPorNombre : kPorNumero));
    m_order = order;
    ui->DataGrid1->bind(rs);
}

void Form9::narrow(const QString& filter)
{
    // Only the list this screen loaded is narrowed.
    if (m_order == 0 || !consultas().isOpen())
        return;
    consultas().setFilter(filter);
    ui->DataGrid1->bind(consultas());
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
        narrow(QStringLiteral("nombre_paciente like '*") + quotedInFilter(typed)
               + QStringLiteral("*'"));
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
