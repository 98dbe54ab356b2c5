#include "accounts/credit/Mabonos.h"

#include "ui_Mabonos.h"

#include "accounts/credit/instalments.h"
#include "billing/search/voiding.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QShortcut>
#include <cmath>

TQ_REGISTER_SCREEN(Mabonos)

using namespace tq;

namespace {

// The most a "#.00" amount of the store holds (twelve digits, two decimals).
constexpr long long kMaxCents = 999999999999LL;

enum PendingColumn { ColFactura, ColPaciente, ColFecha, ColTotal };

}  // namespace

Mabonos::Mabonos(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Mabonos>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Mabonos"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);

    ui->Grid1->setColumns({{"FACTURA", 1500}, {"PACIENTE", 4000}, {"FECHA", 1200}, {"TOTAL", 1200}});
    ui->Grid1->setRows(1);
    ui->Grid2->setColumns({{"FECHA", 1200}, {"ABONO", 1200}, {"CUOTA", 800}});
    ui->Grid2->setRows(1);
    ui->DT1->setDate(QDate::currentDate());
    makeAmountBox(ui->Text4);
    connect(ui->Text4, &QLineEdit::returnPressed, ui->Command3, &QPushButton::click);
    ui->Command4->setEnabled(false);

    connect(ui->Grid1, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("mostrar el estado de la factura"), [this, row] { choose(row); });
    });
    onClick(ui->Command3, QStringLiteral("registrar el abono"), [this] { abonar(); });
    onClick(ui->Command2, QStringLiteral("limpiar la factura"), [this] { cancelar(); });
    onClick(ui->Command4, QStringLiteral("mostrar la factura"), [this] { imprimir(); });
    connect(ui->Command1, &QPushButton::clicked, this, &QWidget::close);

    guarded(QStringLiteral("cargar las facturas pendientes"), [this] { loadPending(); });
}

Mabonos::~Mabonos() = default;

void Mabonos::loadPending()
{
    // Voided invoices and those charged to an insurer stand here as well:
    // a payment taken at the desk is a payment all the same.
    Recordset rs;
    rs.open(QStringLiteral(
        "SELECT Factura.factura, Factura.pagada, Factura.credito, Factura.cod_paciente, "
        "Pacientes.nombre_paciente, Pacientes.apellido_paciente, Factura.fecha, Factura.total "
        "FROM Pacientes INNER JOIN Factura ON Pacientes.cod_paciente = Factura.cod_paciente "
        "WHERE Factura.pagada = FALSE AND Factura.credito = TRUE "
        "ORDER BY Pacientes.nombre_paciente, Factura.factura"));
    const int n = rs.recordCount();
    QStringList numbers, names, dates, totals;
    numbers.reserve(n);
    names.reserve(n);
    dates.reserve(n);
    totals.reserve(n);
    for (int r = 0; r < n; ++r) {
        numbers << QString::number(toInt32(rs.valueAt(r, QStringLiteral("factura"))));
        names << rs.valueAt(r, QStringLiteral("nombre_paciente")).toString() + QLatin1Char(' ')
                     + rs.valueAt(r, QStringLiteral("apellido_paciente")).toString();
        dates << dateLong(storedDate(rs.valueAt(r, QStringLiteral("fecha"))));
        totals << money(rs.valueAt(r, QStringLiteral("total")));
    }
    FlexGrid* g = ui->Grid1;
    g->setRows(1);
    if (n == 0)
        return;
    g->setRows(n + 1);
    g->setColumnTexts(ColFactura, numbers);
    g->setColumnTexts(ColPaciente, names);
    g->setColumnTexts(ColFecha, dates);
    g->setColumnTexts(ColTotal, totals);
}

void Mabonos::choose(int row)
{
    const QString number = ui->Grid1->textMatrix(row, ColFactura).trimmed();
    if (number.isEmpty())
        return;
    m_factura = toInt32(number);
    ui->Label10->setText(QString::number(m_factura));
    ui->Label11->setText(ui->Grid1->textMatrix(row, ColPaciente));
    showStanding();
    ui->Command4->setEnabled(true);
}

