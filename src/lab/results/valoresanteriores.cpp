#include "lab/results/valoresanteriores.h"

#include "ui_valoresanteriores.h"

#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "lab/sheets.h"
#include "lab/templates.h"

#include <QHash>
#include <QKeyEvent>
#include <QPagedPaintDevice>
#include <QTextDocument>

TQ_REGISTER_SCREEN(valoresanteriores)

using namespace tq;

namespace {

const QString kTitle = QStringLiteral("Valores Anteriores de una Boleta");

// The list of corrections: number, when, template, who authorised, who
// typed, why; the template's code out of sight.
enum ChangeCol { kNumero, kMomento, kPlantilla, kAutorizo, kTecnico, kMotivo, kCodigo, kChangeCols };
const int kChangeWidths[kChangeCols] = {500, 2300, 1800, 1300, 1300, 4200, 0};
const char* const kChangeHeads[kChangeCols] = {"No.",    "FECHA",  "PLANTILLA", "AUTORIZO",
                                               "DIGITO", "MOTIVO", "CODIGO"};

// The versions: the cell as the sheet names it, its parameter, then one
// column per version.
const int kFirstVersionCol = 2;

// A free-text page is one long text; in a grid cell it reads on one line.
QString oneLine(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& l : lines)
        l = l.trimmed();
    lines.removeAll(QString());
    return lines.join(QStringLiteral(" / "));
}

// What each cell of a template holds on paper: the parameter on that row
// of the sheet as it stands now, the comment, the parasitology captions.
QHash<QString, QString> cellNames(std::int32_t factura, int codPlantilla)
{
    QHash<QString, QString> names;
    names.insert(QStringLiteral("W"), QStringLiteral("Comentario"));
    if (codPlantilla == kParasitologia) {
        const QStringList& captions = sheets::parasitologyCaptions();
        for (int i = 0; i < captions.size(); ++i)
            names.insert(QString::number(i + 1), captions.at(i));
        return names;
    }
    if (!sheets::isGridTemplate(codPlantilla)) {
        names.insert(QStringLiteral("1"), QStringLiteral("Texto"));
        return names;
    }
    std::int32_t version = sheets::readSheet(factura, 1, codPlantilla).version;
    if (version == 0)
        version = latestVersion(codPlantilla);
    QHash<QPair<int, int>, QString> shown;
    for (const sheets::Cell& c : sheets::layOutVersion(codPlantilla, version, sheets::Normals::None))
        shown.insert({c.row, c.col}, c.text);
    // Every place the family has room for, whether the version fills it or not.
    for (int counter = 0;; ++counter) {
        const std::optional<sheets::Place> place = sheets::placeOf(codPlantilla, counter);
        if (!place)
            break;
        const QString name = shown.value({place->row, place->nameCol});
        for (int col : {place->valueCol, place->normalCol}) {
            const QChar letter = sheets::letterOfColumn(codPlantilla, col);
            if (!letter.isNull() && !name.isEmpty())
                names.insert(letter + QString::number(place->row), name);
        }
    }
    return names;
}

void setHeads(FlexGrid* g, const QStringList& heads)
{
    g->setCols(int(heads.size()));
    for (int c = 0; c < heads.size(); ++c)
        g->setTextMatrix(0, c, heads.at(c));
}

}  // namespace

valoresanteriores::valoresanteriores(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::valoresanteriores>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("valoresanteriores"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeAmountBox(ui->Text1);

    QStringList heads;
    for (const char* h : kChangeHeads)
        heads << QString::fromLatin1(h);
    setHeads(ui->Grid1, heads);
    ui->Grid1->setRows(1);
    for (int c = 0; c < kChangeCols; ++c)
        ui->Grid1->setColWidth(c, kChangeWidths[c]);
    setHeads(ui->Grid2, {QStringLiteral("CELDA"), QStringLiteral("PARAMETRO")});
    ui->Grid2->setRows(1);
    ui->Grid2->setColWidth(0, 700);
    ui->Grid2->setColWidth(1, 2400);
    ui->Command2->setEnabled(false);

    connect(ui->Text1, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);
    onClick(ui->Command1, QStringLiteral("buscar los cambios de la factura"), [this] { buscar(); });
    onClick(ui->Command2, QStringLiteral("imprimir los valores anteriores"), [this] { imprimir(); });
    connect(ui->Command3, &QPushButton::clicked, this, &QWidget::close);
    // A click or Enter on a row chooses it.
    connect(ui->Grid1, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("mostrar los valores anteriores"), [this, row] { elegir(row); });
    });
}

valoresanteriores::~valoresanteriores() = default;

