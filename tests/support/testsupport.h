#pragma once
// A temporary store, a scripted prompt service, helpers to find controls, type and click.
#include "foundation/ui/prompt.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest/QTest>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

class QTableView;
namespace tq { class FlexGrid; }

namespace tq::test {

// The test server's libpq connection text (TQ_TEST_SERVER); empty on the embedded store.
QString testServer();
inline bool onServer() { return !testServer().isEmpty(); }
// The connection text of this test program's own database on that server.
QString testDatabase();

// On the server: this program's database named `suffix` made afresh (empty, or
// a copy of the one named `from`); returns its connection.
QString serverDatabase(const QString& suffix, const QString& from = {});

// The first value `sql` gives on a backup copy: the copied file opened, or,
// on the server, pg_dump's copy restored into a fresh database (dropped after).
QVariant queryCopy(const QString& file, const QString& sql);

// A fresh data folder and store opened on amb1 (on the server this program's
// database, emptied first), the program state reset; all undone on destruction.
class TempStore {
public:
    TempStore();
    ~TempStore();
    QString folder() const { return m_dir.path(); }
    QString dbPath() const;   // the store file (embedded store only)
    // Opens amb1 again on this store, as a program starting would.
    void reopen() const;
    // What another process opens this store with: the file or the connection.
    QString where() const;
    // The first value of `sql` as another program sees it (amb1 may be closed).
    QVariant query(const QString& sql) const;

private:
    QTemporaryDir m_dir;
};

struct Prompt {
    enum Kind { Message, Input, OpenFile, SaveFile, Modal, End, Printer, DefaultPrinter } kind = Message;
    QString text;     // message or input prompt; screen name for Modal; title for Printer
    Icon icon = Icon::None;
    QString title;
    Buttons buttons = Buttons::Ok;
};

// A print job painted whole onto PDF paper kept in memory.
QByteArray printOnPaper(const PaintPages& paint);

// Records every prompt. Questions are answered from a queue (Yes when empty), input,
// file and printer dialogs from their own (cancel when empty), modal screens by
// the handler given for their name (closed at once when none).
class ScriptedPrompts : public PromptService {
public:
    ScriptedPrompts();   // installs itself
    ~ScriptedPrompts() override;   // puts back the previous service

    QList<Prompt> prompts;
    std::deque<Answer> answers;
    std::deque<std::optional<QString>> inputs;
    std::deque<QString> files;
    std::deque<bool> printers;   // true: the printer dialog is accepted
    QList<QByteArray> printed;   // what the accepted printer dialogs printed, as PDF
    bool defaultPrinter = true;  // the machine has a default printer (it prints into `printed`)
    bool ended = false;

    void onModal(const QString& screen, std::function<void(QWidget*)> handler);
    // Every modal screen without a handler of its own, while it shows.
    std::function<void(QWidget*)> everyModal;

    QStringList messages() const;   // the message boxes' texts, in order
    QString lastMessage() const;
    void clear();

    Answer message(const QString& text, Icon icon, const QString& title, Buttons buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title, const QString& initial) override;
    QString openFile(const QString& caption, const QString& folder, const QString& filter) override;
    QString saveFile(const QString& caption, const QString& proposed, const QString& filter) override;
    bool print(const tq::PaintPages& paint, const QString& title) override;
    bool printDefault(const tq::PaintPages& paint, const QString& title) override;
    void showModal(QWidget* screen) override;
    void endProgram() override;

private:
    PromptService* m_previous = nullptr;
    QList<QPair<QString, std::function<void(QWidget*)>>> m_modal;
};

// A control of `root` by its object name, or nullptr.
template <typename T = QWidget>
T* control(QObject* root, const QString& name) { return root ? root->findChild<T*>(name) : nullptr; }

// Types the text into the focused-or-given widget with real key presses.
void type(QWidget* w, const QString& text);
// The key presses of `text`, accents and "ñ" included, sent to `w`.
void typeKeys(QWidget* w, const QString& text);
// Replaces the text of a line edit through the keyboard (select all, type).
void retype(QWidget* w, const QString& text);
void pressKey(QWidget* w, Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier);
void click(QAbstractButton* b);
// Clicks the button named `name` inside root; returns false when missing or disabled.
bool clickNamed(QObject* root, const QString& name);
// Clicks the named button, answering its question if given; the messages it showed
// ("<name disabled>" when it could not be clicked).
QStringList press(QWidget* w, const QString& button, ScriptedPrompts& sp, std::optional<Answer> answer = {});
// The visible window of that name (a screen shown on its own, a preview), or nullptr.
QWidget* visibleWindow(const QString& name);
// Creates a screen through the registry, shows it and waits until exposed.
QWidget* openScreen(const QString& name);

inline QLineEdit* edit(QWidget* w, const QString& name) { return control<QLineEdit>(w, name); }
// The first value of a query on amb1; the same as a whole number.
QVariant value(const QString& sql, const QVariantList& binds = {});
int count(const QString& sql, const QVariantList& binds = {});
int rowsIn(const QString& table);
// Adds an employee signing on with `usuario` and `password` (stored hashed) and
// the given module rights; returns the code.
int addEmployee(const QString& usuario, const QString& password, int rol, const QList<int>& modules = {});
// The employee's stored password is a hash that `typed` was made from.
bool hasPassword(int code, const QString& typed);
QByteArray bytesOf(const QString& file);
// Clicks a grid's row (model row, from 0) on its second column, as a user picks a row.
void clickRow(QTableView* grid, int modelRow);
// The same on a flex grid, whose data rows count from 1.
void clickGridRow(FlexGrid* g, int row);
// A click on one cell of a flex grid (row 1 is the first below the header).
void clickCell(FlexGrid* g, int row, int col);
// The texts of a flex grid column, data rows only; the row (from 1) holding `text`, or -1.
QStringList column(FlexGrid* g, int col);
int findRow(FlexGrid* g, int col, const QString& text);
// Picks an entry of a list-only combo with the arrow keys, as a user would.
void pickEntry(QComboBox* combo, int index);
inline void pickEntry(QComboBox* combo, const QString& text) { pickEntry(combo, combo->findText(text)); }
// Clicks an option or check on its round mark or box.
void tick(QAbstractButton* option);

}  // namespace tq::test
