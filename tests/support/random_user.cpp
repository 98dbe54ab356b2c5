#include "random_user.h"

#include "foundation/ui/errors.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QImage>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <algorithm>

namespace tq::test {

const QStringList& nastyTexts()
{
    static const QStringList texts = {
        "O'Brien", "\"comillas\" y 'apóstrofos'", "'; DROP TABLE Pacientes; --",
        QStringLiteral("ñandú ").repeated(1667).left(10000), "Núñez Peña, María José", "😀🧪",
        "-1", "0", "99999999999", "1e308", "12/5", "/", "   ", QString(), "15/03/2024", "31/02/2026",
        "0.03", "admin",
    };
    return texts;
}

RandomPrompts::RandomPrompts(Dice& dice, const QString& folder) : m_dice(dice)
{
    m_boundarySeen = boundaryRecord().shown;
    const QDir dir(folder);
    dir.mkpath(QStringLiteral("archivos"));
    const QString picture = dir.filePath(QStringLiteral("archivos/logo nuevo.png"));
    QImage image(8, 8, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    image.save(picture);
    const QString missing = dir.filePath(QStringLiteral("no existe/archivo"));
    // Cancelled, missing, a picture, a file that is no picture, a folder.
    m_openAnswers = {QString(), missing, picture, dir.filePath(QStringLiteral("lab.db")),
                     dir.filePath(QStringLiteral("archivos"))};
    // Cancelled, missing, a good place, the store itself (its suffix is added),
    // a folder, and a folder that takes no files, not even from the administrator.
    m_saveAnswers = {QString(), missing, dir.filePath(QStringLiteral("archivos/copia")),
                     dir.filePath(QStringLiteral("lab")), dir.filePath(QStringLiteral("archivos")),
                     QStringLiteral("/proc/respaldo")};
}

Answer RandomPrompts::message(const QString& text, Icon icon, const QString& title, Buttons buttons)
{
    prompts.append({Prompt::Message, text, icon, title, buttons});
    if (boundaryRecord().shown != m_boundarySeen) {
        m_boundarySeen = boundaryRecord().shown;
        boundaryMessages << text;
    }
    switch (buttons) {
    case Buttons::Ok: return Answer::Ok;
    case Buttons::OkCancel: return m_dice.chance(50) ? Answer::Ok : Answer::Cancel;
    case Buttons::YesNo: return m_dice.chance(50) ? Answer::Yes : Answer::No;
    case Buttons::YesNoCancel: return m_dice.pick(QList<Answer>{Answer::Yes, Answer::No, Answer::Cancel});
    }
    return Answer::Cancel;
}

std::optional<QString> RandomPrompts::input(const QString& prompt, const QString& title, const QString&)
{
    prompts.append({Prompt::Input, prompt, Icon::None, title, Buttons::OkCancel});
    if (m_dice.chance(25))
        return std::nullopt;
    if (m_dice.chance(30))
        return QString::number(m_dice.below(40));
    return m_dice.pick(nastyTexts());
}

QString RandomPrompts::openFile(const QString& caption, const QString&, const QString&)
{
    prompts.append({Prompt::OpenFile, caption, Icon::None, caption, Buttons::OkCancel});
    return m_dice.pick(m_openAnswers);
}

QString RandomPrompts::saveFile(const QString& caption, const QString& proposed, const QString&)
{
    prompts.append({Prompt::SaveFile, proposed, Icon::None, caption, Buttons::OkCancel});
    return m_dice.pick(m_saveAnswers);
}

// Half the print jobs go to paper, where their whole drawing runs.
bool RandomPrompts::print(const PaintPages& paint, const QString& title)
{
    prompts.append({Prompt::Printer, title, Icon::None, title, Buttons::OkCancel});
    return m_dice.chance(50) && !printOnPaper(paint).isNull();
}

bool RandomPrompts::printDefault(const PaintPages& paint, const QString& title) { return print(paint, title); }

void RandomPrompts::showModal(QWidget* screen)
{
    prompts.append({Prompt::Modal, screen->objectName(), Icon::None, {}, Buttons::Ok});
    QPointer<QWidget> guard(screen);
    screen->setAttribute(Qt::WA_DeleteOnClose);
    screen->show();
    QCoreApplication::sendPostedEvents();
    if (m_depth < 2 && onModal && guard) {
        ++m_depth;
        onModal(screen);
        --m_depth;
    }
    // A screen that refuses to close goes all the same: its caller waits for it.
    if (guard)
        guard->close();
    if (guard && guard->isVisible()) {
        guard->hide();
        guard->deleteLater();
    }
}

namespace {

// What a window offers to a user right now.
struct Offer {
    QList<QAbstractButton*> buttons;
    QList<QWidget*> fields;            // line edits, text boxes, spin and date boxes, editable combos
    QList<QAbstractItemView*> grids;   // with at least one row
    QList<QComboBox*> combos;
    QList<QTabBar*> tabs;
    QList<QAction*> actions;
    QList<QTimer*> timers;
};

void addMenu(const QMenu* menu, QList<QAction*>& out)
{
    if (!menu || !menu->isEnabled())
        return;
    for (QAction* a : menu->actions())
        if (!a->isSeparator() && a->isEnabled() && a->isVisible()) {
            if (a->menu())
                addMenu(a->menu(), out);
            else
                out << a;
        }
}

bool insideOf(const QWidget* w, const char* className)
{
    for (const QWidget* p = w->parentWidget(); p; p = p->parentWidget())
        if (p->inherits(className))
            return true;
    return false;
}

Offer offerOf(QWidget* window)
{
    Offer o;
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (!w->isVisible() || !w->isEnabled())
            continue;
        if (auto* bar = qobject_cast<QMenuBar*>(w)) {
            for (QAction* a : bar->actions())
                if (a->isEnabled() && a->isVisible())
                    addMenu(a->menu(), o.actions);
        } else if (auto* b = qobject_cast<QAbstractButton*>(w)) {
            // A button with a menu would open it with its own loop; its entries are offered instead.
            const auto* push = qobject_cast<QPushButton*>(b);
            const auto* tool = qobject_cast<QToolButton*>(b);
            if (QMenu* m = push ? push->menu() : tool ? tool->menu() : nullptr)
                addMenu(m, o.actions);
            else
                o.buttons << b;
        } else if (auto* c = qobject_cast<QComboBox*>(w)) {
            o.combos << c;
            if (c->isEditable())
                o.fields << c;
        } else if (qobject_cast<QLineEdit*>(w)) {
            if (!insideOf(w, "QComboBox") && !insideOf(w, "QAbstractSpinBox"))
                o.fields << w;
        } else if (qobject_cast<QTextEdit*>(w) || qobject_cast<QPlainTextEdit*>(w)
                   || qobject_cast<QAbstractSpinBox*>(w)) {
            o.fields << w;
        } else if (auto* v = qobject_cast<QAbstractItemView*>(w)) {
            if (v->model() && v->model()->rowCount(v->rootIndex()) > 0)
                o.grids << v;
        } else if (auto* t = qobject_cast<QTabBar*>(w); t && t->count() > 1) {
            o.tabs << t;
        }
    }
    for (QTimer* t : window->findChildren<QTimer*>())
        if (t->isActive())
            o.timers << t;
    return o;
}

QString nameOf(const QObject* o)
{
    return o->objectName().isEmpty() ? QString::fromLatin1(o->metaObject()->className())
                                     : o->objectName();
}

QString shown(const QString& text)
{
    if (text.size() > 30)
        return QStringLiteral("«%1…» (%2 caracteres)").arg(text.left(12)).arg(text.size());
    return QStringLiteral("«%1»").arg(text);
}

const QList<Qt::Key> kKeys = {
    Qt::Key_Return, Qt::Key_Enter, Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Escape,
    Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home,
    Qt::Key_End, Qt::Key_Space, Qt::Key_0, Qt::Key_1, Qt::Key_5,
    Qt::Key_9, Qt::Key_Minus, Qt::Key_Period, Qt::Key_Slash,
};

// Where a field takes its keys: an editable combo's own line.
QWidget* inputOf(QWidget* field)
{
    if (auto* c = qobject_cast<QComboBox*>(field); c && c->lineEdit())
        return c->lineEdit();
    return field;
}

void paste(QWidget* receiver, const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(receiver, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(receiver, Qt::Key_End);
}

}  // namespace

void RandomUser::act(QWidget* window)
{
    const Offer o = offerOf(window);
    enum Kind { Button, Type, Fill, Key, Cell, Menu, Combo, Tab, Tick, Close };
    // Each kind of event weighs its share, when the window offers it.
    const QList<std::tuple<bool, Kind, int>> weights = {
        {true, Key, 12}, {true, Close, 1}, {!o.buttons.isEmpty(), Button, 30},
        {!o.fields.isEmpty(), Type, 25}, {!o.fields.isEmpty(), Fill, 8}, {!o.grids.isEmpty(), Cell, 12},
        {!o.actions.isEmpty(), Menu, 10}, {!o.combos.isEmpty(), Combo, 6}, {!o.tabs.isEmpty(), Tab, 3},
        {!o.timers.isEmpty(), Tick, 2},
    };
    QList<Kind> kinds;
    for (const auto& [offered, k, weight] : weights)
        for (int i = 0; offered && i < weight; ++i)
            kinds << k;
    const Kind kind = m_dice.pick(kinds);

    switch (kind) {
    case Button: {
        QAbstractButton* b = m_dice.pick(o.buttons);
        say(QStringLiteral("clic en %1 %2").arg(nameOf(b), shown(b->text())));
        // Options and checks are hit on their box, buttons in their middle.
        if (b->inherits("QCheckBox") || b->inherits("QRadioButton"))
            QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(qMin(8, b->width() / 2), b->height() / 2));
        else
            QTest::mouseClick(b, Qt::LeftButton);
        return;
    }
    case Type: {
        QWidget* field = m_dice.pick(o.fields);
        QWidget* receiver = inputOf(field);
        const QString text = m_dice.pick(nastyTexts());
        say(QStringLiteral("escribe %1 en %2").arg(shown(text), nameOf(field)));
        receiver->setFocus();
        if (text.isEmpty() || m_dice.chance(50))
            QTest::keyClick(receiver, Qt::Key_A, Qt::ControlModifier);   // over what was there
        const bool surrogates = std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); });
        if (text.isEmpty())
            QTest::keyClick(receiver, Qt::Key_Backspace);
        else if (text.size() <= 40 && !surrogates && m_dice.chance(70))
            typeKeys(receiver, text);
        else   // long texts and emoji arrive pasted, as a user would bring them
            paste(receiver, text);
        return;
    }
    case Fill: {
        // Every field at once, so that saves get past their checks and reach the store.
        say(QStringLiteral("llena todos los campos"));
        QStringList texts = nastyTexts();
        texts.removeIf([](const QString& t) { return t.trimmed().isEmpty(); });
        for (QWidget* field : o.fields) {
            QWidget* receiver = inputOf(field);
            receiver->setFocus();
            QTest::keyClick(receiver, Qt::Key_A, Qt::ControlModifier);
            paste(receiver, m_dice.pick(texts));
        }
        for (QComboBox* c : o.combos)
            if (c->count() > 0)
                c->setCurrentIndex(m_dice.below(c->count()));
        return;
    }
    case Key: {
        QList<QWidget*> targets = o.fields;
        for (QAbstractItemView* v : o.grids)
            targets << v;
        for (QComboBox* c : o.combos)
            targets << c;
        QWidget* focus = window->focusWidget();
        QWidget* receiver = (focus && focus->isVisible() && focus->isEnabled()
                             && (focus == window || window->isAncestorOf(focus))
                             && (targets.isEmpty() || m_dice.chance(50)))
                                ? focus
                            : targets.isEmpty() ? window
                                                : m_dice.pick(targets);
        const Qt::Key key = m_dice.pick(kKeys);
        say(QStringLiteral("tecla %1 en %2").arg(QKeySequence(key).toString(), nameOf(receiver)));
        receiver->setFocus();
        QTest::keyClick(receiver, key);
        return;
    }
    case Cell: {
        QAbstractItemView* v = m_dice.pick(o.grids);
        const int row = m_dice.below(v->model()->rowCount(v->rootIndex()));
        QList<int> columns;   // those shown
        const auto* table = qobject_cast<QTableView*>(v);
        for (int c = 0; c < v->model()->columnCount(v->rootIndex()); ++c)
            if (!table || !table->isColumnHidden(c))
                columns << c;
        if (columns.isEmpty())
            return;
        const QModelIndex index = v->model()->index(row, m_dice.pick(columns), v->rootIndex());
        v->scrollTo(index);
        const QRect cell = v->visualRect(index).intersected(v->viewport()->rect());
        const bool twice = m_dice.chance(15);
        if (cell.isEmpty())
            return;
        say(QStringLiteral("%1 en la celda %2,%3 de %4").arg(twice ? "doble clic" : "clic")
                .arg(row).arg(index.column()).arg(nameOf(v)));
        if (twice)
            QTest::mouseDClick(v->viewport(), Qt::LeftButton, {}, cell.center());
        else
            QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, cell.center());
        return;
    }
    case Menu: {
        QAction* a = m_dice.pick(o.actions);
        say(QStringLiteral("menú %1 %2").arg(nameOf(a), shown(a->text())));
        a->trigger();
        return;
    }
    case Combo: {
        QComboBox* c = m_dice.pick(o.combos);
        const Qt::Key key = m_dice.pick(
            QList<Qt::Key>{Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown});
        say(QStringLiteral("lista %1: %2").arg(nameOf(c), QKeySequence(key).toString()));
        c->setFocus();
        QTest::keyClick(c, key);
        return;
    }
    case Tab: {
        QTabBar* t = m_dice.pick(o.tabs);
        const int i = m_dice.below(t->count());
        say(QStringLiteral("pestaña %1 de %2").arg(i).arg(nameOf(t)));
        t->setCurrentIndex(i);
        return;
    }
    case Close:
        // The window's own close box, whatever is under way.
        say(QStringLiteral("cierra la ventana"));
        window->close();
        return;
    case Tick: {
        QTimer* t = m_dice.pick(o.timers);
        say(QStringLiteral("pasa el tiempo de %1").arg(nameOf(t)));
        QTimerEvent tick(t->timerId());
        QCoreApplication::sendEvent(t, &tick);
        return;
    }
    }
}

}  // namespace tq::test
