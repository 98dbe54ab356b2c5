#include "lab/sheets/blankpage.h"

#include <QAction>
#include <QKeyEvent>
#include <QPalette>
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

}  // namespace

BlankPage::BlankPage(const Kind& kind, QWidget* parent)
    : SheetScreen(kind.codPlantilla, parent,
                  {.headingWithEmail = kind.withEmail,
                   .savedPerInvoice = true,
                   .marksPrinted = kind.marksPrinted}),
      m_enterLimit(kind.enterLimit)
{
}

void BlankPage::setUp(const Parts& parts)
{
    m_rich = parts.rich;

    // The box is paper too: black on white whatever the desktop's colours.
    QPalette paper = parts.pagina->palette();
    paper.setColor(QPalette::Base, Qt::white);
    paper.setColor(QPalette::Text, Qt::black);
    parts.pagina->setPalette(paper);

    // The box takes what is typed into it, and nothing by other doors that
    // would pass the Enter counter by.
    m_rich->setContextMenuPolicy(Qt::NoContextMenu);
    m_rich->setAcceptDrops(false);
    m_rich->installEventFilter(this);
    m_rich->setFocus();

    connect(parts.borrar, &QAction::triggered, this, [this] { m_rich->clear(); });
    connect(parts.copy, &QAction::triggered, this, [this] { copySelection(); });
    connect(parts.paste, &QAction::triggered, this, [this] { pasteAtEnd(); });

    attach(parts.pagina, parts.archivo);
}

QString BlankPage::pageText() const { return m_rich->toPlainText(); }

void BlankPage::replaceText(const QString& text) { m_rich->setPlainText(text); }

bool BlankPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_rich) {
        const bool full = m_enters > m_enterLimit;
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
    return SheetScreen::eventFilter(watched, event);
}

// One row per invoice listed, each closing that invoice's picked exams, all
// in one save.
SavedSheet BlankPage::store(const SheetContext& context)
{
    return saveBlankSheet(pageText(), context, templateCode());
}

// On paper the box shows neither its cursor nor a selection; both come back
// afterwards.
void BlankPage::setPrinting(bool printing)
{
    if (printing) {
        m_cursorBeforePaper = m_rich->textCursor();
        m_cursorWidthBeforePaper = m_rich->cursorWidth();
        QTextCursor plain = m_cursorBeforePaper;
        plain.clearSelection();
        m_rich->setTextCursor(plain);
        m_rich->setCursorWidth(0);
    } else {
        m_rich->setCursorWidth(m_cursorWidthBeforePaper);
        m_rich->setTextCursor(m_cursorBeforePaper);
    }
}

void BlankPage::beforeLeaving() { m_rich->clear(); }

void BlankPage::fillStored(const StoredSheet& sheet) { replaceText(pageTextOf(sheet)); }

corrections::Saved BlankPage::storeCorrection(const corrections::Target& target,
                                              const QString& descripcion)
{
    return corrections::saveBlank(target, descripcion, pageText());
}

void BlankPage::copySelection()
{
    QString text = m_rich->textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    copiedText() = text;
}

void BlankPage::pasteAtEnd()
{
    QTextCursor end(m_rich->document());
    end.movePosition(QTextCursor::End);
    end.insertText(copiedText());
}

}  // namespace tq::sheets
