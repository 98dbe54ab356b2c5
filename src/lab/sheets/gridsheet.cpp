#include "lab/sheets/gridsheet.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "lab/normalvalue.h"
#include "lab/templates.h"
#include "lab/worktable.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QScopeGuard>
#include <algorithm>

namespace tq::sheets {

namespace {

void say(const QString& text)
{
    prompts().message(text, Icon::Information);
}

}  // namespace

// ------------------------------------------------------------------ the page

SheetScreen::SheetScreen(int codPlantilla, QWidget* parent, const SheetTraits& traits)
    : QMainWindow(parent), m_code(codPlantilla), m_traits(traits)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

void SheetScreen::attach(QWidget* pagina, const SheetMenu& menu)
{
    m_page.emplace(pagina);
    m_menu = menu;
    // The page is the sheet on paper: white, whatever the desktop's colours.
    QPalette paper = pagina->palette();
    paper.setColor(QPalette::Window, Qt::white);
    paper.setColor(QPalette::WindowText, Qt::black);
    pagina->setPalette(paper);
    pagina->setAutoFillBackground(true);

    const auto wire = [](QAction* action, const QString& what, std::function<void()> fn) {
        if (action)
            onTriggered(action, what, std::move(fn));
    };
    wire(menu.guardar, QStringLiteral("guardar el resultado"), [this] { guardar(); });
    wire(menu.imprimir, QStringLiteral("imprimir la hoja de resultados"), [this] { imprimir(); });
    wire(menu.pdf, QStringLiteral("imprimir la hoja de resultados"), [this] { crearPdf(); });
    wire(menu.pdfArchivo, QStringLiteral("guardar la hoja de resultados como PDF"),
         [this] { guardarPdf(); });
    if (menu.salir)
        connect(menu.salir, &QAction::triggered, this, [this] {
            beforeLeaving();
            close();
        });

    guarded(QStringLiteral("leer los datos del laboratorio para el encabezado"),
            [this] { page().fillHeading(m_traits.headingWithEmail); });
}

void SheetScreen::startEntry(const SheetContext& context,
                             std::function<void(const SavedSheet&)> onSaved)
{
    const PickedExam first = context.picks.value(0);
    page().setPatient(first.paciente, dateLong(context.today), first.edad);
    layOutEntry(context);
    m_context = context;
    m_onSaved = std::move(onSaved);
}

void SheetScreen::showStored(const StoredSheet& sheet, const StoredHeading& heading)
{
    page().setPatient(heading.paciente, heading.fecha, heading.edad);
    fillStored(sheet);
    lockStored();
    m_reprint = true;
}

void SheetScreen::lockStored()
{
    if (m_menu.guardar)
        m_menu.guardar->setEnabled(false);
}

void SheetScreen::startCorrection(const StoredSheet& sheet, const StoredHeading& heading,
                                  const corrections::Target& target,
                                  std::function<QString()> reason,
                                  std::function<void(const corrections::Saved&)> onSaved)
{
    page().setPatient(heading.paciente, heading.fecha, heading.edad);
    fillStored(sheet);
    m_correction = target;
    m_reason = std::move(reason);
    m_onCorrected = std::move(onSaved);
}

std::int32_t SheetScreen::formatId() const
{
    // A stored sheet marks what the lists last opened, as the program
    // always did: the sheet of the current format id.
    if (m_reprint)
        return state().idFormatoActual;
    if (m_saved)
        return m_saved->formatId;
    return m_context ? m_context->proposedFormatId : 0;
}

void SheetScreen::guardar()
{
    if (m_correction) {
        corregir();
        return;
    }
    if (!m_context) {
        say(notStartedMessage());
        return;
    }
    if (m_saved)
        return;   // a sheet is saved once
    const SavedSheet saved = store(*m_context);
    m_saved = saved;
    m_menu.guardar->setEnabled(false);
    if (saved.formatIdMoved)
        say(QStringLiteral("El número de formato %1 ya fue usado en otra estación; la hoja se "
                           "guardó con el número de formato %2.")
                .arg(m_context->proposedFormatId)
                .arg(saved.formatId));
    // The free-text page went onto every invoice listed, and says so for each.
    const qsizetype told = m_traits.savedPerInvoice ? m_context->invoices.size() : 1;
    for (qsizetype i = 0; i < told; ++i)
        say(QStringLiteral("El resultado ha sido guardado exitosamente"));
    if (m_onSaved)
        m_onSaved(saved);
}

QString SheetScreen::notStartedMessage() const
{
    return QStringLiteral("Esta hoja no se abrió desde la mesa de trabajo para ningún examen, "
                          "así que no se guardó nada.");
}

// The sheet typed over replaces the stored one, and the change is logged
// with what the sheet held before; then the screen closes.
void SheetScreen::corregir()
{
    if (m_corrected)
        return;
    const QString descripcion = m_reason ? m_reason() : QString();
    if (descripcion.isEmpty()) {
        prompts().message(corrections::kNoReason, Icon::Exclamation);
        return;
    }
    m_corrected = storeCorrection(*m_correction, descripcion);
    if (m_menu.guardar)
        m_menu.guardar->setEnabled(false);
    if (m_onCorrected)
        m_onCorrected(*m_corrected);
    say(corrections::kCorrected);
    close();
}

// The sheet as it stands, on the default printer; only a sheet that reached
// the printer leaves the list of sheets waiting to be printed (where the
// family marks it at all).
void SheetScreen::imprimir()
{
    bool printed = false;
    onPaper([&] { printed = page().printOnDefaultPrinter(); });
    if (printed && m_traits.marksPrinted)
        marcarImpresion(formatId());
}

// Through the printer dialog, where a PDF printer may be chosen; the sheet
// stays waiting to be printed.
void SheetScreen::crearPdf()
{
    onPaper([this] { page().printWithDialog(); });
}

void SheetScreen::guardarPdf()
{
    onPaper([this] { page().saveAsPdf(proposedPdfName()); });
}

// The sheet goes on paper as the patient reads it: without the text cursor,
// the focus frame or the grid's cursor, which come back afterwards. The
// family hides its own first, while the focus still stands where it was.
void SheetScreen::onPaper(const std::function<void()>& job)
{
    QPointer<QWidget> focused = QApplication::focusWidget();
    if (focused && !m_page->page()->isAncestorOf(focused))
        focused = nullptr;
    setPrinting(true);
    if (focused)
        focused->clearFocus();
    const auto restore = qScopeGuard([&] {
        setPrinting(false);
        if (focused)
            focused->setFocus();
    });
    job();
}

QString SheetScreen::shownPatient() const
{
    const auto* patient = m_page->page()->findChild<QLabel*>(QStringLiteral("lblPaciente"));
    return patient ? patient->text() : QString();
}

QString SheetScreen::proposedPdfName() const
{
    QString name = sheetTitle(m_code);
    if (const QString patient = shownPatient().simplified(); !patient.isEmpty())
        name += QStringLiteral(" - ") + patient;
    // Only what every file system takes in a name.
    static const QRegularExpression unsafe(QStringLiteral("[^\\w .,-]"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    name.replace(unsafe, QStringLiteral("_"));
    return name.left(120) + QStringLiteral(".pdf");
}

// ------------------------------------------------------------------ the grid

GridSheet::GridSheet(int codPlantilla, QWidget* parent) : SheetScreen(codPlantilla, parent) {}

void GridSheet::attachGrid(QWidget* pagina, FlexGrid* grid, QPlainTextEdit* comment,
                           const QList<int>& widths, const SheetMenu& menu)
{
    m_grid = grid;
    m_comment = comment;
    m_comment->setTabChangesFocus(true);
    shapeGrid(widths);
    connect(m_grid, &FlexGrid::rowClicked, this, &GridSheet::clicked);
    connect(m_grid, &FlexGrid::cellKeyPressed, this, &GridSheet::keyPressed);
    attach(pagina, menu);
}

void GridSheet::shapeGrid(const QList<int>& widths)
{
    const GridShape& shape = gridShape(templateCode());
    m_grid->setCols(shape.cols);
    m_grid->setRows(shape.rows);
    for (const HeaderCell& h : shape.headers)
        m_grid->setTextMatrix(h.row, h.col, h.text);
    if (shape.secondHeaderRow > 0)
        for (int c = 0; c < shape.cols; ++c) {
            m_grid->setCellBackColor(shape.secondHeaderRow, c,
                                     m_grid->palette().color(QPalette::Button));
            m_grid->setCellFontBold(shape.secondHeaderRow, c, true);
        }
    for (int c = 0; c < shape.cols; ++c)
        m_grid->setColWidth(c, widths.value(c, 1500));

    // The headers were aligned with blanks; they keep them. The whole grid
    // stands on the page, as on paper: no scrolling.
    QHeaderView* header = m_grid->horizontalHeader();
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setStretchLastSection(true);
    m_grid->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_grid->setFixedHeight(header->sizeHint().height()
                           + (shape.rows - 1) * m_grid->verticalHeader()->defaultSectionSize()
                           + 2 * m_grid->frameWidth());
}

QString GridSheet::comment() const
{
    return m_comment->toPlainText();
}

void GridSheet::showLayout(const QList<Cell>& cells)
{
    const int secondHeader = gridShape(templateCode()).secondHeaderRow;
    for (int r = 1; r < m_grid->rows(); ++r)
        if (r != secondHeader)
            for (int c = 0; c < m_grid->cols(); ++c)
                m_grid->setTextMatrix(r, c, QString());
    for (const Cell& cell : cells)
        if (cell.row >= 0 && cell.row < m_grid->rows() && cell.col >= 0
            && cell.col < m_grid->cols())
            m_grid->setTextMatrix(cell.row, cell.col, cell.text);
    fitColumns();
}

// A name, normal value or result longer than its column widens it, and the
// grid (the page with it) grows to hold every column: nothing on the sheet
// is cut short, on screen or on paper.
void GridSheet::fitColumns()
{
    int total = 2 * m_grid->frameWidth();
    for (int c = 0; c < m_grid->cols(); ++c) {
        // Some room beyond the screen's measure: text on paper is laid out
        // without the screen's hinting and comes out a little wider.
        const int wanted = c == 0 ? 0 : m_grid->contentWidth(c) * 23 / 20;
        if (wanted > m_grid->columnWidth(c))
            m_grid->setColumnWidth(c, wanted);   // the last column stretches instead
        total += std::max(wanted, m_grid->columnWidth(c));
    }
    m_grid->setMinimumWidth(total);
    // The page was given its paper's width; it grows with the grid.
    QWidget* sheet = page().page();
    const QMargins margins = sheet->layout() ? sheet->layout()->contentsMargins() : QMargins();
    sheet->setMinimumWidth(std::max(sheet->minimumWidth(), total + margins.left() + margins.right()));
}

void GridSheet::layOutEntry(const SheetContext& context)
{
    const int code = templateCode();
    showLayout(layOutVersion(code, latestVersion(code), Normals::Entry,
                             patientClassOfInvoice(context.factura)));
}

void GridSheet::fillStored(const StoredSheet& sheet)
{
    const RebuiltGrid rebuilt = rebuildGrid(sheet);
    showLayout(rebuilt.cells);
    m_comment->setPlainText(rebuilt.comment);
}

void GridSheet::lockStored()
{
    SheetScreen::lockStored();
    m_locked = true;
    m_grid->setFocusPolicy(Qt::ClickFocus);
    m_comment->setReadOnly(true);
}

corrections::Saved GridSheet::storeCorrection(const corrections::Target& target,
                                              const QString& descripcion)
{
    const int code = templateCode();
    return corrections::saveGrid(
        target, descripcion,
        gridCells(code, m_grid->rows(), [this](int r, int c) { return m_grid->textMatrix(r, c); }),
        comment());
}

SavedSheet GridSheet::store(const SheetContext& context)
{
    const int code = templateCode();
    return saveGridSheet(code,
                         gridCells(code, m_grid->rows(),
                                   [this](int r, int c) { return m_grid->textMatrix(r, c); }),
                         comment(), context);
}

void GridSheet::setPrinting(bool printing)
{
    if (printing) {
        m_grid->selectionModel()->clearCurrentIndex();
        m_grid->clearSelection();
    } else {
        m_grid->setRow(m_grid->row());
    }
}

// Results are typed only in the value columns (and the normal columns the
// family lets the technician correct); the second header of urinalysis is
// not a row of results.
bool GridSheet::typable(int row, int col) const
{
    const GridShape& shape = gridShape(templateCode());
    return !m_locked && row >= 1 && row < m_grid->rows() && row != shape.secondHeaderRow
           && shape.editableCols.contains(col);
}

// Hematology starts a result afresh on a click in its first value column;
// the other families keep what stands there (the proposed unit, say) and the
// typing goes behind it.
void GridSheet::clicked(int row)
{
    const int col = m_grid->col();
    if (col == gridShape(templateCode()).clearedOnClickCol && typable(row, col))
        m_grid->setTextMatrix(row, col, QString());
}

// A result is text: each character goes at the end of the cell, Backspace
// takes the last one off; nothing is checked.
void GridSheet::keyPressed(int row, int col, QKeyEvent* event)
{
    if (!typable(row, col))
        return;
    const QString text = m_grid->textMatrix(row, col);
    if (event->key() == Qt::Key_Backspace) {
        if (!text.trimmed().isEmpty())
            m_grid->setTextMatrix(row, col, text.chopped(1));
        event->accept();
        return;
    }
    // Control keys and shortcuts bring no printable character.
    const QString typed = event->text();
    if (typed.isEmpty()
        || !std::all_of(typed.begin(), typed.end(), [](QChar c) { return c.isPrint(); }))
        return;
    m_grid->setTextMatrix(row, col, text + typed);
    fitColumns();
    event->accept();
}

}  // namespace tq::sheets
