#include "lab/results/FHistorial.h"

#include "ui_FHistorial.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/results/storedsheetopen.h"

#include <QKeyEvent>
#include <QVector>
#include <algorithm>
#include <numeric>

TQ_REGISTER_SCREEN(FHistorial)

using namespace tq;

namespace {

enum Col { Factura, Fecha, CodExamen, Examen, Tecnico, FechaResultado, Impresiones, CodPaciente,
           Id, Cols };


// A row never printed stands out: every cell green and bold.
void markUnprinted(FlexGrid* g, int row, bool unprinted)
{
    for (int c = 0; c < g->cols(); ++c) {
        g->setCellBackColor(row, c, unprinted ? results::unprintedColour() : QColor());
        g->setCellFontBold(row, c, unprinted);
    }
}

}  // namespace

FHistorial::FHistorial(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::FHistorial>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FHistorial"));
    setAttribute(Qt::WA_DeleteOnClose);
    configurargrid();

    const QList<std::pair<QRadioButton*, Order>> orders = {
        {ui->Option3, Order::Factura}, {ui->Option1, Order::Fecha}, {ui->Option2, Order::Examen}};
    for (const auto& [option, order] : orders)
        connect(option, &QRadioButton::toggled, this, [this, order = order](bool on) {
            if (on)
                ordenar(order);
        });
    // A click or Enter on a row chooses it.
    connect(ui->Grid1, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("abrir el resultado"), [this, row] { elegir(row); });
    });
    connect(ui->Command1, &QPushButton::clicked, this, [this] {
        m_codPaciente = 0;
        close();
    });
}

FHistorial::~FHistorial() = default;

QString FHistorial::sql()
{
    return QStringLiteral(
        "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, "
        "FacturaDetalle.cod_descripcionexamen, FacturaDetalle.iduniversalformato, "
        "Examenes.examen, FacturaDetalle.num_impresion, FacturaDetalle.tecnico, "
        "FacturaDetalle.fecha_llenado "
        "FROM Pacientes, Factura, Examenes, FacturaDetalle "
        "WHERE Pacientes.cod_paciente = Factura.cod_paciente "
        "AND Factura.factura = FacturaDetalle.factura "
        "AND Examenes.cod_descripcionexamen = FacturaDetalle.cod_descripcionexamen "
        "AND FacturaDetalle.evaluado = TRUE AND Factura.cod_paciente = ?");
}

// The patient screen hands the patient over between making the screen and
// showing it.
void FHistorial::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_loaded)
        return;
    m_loaded = true;
    guarded(QStringLiteral("cargar el historial del paciente"), [this] {
        m_codPaciente = toInt32(property("cod_paciente"));
        cargar();
    });
}

void FHistorial::configurargrid()
{
    ui->Grid1->setColumns({{"FACTURA", 1000},
                           {"FECHA", 1500},
                           {"COD EXAMEN", 0},
                           {"EXAMEN", 4000},
                           {"TECNICO", 2000},
                           {"FECHA RESULTADO", 1500},
                           {"IMPRESIONES", 0},
                           {"cod paciente", 0},
                           {"Id", 0}});
}

void FHistorial::cargar()
{
    FlexGrid* g = ui->Grid1;
    g->clear();
    g->setRows(2);
    configurargrid();
    Recordset rs;
    rs.open(sql(), {m_codPaciente});
    const int n = rs.recordCount();
    if (n == 0) {
        prompts().message(results::kNoLines);
        return;
    }
    QVector<QStringList> columns(Cols);
    for (QStringList& c : columns)
        c.reserve(n);
    QVector<bool> unprinted(n);
    for (int r = 0; r < n; ++r) {
        columns[Factura] << rs.valueAt(r, 0).toString();
        columns[Fecha] << dateLong(storedDate(rs.valueAt(r, 1)));
        columns[CodPaciente] << rs.valueAt(r, 2).toString();
        columns[CodExamen] << rs.valueAt(r, 3).toString();
        columns[Id] << rs.valueAt(r, 4).toString();
        columns[Examen] << rs.valueAt(r, 5).toString();
        const QVariant printed = rs.valueAt(r, 6);
        columns[Impresiones] << printed.toString();
        unprinted[r] = !(printed.toInt() > 0);
        columns[Tecnico] << rs.valueAt(r, 7).toString();
        columns[FechaResultado] << dateLong(storedDate(rs.valueAt(r, 8)));
    }
    g->setRows(n + 1);
    for (int c = 0; c < Cols; ++c)
        g->setColumnTexts(c, columns[c]);
    for (int r = 0; r < n; ++r)
        if (unprinted[r])
            markUnprinted(g, r + 1, true);
}

// Invoice and date sort as numbers, descending, read from the cell's text as
// typed numbers are (a date reads as its day); the exam as text, ascending,
// capitals before small letters. Each row keeps its colour.
void FHistorial::ordenar(Order order)
{
    FlexGrid* g = ui->Grid1;
    const int n = g->rows() - 1;
    if (n < 2)
        return;
    QVector<QStringList> rows(n);
    QVector<bool> unprinted(n);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < Cols; ++c)
            rows[r] << g->textMatrix(r + 1, c);
        unprinted[r] = g->cellFontBold(r + 1, 0);
    }
    QVector<int> at(n);
    std::iota(at.begin(), at.end(), 0);
    if (order == Order::Examen) {
        std::stable_sort(at.begin(), at.end(), [&](int a, int b) {
            return QString::compare(rows[a][Examen], rows[b][Examen], Qt::CaseSensitive) < 0;
        });
    } else {
        const int col = order == Order::Factura ? Factura : Fecha;
        QVector<double> key(n);
        for (int r = 0; r < n; ++r)
            key[r] = Val(rows[r][col]);
        std::stable_sort(at.begin(), at.end(), [&](int a, int b) { return key[a] > key[b]; });
    }
    for (int c = 0; c < Cols; ++c) {
        QStringList texts;
        texts.reserve(n);
        for (int r = 0; r < n; ++r)
            texts << rows[at[r]][c];
        g->setColumnTexts(c, texts);
    }
    for (int r = 0; r < n; ++r)
        markUnprinted(g, r + 1, unprinted[at[r]]);
}

void FHistorial::elegir(int row)
{
    std::optional<results::ChosenLine> line = results::lineAt(ui->Grid1, row, Id);
    if (!line)
        return;
    // The name the patient screen gave: no patient is read here.
    line->paciente = ui->Label9->text();
    results::openStoredLine(*line);
}
