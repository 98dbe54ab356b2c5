#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"
#include "foundation/base/passwords.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QBuffer>
#include <QPdfWriter>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QPointer>

namespace tq::test {

QString testServer() { return qEnvironmentVariable("TQ_TEST_SERVER"); }

namespace {

QSqlDatabase serverConnection(const QString& name, const QString& options)
{
    QSqlDatabase db = QSqlDatabase::contains(name) ? QSqlDatabase::database(name, false)
                                                   : QSqlDatabase::addDatabase("QPSQL", name);
    if (!db.isOpen()) {
        db.setConnectOptions(options);
        if (!db.open())
            qFatal("No se pudo conectar con el servidor de pruebas: %s",
                   qPrintable(db.lastError().text()));
    }
    return db;
}

void mustRun(const QSqlDatabase& db, const QString& sql)
{
    QSqlQuery q(db);
    if (!q.exec(sql))
        qFatal("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
}

QString databaseName()
{
    return QStringLiteral("tq_%1_%2")
        .arg(QCoreApplication::applicationName().toLower().remove(QRegularExpression("[^a-z0-9_]")))
        .arg(QCoreApplication::applicationPid());
}

QSqlDatabase admin()
{
    return serverConnection(QStringLiteral("tq_admin"), testServer() + QStringLiteral(" dbname=postgres"));
}

// Makes the database `name` afresh (a copy of `from` when given); dropped when the program ends.
void makeDatabase(const QString& name, const QString& from = {})
{
    mustRun(admin(), QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(name));
    mustRun(admin(), from.isEmpty() ? QStringLiteral("CREATE DATABASE %1").arg(name)
                                    : QStringLiteral("CREATE DATABASE %1 TEMPLATE %2").arg(name, from));
    static QStringList made;
    if (made.isEmpty())
        qAddPostRoutine([] {
            amb1().closeStore();
            QSqlDatabase::database(QStringLiteral("tq_reset"), false).close();
            QSqlQuery drop(QSqlDatabase::database(QStringLiteral("tq_admin"), false));
            for (const QString& n : std::as_const(made))
                drop.exec(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(n));
        });
    if (!made.contains(name))
        made << name;
}

// The first value of `sql` on a store reached through a connection of its
// own: a file (embedded store) or a server's connection text.
QVariant firstValue(const QString& fileOrServer, bool server, const QString& sql)
{
    const QString name = QStringLiteral("tq_aparte");
    QVariant v;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(server ? "QPSQL" : "QSQLITE", name);
        server ? db.setConnectOptions(fileOrServer) : db.setDatabaseName(fileOrServer);
        QSqlQuery q(db);
        if (db.open() && q.exec(sql) && q.next())
            v = q.value(0);
    }
    QSqlDatabase::removeDatabase(name);
    return v;
}

// The next scripted answer, or `none` when the script has run out.
template <typename T>
T takeFirst(std::deque<T>& script, T none = {})
{
    if (script.empty())
        return none;
    T first = script.front();
    script.pop_front();
    return first;
}

// Empties this program's database on the server, making it first.
void emptyServerStore()
{
    static bool made = false;
    if (!std::exchange(made, true))
        makeDatabase(databaseName());
    const QSqlDatabase db = serverConnection(
        QStringLiteral("tq_reset"),
        testDatabase() + QStringLiteral(" options='-c client_min_messages=warning'"));
    mustRun(db, QStringLiteral("DROP SCHEMA IF EXISTS public CASCADE"));
    mustRun(db, QStringLiteral("CREATE SCHEMA public"));
}

}  // namespace

QString serverDatabase(const QString& suffix, const QString& from)
{
    const QString name = databaseName() + QLatin1Char('_') + suffix;
    makeDatabase(name, from.isEmpty() ? QString() : databaseName() + QLatin1Char('_') + from);
    return testServer() + QStringLiteral(" dbname=") + name;
}

QString testDatabase() { return testServer() + QStringLiteral(" dbname=") + databaseName(); }

TempStore::TempStore()
{
    resetState();
    setDataFolder(m_dir.path());
    if (onServer()) {
        amb1().closeStore();
        emptyServerStore();
    }
    reopen();
}

void TempStore::reopen() const { onServer() ? amb1().openServer(testDatabase()) : amb1().openStore(dbPath()); }

QString TempStore::where() const { return onServer() ? testDatabase() : dbPath(); }

QVariant queryCopy(const QString& file, const QString& sql)
{
    if (!onServer())
        return firstValue(file, false, sql);
    const QString connection = serverDatabase(QStringLiteral("copia"));
    QProcess restore;
    restore.start(QStringLiteral("pg_restore"),
                  {QStringLiteral("--no-owner"), QStringLiteral("--dbname=") + connection, file});
    if (!restore.waitForFinished(120000) || restore.exitCode() != 0)
        qWarning("pg_restore: %s", restore.readAllStandardError().constData());
    return firstValue(connection, true, sql);
}

QVariant TempStore::query(const QString& sql) const { return firstValue(where(), onServer(), sql); }

TempStore::~TempStore()
{
    amb1().closeStore();
    resetState();
}

QString TempStore::dbPath() const { return QDir(m_dir.path()).filePath(QStringLiteral("lab.db")); }

ScriptedPrompts::ScriptedPrompts() { m_previous = installPrompts(this); }

ScriptedPrompts::~ScriptedPrompts() { installPrompts(m_previous); }

void ScriptedPrompts::onModal(const QString& screen, std::function<void(QWidget*)> handler)
{
    m_modal.append({screen, std::move(handler)});
}

QStringList ScriptedPrompts::messages() const
{
    QStringList out;
    for (const auto& p : prompts)
        if (p.kind == Prompt::Message)
            out << p.text;
    return out;
}

QString ScriptedPrompts::lastMessage() const { return messages().value(messages().size() - 1); }

void ScriptedPrompts::clear()
{
    prompts.clear();
    answers = {};
    inputs = {};
    files = {};
    printers = {};
    ended = false;
}

Answer ScriptedPrompts::message(const QString& text, Icon icon, const QString& title,
                                Buttons buttons)
{
    prompts.append({Prompt::Message, text, icon, title, buttons});
    if (buttons == Buttons::Ok)
        return Answer::Ok;
    return takeFirst(answers, buttons == Buttons::OkCancel ? Answer::Ok : Answer::Yes);
}

std::optional<QString> ScriptedPrompts::input(const QString& prompt, const QString& title,
                                              const QString&)
{
    prompts.append({Prompt::Input, prompt, Icon::None, title, Buttons::OkCancel});
    return takeFirst(inputs);
}

QString ScriptedPrompts::openFile(const QString& caption, const QString&, const QString&)
{
    prompts.append({Prompt::OpenFile, caption, Icon::None, caption, Buttons::OkCancel});
    return takeFirst(files);
}

QString ScriptedPrompts::saveFile(const QString& caption, const QString& proposed, const QString&)
{
    prompts.append({Prompt::SaveFile, proposed, Icon::None, caption, Buttons::OkCancel});
    return takeFirst(files);
}

QByteArray printOnPaper(const PaintPages& paint)
{
    QBuffer paper;
    paper.open(QIODevice::WriteOnly);
    {
        QPdfWriter printer(&paper);
        paint(printer);
    }
    return paper.data();
}

bool ScriptedPrompts::print(const PaintPages& paint, const QString& title)
{
    prompts.append({Prompt::Printer, title, Icon::None, title, Buttons::OkCancel});
    const bool accepted = takeFirst(printers, false);
    if (accepted)
        printed.append(printOnPaper(paint));
    return accepted;
}

bool ScriptedPrompts::printDefault(const PaintPages& paint, const QString& title)
{
    prompts.append({Prompt::DefaultPrinter, title, Icon::None, title, Buttons::Ok});
    if (defaultPrinter)
        printed.append(printOnPaper(paint));
    return defaultPrinter;
}

void ScriptedPrompts::showModal(QWidget* screen)
{
    prompts.append({Prompt::Modal, screen->objectName(), Icon::None, {}, Buttons::Ok});
    QPointer<QWidget> guard(screen);
    screen->setAttribute(Qt::WA_DeleteOnClose);
    screen->show();
    bool handled = false;
    for (int i = 0; i < m_modal.size() && !handled; ++i) {
        if (m_modal[i].first == screen->objectName()) {
            auto handler = m_modal.takeAt(i).second;
            handler(screen);
            handled = true;
        }
    }
    if (!handled && everyModal)
        everyModal(screen);
    if (guard)
        guard->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ScriptedPrompts::endProgram()
{
    prompts.append({Prompt::End, {}, Icon::None, {}, Buttons::Ok});
    ended = true;
}

void typeKeys(QWidget* w, const QString& text)
{
    for (QChar c : text) {
        // QTest's own table knows only ASCII; the laboratory's texts are full of accents and "ñ".
        if (c.unicode() < 0x80) {
            QTest::keyClick(w, char(c.unicode()));
            continue;
        }
        const QChar upper = c.toUpper();
        const int key = upper.unicode() < 0x100 ? upper.unicode() : int(Qt::Key_unknown);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(c));
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &press);
        QApplication::sendEvent(w, &release);
    }
}

