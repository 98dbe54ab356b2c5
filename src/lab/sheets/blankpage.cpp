#include "lab/sheets/blankpage.h"

#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "lab/worktable.h"

#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QPalette>
#include <QRegularExpression>
#include <QTextCursor>
#include <QTextEdit>

namespace tq::sheets {

namespace {

// "Copiar" keeps the selection here and "Pegar" takes it from here, across
// every page open in the program.
QString& copiedText()
{
    static QString text;
    return text;
}

bool isEnter(const QKeyEvent* key)
{
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
           && !(key->modifiers() & Qt::ControlModifier);
}

// A key that would change the box: a character, Enter, the erasing keys, or
// the box's own editing shortcuts. Moving about and copying stay possible.
bool changesText(const QKeyEvent* key)
{
    if (isEnter(key) || key->key() == Qt::Key_Backspace || key->key() == Qt::Key_Delete)
        return true;
    for (QKeySequence::StandardKey k : {QKeySequence::Paste, QKeySequence::Cut,
                                        QKeySequence::Undo, QKeySequence::Redo})
        if (key->matches(k))
            return true;
    if (key->modifiers() & Qt::ControlModifier)
        return false;
    return !key->text().isEmpty();
}

// While the page is put on paper the box shows neither its cursor nor a
// selection; both come back afterwards.
class OnPaper {
public:
    explicit OnPaper(QTextEdit* box)
        : m_box(box), m_cursor(box->textCursor()), m_width(box->cursorWidth())
    {
        QTextCursor plain = m_cursor;
        plain.clearSelection();
        m_box->setTextCursor(plain);
        m_box->setCursorWidth(0);
    }
    ~OnPaper()
    {
        m_box->setCursorWidth(m_width);
        m_box->setTextCursor(m_cursor);
    }
    OnPaper(const OnPaper&) = delete;
    OnPaper& operator=(const OnPaper&) = delete;

private:
    QTextEdit* m_box;
    QTextCursor m_cursor;
    int m_width;
};

}  // namespace

void onMenu(QAction* action, const QString& what, std::function<void()> fn)
{
    QObject::connect(action, &QAction::triggered, action,
                     [what, fn = std::move(fn)] { guarded(what, fn); });
}

BlankPage::BlankPage(QWidget* parent) : QMainWindow(parent) {}

void BlankPage::setUp(const Parts& parts, const Kind& kind)
{
    m_parts = parts;
    m_kind = kind;
    m_sheet = SheetPage(parts.pagina);

    // The sheet is paper: black on white whatever the desktop's colours.
    QPalette paper = parts.pagina->palette();
    for (QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
        paper.setColor(role, Qt::white);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
        paper.setColor(role, Qt::black);
    parts.pagina->setPalette(paper);
    parts.pagina->setAutoFillBackground(true);

    // The box takes what is typed into it, and nothing by other doors that
    // would pass the Enter counter by.
    parts.rich->setContextMenuPolicy(Qt::NoContextMenu);
    parts.rich->setAcceptDrops(false);
    parts.rich->installEventFilter(this);
    parts.rich->setFocus();

    onMenu(parts.guardar, QStringLiteral("guardar el resultado"), [this] { save(); });
    onMenu(parts.imprimir, QStringLiteral("imprimir la hoja de resultados"), [this] { print(); });
    onMenu(parts.pdf, QStringLiteral("imprimir la hoja de resultados"),
           [this] { printWithDialog(); });
    onMenu(parts.pdfArchivo, QStringLiteral("guardar la hoja de resultados como PDF"),
           [this] { saveAsPdf(); });
    connect(parts.salir, &QAction::triggered, this, [this] { leave(); });
    connect(parts.borrar, &QAction::triggered, this, [this] { m_parts.rich->clear(); });
    connect(parts.copy, &QAction::triggered, this, [this] { copySelection(); });
    connect(parts.paste, &QAction::triggered, this, [this] { pasteAtEnd(); });

    guarded(QStringLiteral("leer los datos del laboratorio para el encabezado"),
            [this] { m_sheet.fillHeading(m_kind.withEmail); });
}

void BlankPage::startEntry(const SheetContext& context,
                           std::function<void(const SavedSheet&)> onSaved)
{
    const PickedExam first = context.picks.value(0);
    m_sheet.setPatient(first.paciente, dateLong(context.today), first.edad);
    m_context = context;
    m_onSaved = std::move(onSaved);
}

QString BlankPage::pageText() const { return m_parts.rich->toPlainText(); }

void BlankPage::replaceText(const QString& text) { m_parts.rich->setPlainText(text); }

bool BlankPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_parts.rich) {
        const bool full = m_enters > m_kind.enterLimit;
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (full && changesText(key))
                return true;
            if (isEnter(key))
                ++m_enters;
        } else if (full && event->type() == QEvent::InputMethod) {
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

// The page goes onto every invoice the work table listed, each row closing
// that invoice's picked exams, all in one save.
void BlankPage::save()
{
    if (!m_context) {
        prompts().message(QStringLiteral("Esta hoja no se abrió desde la mesa de trabajo para "
                                         "ningún examen, así que no se guardó nada."),
                          Icon::Information, QStringLiteral("Tarvenquil"));
        return;
    }
    const SavedSheet saved = saveBlankSheet(pageText(), *m_context, m_kind.codPlantilla);
    m_savedFormatId = saved.formatId;
    if (saved.formatIdMoved)
        prompts().message(QStringLiteral("El número de formato %1 ya fue usado en otra estación; "
                                         "la hoja se guardó con el número de formato %2.")
                              .arg(m_context->proposedFormatId)
                              .arg(saved.formatId),
                          Icon::Information, QStringLiteral("Tarvenquil"));
    for (qsizetype i = 0; i < m_context->invoices.size(); ++i)
        prompts().message(QStringLiteral("El resultado ha sido guardado exitosamente"),
                          Icon::Information, QStringLiteral("Tarvenquil"));
    m_parts.guardar->setEnabled(false);
    if (m_onSaved)
        m_onSaved(saved);
}

std::int32_t BlankPage::formatIdToMark() const
{
    if (m_savedFormatId != 0)
        return m_savedFormatId;
    return m_context ? m_context->proposedFormatId : 0;
}

// The page as it stands, on the default printer; a page that reached the
// printer leaves the pending list.
void BlankPage::print()
{
    bool printed = false;
    {
        OnPaper paper(m_parts.rich);
        printed = m_sheet.printOnDefaultPrinter();
    }
    if (printed && m_kind.marksPrinted)
        marcarImpresion(formatIdToMark());
}

// The printer dialog: a PDF printer may be chosen there. Nothing is marked.
void BlankPage::printWithDialog()
{
    OnPaper paper(m_parts.rich);
    m_sheet.printWithDialog();
}

void BlankPage::saveAsPdf()
{
    QString name = QStringLiteral("Resultados de Laboratorio");
    const auto* shown = m_parts.pagina->findChild<QLabel*>(QStringLiteral("lblPaciente"));
    const QString patient = shown ? shown->text().simplified() : QString();
    if (!patient.isEmpty())
        name += QStringLiteral(" - ") + patient;
    name.remove(QRegularExpression(QStringLiteral("[\\\\/:*?\"<>|]")));
    OnPaper paper(m_parts.rich);
    m_sheet.saveAsPdf(name + QStringLiteral(".pdf"));
}

void BlankPage::leave()
{
    m_parts.rich->clear();
    close();
}

void BlankPage::copySelection()
{
    QString text = m_parts.rich->textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    copiedText() = text;
}

void BlankPage::pasteAtEnd()
{
    QTextCursor end(m_parts.rich->document());
    end.movePosition(QTextCursor::End);
    end.insertText(copiedText());
}

}  // namespace tq::sheets
