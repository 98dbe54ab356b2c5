#include "foundation/ui/widgets.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QScreen>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>

namespace tq {

namespace {

class ListOnlyFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return QObject::eventFilter(watched, event);
        const auto* ke = static_cast<QKeyEvent*>(event);
        switch (ke->key()) {
        case Qt::Key_Backspace:
        case Qt::Key_Delete:
            return true;
        default:
            break;
        }
        if (ke->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
            return ke->matches(QKeySequence::Paste) || ke->matches(QKeySequence::Cut)
                   || ke->matches(QKeySequence::Undo) || ke->matches(QKeySequence::Redo);
        // A key that would type a character is cancelled; the space bar
        // still opens the list.
        const QString t = ke->text();
        return !t.isEmpty() && t.at(0).isPrint() && t != QLatin1String(" ");
    }
};

class AmountFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return QObject::eventFilter(watched, event);
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers() & Qt::ControlModifier)
            return false;
        const QString text = key->text();
        if (text.isEmpty() || key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter
            || key->key() == Qt::Key_Backspace || !text.at(0).isPrint())
            return false;
        for (const QChar c : text)
            if (c.unicode() < 46 || c.unicode() > 57)
                return true;
        return false;
    }
};

}  // namespace

void makeAmountBox(QLineEdit* box)
{
    if (box)
        box->installEventFilter(new AmountFilter(box));
}

void makeListOnly(QComboBox* combo)
{
    if (!combo)
        return;
    combo->setInsertPolicy(QComboBox::NoInsert);
    auto* filter = new ListOnlyFilter(combo);
    combo->installEventFilter(filter);
    if (QLineEdit* le = combo->lineEdit()) {
        le->setReadOnly(true);
        le->installEventFilter(filter);
    }
}

int twips(int value)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dpi = screen ? screen->logicalDotsPerInchY() : 96.0;
    return qRound(value * dpi / 1440.0);
}

}  // namespace tq