void valoresanteriores::buscar()
{
    ui->Grid1->setRows(1);
    ui->Grid2->setRows(1);
    ui->Grid2->setCols(kFirstVersionCol);
    ui->Command2->setEnabled(false);
    m_changes.clear();
    m_versions = {};
    ui->Label3->setText(QStringLiteral("Valores de la boleta:"));
    if (ui->Text1->text().trimmed().isEmpty()) {
        prompts().message(QStringLiteral("Ingrese el numero de factura"));
        ui->Text1->setFocus();
        return;
    }
    m_factura = toInt32(ui->Text1->text());
    m_changes = corrections::changesOfInvoice(m_factura);
    if (m_changes.isEmpty()) {
        prompts().message(QStringLiteral("La factura %1 no tiene cambios registrados en sus "
                                         "resultados.")
                              .arg(m_factura));
        ui->Text1->setFocus();
        return;
    }
    FlexGrid* g = ui->Grid1;
    g->setRows(int(m_changes.size()) + 1);
    for (int i = 0; i < m_changes.size(); ++i) {
        const corrections::Change& c = m_changes.at(i);
        const int r = i + 1;
        g->setTextMatrix(r, kNumero, QString::number(r));
        g->setTextMatrix(r, kMomento, c.momento.toString(QStringLiteral("dd/MM/yyyy hh:mm")));
        g->setTextMatrix(r, kPlantilla, c.plantilla);
        g->setTextMatrix(r, kAutorizo, c.autorizo);
        g->setTextMatrix(r, kTecnico, c.tecnico);
        g->setTextMatrix(r, kMotivo, c.descripcion);
        g->setTextMatrix(r, kCodigo, QString::number(c.codPlantilla));
    }
    // The latest correction is the one the user most often comes for.
    g->setRow(g->rows() - 1);
    elegir(g->rows() - 1);
}

void valoresanteriores::elegir(int row)
{
    if (row < 1 || row > m_changes.size())
        return;
    const corrections::Change& c = m_changes.at(row - 1);
    showVersions(c.codPlantilla, c.plantilla);
}

void valoresanteriores::showVersions(int codPlantilla, const QString& plantilla)
{
    m_versions = corrections::versionsOf(m_factura, codPlantilla);
    m_plantilla = plantilla;
    const QHash<QString, QString> names = cellNames(m_factura, codPlantilla);

    FlexGrid* g = ui->Grid2;
    g->setRows(1);   // drops the marks of the template shown before
    setHeads(g, QStringList{QStringLiteral("CELDA"), QStringLiteral("PARAMETRO")}
                    + m_versions.titles);
    for (int c = kFirstVersionCol; c < g->cols(); ++c)
        g->setColWidth(c, 3600);
    g->setRows(int(m_versions.celdas.size()) + 1);
    m_names.clear();
    for (int i = 0; i < m_versions.celdas.size(); ++i) {
        const int r = i + 1;
        const QString& celda = m_versions.celdas.at(i);
        m_names << names.value(celda);
        g->setTextMatrix(r, 0, celda);
        g->setTextMatrix(r, 1, m_names.last());
        const QStringList& values = m_versions.values.at(i);
        for (int v = 0; v < values.size(); ++v) {
            const int col = kFirstVersionCol + v;
            g->setTextMatrix(r, col, oneLine(values.at(v)));
            const bool changed = m_versions.changed.at(i).value(v);
            g->setCellFontBold(r, col, changed);
            g->setCellBackColor(r, col, changed ? changedColour() : QColor());
            g->setCellNote(r, col, changed ? QStringLiteral("Cambió respecto de la versión anterior")
                                           : QString());
        }
    }
    ui->Label3->setText(QStringLiteral("Valores de la boleta: %1").arg(plantilla));
    ui->Command2->setEnabled(true);
}

// The page printed: the versions as the grid shows them, the changed cells
// marked the same way, and the corrections listed.
QString valoresanteriores::printedPage() const
{
    const QString mark = changedColour().name();
    QString html = QStringLiteral("<h3>%1</h3><p>Factura: %2 &nbsp;&nbsp; Plantilla: %3</p>")
                       .arg(kTitle)
                       .arg(m_factura)
                       .arg(m_plantilla.toHtmlEscaped());
    html += QStringLiteral("<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\"><tr>"
                           "<th>CELDA</th><th>PARAMETRO</th>");
    for (const QString& t : m_versions.titles)
        html += QStringLiteral("<th>%1</th>").arg(t.toHtmlEscaped());
    html += QStringLiteral("</tr>");
    for (int i = 0; i < m_versions.celdas.size(); ++i) {
        html += QStringLiteral("<tr><td>%1</td><td>%2</td>")
                    .arg(m_versions.celdas.at(i).toHtmlEscaped(), m_names.value(i).toHtmlEscaped());
        const QStringList& values = m_versions.values.at(i);
        for (int v = 0; v < values.size(); ++v) {
            const QString text = oneLine(values.at(v)).toHtmlEscaped();
            html += m_versions.changed.at(i).value(v)
                        ? QStringLiteral("<td bgcolor=\"%1\"><b>%2</b></td>").arg(mark, text)
                        : QStringLiteral("<td>%1</td>").arg(text);
        }
        html += QStringLiteral("</tr>");
    }
    html += QStringLiteral("</table><h4>Cambios registrados</h4>"
                           "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\"><tr>");
    for (int c = 0; c < kCodigo; ++c)
        html += QStringLiteral("<th>%1</th>").arg(QString::fromLatin1(kChangeHeads[c]));
    html += QStringLiteral("</tr>");
    for (int r = 1; r < ui->Grid1->rows(); ++r) {
        html += QStringLiteral("<tr>");
        for (int c = 0; c < kCodigo; ++c)
            html += QStringLiteral("<td>%1</td>").arg(ui->Grid1->textMatrix(r, c).toHtmlEscaped());
        html += QStringLiteral("</tr>");
    }
    return html + QStringLiteral("</table>");
}

void valoresanteriores::imprimir()
{
    if (m_versions.titles.isEmpty())
        return;
    const QString html = printedPage();
    prompts().print(
        [html](QPagedPaintDevice& device) {
            QTextDocument doc;
            doc.setHtml(html);
            doc.print(&device);
        },
        kTitle);
}