void type(QWidget* w, const QString& text)
{
    w->setFocus();
    typeKeys(w, text);
}

void retype(QWidget* w, const QString& text)
{
    w->setFocus();
    if (auto* le = qobject_cast<QLineEdit*>(w))
        le->selectAll();
    else
        QTest::keyClick(w, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(w, Qt::Key_Delete);
    typeKeys(w, text);
}

void pressKey(QWidget* w, Qt::Key key, Qt::KeyboardModifiers mods) { QTest::keyClick(w, key, mods); }

void click(QAbstractButton* b) { QTest::mouseClick(b, Qt::LeftButton); }

bool clickNamed(QObject* root, const QString& name)
{
    auto* b = control<QAbstractButton>(root, name);
    if (!b || !b->isEnabled())
        return false;
    click(b);
    return true;
}

QWidget* openScreen(const QString& name)
{
    QWidget* w = ScreenRegistry::instance().create(name, nullptr);
    if (!w)
        return nullptr;
    w->setAttribute(Qt::WA_DeleteOnClose);
    w->show();
    (void)QTest::qWaitForWindowExposed(w);
    return w;
}

QStringList press(QWidget* w, const QString& button, ScriptedPrompts& sp,
                  std::optional<Answer> answer)
{
    sp.clear();
    if (answer)
        sp.answers.push_back(*answer);
    return clickNamed(w, button) ? sp.messages() : QStringList{"<" + button + " disabled>"};
}

QVariant value(const QString& sql, const QVariantList& binds) { return amb1().scalar(sql, binds); }

int count(const QString& sql, const QVariantList& binds) { return value(sql, binds).toInt(); }

int rowsIn(const QString& table) { return count(QStringLiteral("SELECT COUNT(*) FROM ") + table); }

int addEmployee(const QString& usuario, const QString& password, int rol, const QList<int>& modules)
{
    const int code = amb1().insert(QStringLiteral("Empleados"),
                                   {"nombre_empleado", "apellido_empleado", "rol", "usuario", "Password"},
                                   {"Ana María", "Zelaya", rol, usuario, hashPassword(password)}).toInt();
    for (int m : modules)
        amb1().execute(QStringLiteral("INSERT INTO usuariosmodulos (cod_empleado, cod_modulo) VALUES (?, ?)"),
                       {code, m});
    return code;
}

bool hasPassword(int code, const QString& typed)
{
    return verifyPassword(value("SELECT Password FROM Empleados WHERE cod_empleado = ?", {code}).toString(),
                          typed);
}

QByteArray bytesOf(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void clickRow(QTableView* grid, int modelRow)
{
    const QRect r = grid->visualRect(grid->model()->index(modelRow, 1));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, r.center());
}

void clickGridRow(FlexGrid* g, int row) { clickRow(g, row - 1); }

void clickCell(FlexGrid* g, int row, int col)
{
    const QRect r = g->visualRect(g->model()->index(row - 1, col));
    QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, r.center());
}

QStringList column(FlexGrid* g, int col)
{
    QStringList out;
    for (int r = 1; r < g->rows(); ++r)
        out << g->textMatrix(r, col);
    return out;
}

int findRow(FlexGrid* g, int col, const QString& text)
{
    const int at = column(g, col).indexOf(text);
    return at < 0 ? -1 : at + 1;
}

void pickEntry(QComboBox* combo, int index)
{
    combo->setFocus();
    for (int guard = 0; combo->currentIndex() != index && guard < 50; ++guard)
        QTest::keyClick(combo, combo->currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
}

void tick(QAbstractButton* option)
{
    QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(6, option->height() / 2));
}

QWidget* visibleWindow(const QString& name)
{
    for (QWidget* w : QApplication::allWidgets())
        if (w->objectName() == name && w->isWindow() && w->isVisible())
            return w;
    return nullptr;
}

}  // namespace tq::test
