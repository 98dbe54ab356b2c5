#include "lab/results/FImpresionResult.h"

#include "ui_FImpresionResult.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/results/storedsheetopen.h"
#include "registers/pickers.h"

#include <QKeyEvent>
#include <QVector>

TQ_REGISTER_SCREEN(FImpresionResult)

using namespace tq;

namespace {

enum Col { Factura, Fecha, Paciente, CodExamen, Examen, Tecnico, FechaResultado, CodPaciente,
           IdFormato, Cols };


}  // namespace

FImpresionResult::FImpresionResult(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::FImpresionResult>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FImpresionResult"));
    setAttribute(Qt::WA_DeleteOnClose);

    connect(ui->Option1, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            porPaciente();
    });
    connect(ui->Option2, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            todos();
    });
    onClick(ui->Command1, QStringLiteral("buscar el paciente"), [this] { buscarPaciente(); });
    onClick(ui->Command3, QStringLiteral("buscar los resultados pendientes"), [this] { buscar(); });
    // A click or Enter on a row chooses it.
    connect(ui->Grid1, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("abrir el resultado"), [this, row] { elegir(row); });
    });

    {
        const QSignalBlocker quiet(ui->Option2);
        ui->Option2->setChecked(true);
    }
    ui->Command1->setEnabled(false);
    state().clientPicker = static_cast<std::int16_t>(PatientCaller::ResultPrinting);
    limpia();
    configurargrid();
    guarded(QStringLiteral("cargar los resultados pendientes"), [this] { consultar(); });
}

FImpresionResult::~FImpresionResult() = default;

QString FImpresionResult::sql(bool onePatient)
{
    // The printed flag and the evaluated flag stay literal: the store's
    // partial index of lines not yet printed serves only a query that says so.
    QString text = QStringLiteral(
        "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, Pacientes.nombre_paciente, "
        "Pacientes.apellido_paciente, FacturaDetalle.cod_descripcionexamen, Examenes.examen, "
        "FacturaDetalle.tecnico, FacturaDetalle.fecha_llenado, FacturaDetalle.iduniversalformato "
        "FROM Pacientes, Factura, Examenes, FacturaDetalle "
        "WHERE Pacientes.cod_paciente = Factura.cod_paciente "
        "AND Factura.factura = FacturaDetalle.factura "
        "AND Examenes.cod_descripcionexamen = FacturaDetalle.cod_descripcionexamen "
        "AND FacturaDetalle.num_impresion = 0 AND FacturaDetalle.evaluado = TRUE");
    if (onePatient)
        text += QStringLiteral(" AND Factura.cod_paciente = ?");
    return text;
}

QString FImpresionResult::patientSql()
{
    return QStringLiteral("SELECT nombre_paciente, apellido_paciente, sexo, fecha_nacimiento, "
                          "direccion_paciente, tel_paciente, cel_paciente, correo "
                          "FROM Pacientes WHERE cod_paciente = ?");
}

void FImpresionResult::configurargrid()
{
    ui->Grid1->setColumns({{"FACTURA", 1000},
                           {"FECHA", 1500},
                           {"PACIENTE", 3000},
                           {"COD EXAMEN", 500},
                           {"EXAMEN", 3000},
                           {"TECNICO", 1500},
                           {"FECHA RESULTADO", 1500},
                           {"COD PACIENTE", 0},
                           {"ID FORMATO", 0}});
}

// The patient's labels and name emptied, no patient or invoice held.
void FImpresionResult::limpia()
{
    for (QLabel* l : {ui->Label6, ui->Label7, ui->Label8, ui->Label9, ui->Label10})
        l->clear();
    ui->Text1->clear();
    m_codPaciente = 0;
    m_factura = 0;
}