void Mabonos::showStanding()
{
    const CreditStanding s = creditStanding(m_factura);
    ui->Text1->setText(money(double(s.total) / 100.0));
    ui->Text2->setText(money(double(s.paid) / 100.0));
    ui->Text3->setText(money(double(s.balance()) / 100.0));
    ui->Label7->setText(QString::number(s.count));

    Recordset rs;
    rs.open(QStringLiteral("SELECT fecha, abono, numero FROM creditos WHERE factura = ? "
                           "ORDER BY numero"),
            {m_factura});
    FlexGrid* g = ui->Grid2;
    g->setRows(1);
    g->setRows(rs.recordCount() + 1);
    for (int r = 0; r < rs.recordCount(); ++r) {
        g->setTextMatrix(r + 1, 0, dateLong(storedDate(rs.valueAt(r, QStringLiteral("fecha")))));
        g->setTextMatrix(r + 1, 1, money(rs.valueAt(r, QStringLiteral("abono"))));
        g->setTextMatrix(r + 1, 2, QString::number(toInt32(rs.valueAt(r, QStringLiteral("numero")))));
    }
}

void Mabonos::refuse(const QString& message)
{
    prompts().message(message, Icon::Exclamation);
    ui->Text4->setFocus();
}

void Mabonos::abonar()
{
    if (m_factura == 0) {
        prompts().message(QStringLiteral("Elija primero en la lista de facturas pendientes la "
                                         "factura a la que se abona."),
                          Icon::Exclamation);
        ui->Grid1->setFocus();
        return;
    }
    const QString typed = ui->Text4->text().trimmed();
    const double amount = Val(typed);
    if (typed.isEmpty() || amount == 0) {
        refuse(QStringLiteral("debe igresar la cantidad a abonar"));
        return;
    }
    if (!std::isfinite(amount) || std::fabs(amount) * 100.0 > double(kMaxCents)) {
        refuse(QStringLiteral("El abono es demasiado grande: no puede pasar de 9999999999.99."));
        return;
    }
    if (amount < 0) {
        refuse(QStringLiteral("El abono no puede ser negativo."));
        return;
    }
    const long long cents = centsOf(amount);
    if (std::fabs(amount * 100.0 - double(cents)) > 1e-6) {
        refuse(QStringLiteral("El abono no puede tener más de dos decimales."));
        return;
    }
    if (cents > centsOf(Val(ui->Text3->text()))) {
        refuse(QStringLiteral("la cuota no puede ser mayor que el saldo"));
        return;
    }

    InstalmentSaved saved;
    try {
        saved = saveInstalment(m_factura, ui->DT1->date(), amount);
    } catch (const InstalmentTooLarge& e) {
        // Another station took a payment on this invoice meanwhile: the
        // balance shown is that of now.
        showStanding();
        refuse(e.message());
        return;
    }
    prompts().message(QStringLiteral("el pago de abono se efectuo con exito"), Icon::Information);
    if (saved.closed) {
        ui->Command4->setEnabled(false);
        prompts().message(QStringLiteral("la factura se cancelo completamente"), Icon::Information);
        loadPending();
        return;
    }
    showStanding();
    ui->Text4->clear();
}

void Mabonos::imprimir()
{
    if (m_factura == 0)
        return;
    const QString filter = QStringLiteral("factura =") + QString::number(m_factura);
    const bool anulada = openInvoiceCopy(m_factura);
    Recordset& rs = amb1().rs(QStringLiteral("rsrfact1"));
    QString extra;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        extra = rs.text(QStringLiteral("adicional")).trimmed();

    if (anulada) {
        // The voided copy beside the voiding box, as the voiding screen shows
        // it. The box goes with this screen, which would otherwise keep it
        // out of reach while it is open.
        QWidget* box = showVoidingBox(m_factura, true, true);
        const QPoint at = box->pos();
        box->setParent(this, box->windowFlags() | Qt::Window);
        box->move(at);
        box->show();
        return;
    }
    ReportRun run;
    run.report = QStringLiteral("DataReport20");
    run.command = QStringLiteral("rsrfact1");
    run.filter = filter;
    run.heading = 20;
    run.captions.insert(QStringLiteral("Etiqueta3"),
                        extra.isEmpty() ? QStringLiteral("Otros") : extra);
    run.show = ReportRun::Show::Printer;
    runReport(run, this);
}

void Mabonos::cancelar()
{
    m_factura = 0;
    for (QLineEdit* box : {ui->Text1, ui->Text2, ui->Text3, ui->Text4})
        box->clear();
    for (QLabel* label : {ui->Label7, ui->Label10, ui->Label11})
        label->clear();
    ui->Grid2->setRows(1);
    ui->Command4->setEnabled(false);
}