// The pending lines, every cell green and bold. In the store's own order:
// the list has never been sorted.
void FImpresionResult::consultar()
{
    Recordset rs;
    if (ui->Option1->isChecked())
        rs.open(sql(true), {m_codPaciente});
    else
        rs.open(sql(false));
    const int n = rs.recordCount();
    FlexGrid* g = ui->Grid1;
    if (n == 0) {
        g->setRows(2);
        for (int c = 0; c < Cols; ++c)
            g->setTextMatrix(1, c, QString());
        prompts().message(results::kNoLines);
        return;
    }
    QVector<QStringList> columns(Cols);
    for (QStringList& c : columns)
        c.reserve(n);
    for (int r = 0; r < n; ++r) {
        columns[Factura] << rs.valueAt(r, 0).toString();
        columns[Fecha] << dateLong(storedDate(rs.valueAt(r, 1)));
        columns[CodPaciente] << rs.valueAt(r, 2).toString();
        columns[Paciente] << rs.valueAt(r, 3).toString() + QLatin1Char(' ')
                                 + rs.valueAt(r, 4).toString();
        columns[CodExamen] << rs.valueAt(r, 5).toString();
        columns[Examen] << rs.valueAt(r, 6).toString();
        columns[Tecnico] << rs.valueAt(r, 7).toString();
        columns[FechaResultado] << dateLong(storedDate(rs.valueAt(r, 8)));
        columns[IdFormato] << rs.valueAt(r, 9).toString();
    }
    g->setRows(n + 1);
    for (int c = 0; c < Cols; ++c)
        g->setColumnTexts(c, columns[c]);
    const QColor green = results::unprintedColour();
    {
        // One repaint for the whole list rather than one notice per cell.
        const QSignalBlocker quiet(g->flexModel());
        for (int r = 1; r <= n; ++r)
            for (int c = 0; c < Cols; ++c) {
                g->setCellBackColor(r, c, green);
                g->setCellFontBold(r, c, true);
            }
    }
    g->viewport()->update();
}

void FImpresionResult::porPaciente()
{
    ui->Command1->setEnabled(true);
    limpia();
    ui->Grid1->clear();
    ui->Grid1->setRows(2);
    configurargrid();
}

void FImpresionResult::todos()
{
    limpia();
    ui->Command1->setEnabled(false);
}

void FImpresionResult::buscarPaciente()
{
    const auto p = choosePatient(PatientCaller::ResultPrinting);
    if (!p)
        return;
    showPatient(p->code);
    ui->Text1->setText(p->name);
    m_codPaciente = p->code;
}

void FImpresionResult::buscar()
{
    FlexGrid* g = ui->Grid1;
    g->clear();
    g->setRows(2);
    configurargrid();
    consultar();
}

// The patient's labels from his record; false when there is no such patient.
bool FImpresionResult::showPatient(std::int32_t code)
{
    Recordset rs;
    rs.open(patientSql(), {code});
    if (rs.recordCount() == 0)
        return false;
    ui->Label6->setText(rs.text(QStringLiteral("sexo")));
    ui->Label7->setText(dateLong(storedDate(rs.field(QStringLiteral("fecha_nacimiento")))));
    ui->Label8->setText(rs.text(QStringLiteral("direccion_paciente")));
    ui->Label9->setText(rs.text(QStringLiteral("tel_paciente")) + QStringLiteral(" / ")
                        + rs.text(QStringLiteral("cel_paciente")));
    ui->Label10->setText(rs.text(QStringLiteral("correo")));
    ui->Text1->setText(rs.text(QStringLiteral("nombre_paciente")) + QLatin1Char(' ')
                       + rs.text(QStringLiteral("apellido_paciente")));
    return true;
}

void FImpresionResult::elegir(int row)
{
    std::optional<results::ChosenLine> chosen = results::lineAt(ui->Grid1, row, IdFormato);
    if (!chosen)
        return;
    results::ChosenLine& line = *chosen;
    const std::int32_t patient = toInt32(ui->Grid1->textMatrix(row, CodPaciente));
    m_factura = line.factura;
    state().idFormatoActual = line.formatId;
    // A patient deleted since the list was read: nothing happens.
    if (!showPatient(patient))
        return;
    line.paciente = ui->Text1->text();
    if (!results::openStoredLine(line))
        return;

    // The sheet is closed: the list again for every patient.
    {
        const QSignalBlocker quiet(ui->Option2);
        ui->Option2->setChecked(true);
    }
    todos();
    state().clientPicker = static_cast<std::int16_t>(PatientCaller::ResultPrinting);
    buscar();
}
