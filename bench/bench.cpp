#include "bench.h"

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>
#include <QWidget>
#include <algorithm>
#include <csignal>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace bench {

namespace {

// Each side runs at least this often, and on until it has spent its budget.
constexpr int kMinRuns = 5;
constexpr int kMaxRuns = 31;
constexpr qint64 kBudgetNs = 1'500'000'000;
// Whole processes: this many of each, taken in turn.
constexpr int kProcessRuns = 41;

double median(std::vector<double> v)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    const std::size_t m = v.size() / 2;
    return v.size() % 2 ? v[m] : (v[m - 1] + v[m]) / 2;
}

struct Timed {
    std::vector<double> ms;
    qint64 items = 0;
};

Timed timeInProcess(const Work& work)
{
    Timed t;
    t.items = work();   // warm: the store's pages are read once before timing
    QElapsedTimer budget;
    budget.start();
    while (int(t.ms.size()) < kMaxRuns
           && (int(t.ms.size()) < kMinRuns || budget.nsecsElapsed() < kBudgetNs)) {
        QElapsedTimer clock;
        clock.start();
        const qint64 seen = work();
        t.ms.push_back(clock.nsecsElapsed() / 1e6);
        if (seen != t.items)
            throw std::runtime_error("two runs of the same path saw different things");
    }
    return t;
}

}  // namespace

Target Target::withinFloor() { return Target{}; }

Target Target::startUp()
{
    Target t;
    t.kind = Kind::StartUp;
    t.ratio = 1.2;
    return t;
}

bool Target::met(double medianMs, double floorMs) const
{
    if (kind == Kind::StartUp)
        return medianMs <= ratio * floorMs;
    return medianMs <= ceilingMs && medianMs <= std::max(ratio * floorMs, smallFloorMs);
}

QString Target::text() const
{
    if (kind == Kind::StartUp)
        return QStringLiteral("<= %1x bare window").arg(ratio);
    if (ratio >= 1e9)   // the floor can't hold what the path does: only the ceiling counts
        return QStringLiteral("<= %1 ms").arg(ceilingMs);
    return QStringLiteral("<= %1 ms, <= %2x floor").arg(ceilingMs).arg(ratio);
}

void Bench::add(Path path) { m_paths.push_back(std::move(path)); }

tq::PricedDocument benchDocument(qint64 numero, int patient, const std::vector<int>& exams,
                                 int firstQuantity)
{
    tq::PricedDocument doc;
    doc.numero = tq::toInt32(double(numero));
    doc.fecha = QDate::currentDate();
    doc.faturado = QStringLiteral("bench");
    doc.codPaciente = patient;
    doc.subtotal = doc.total = tq::money(100.0 * double(exams.size()));
    for (std::size_t i = 0; i < exams.size(); ++i)
        doc.lines << tq::PricedLine{i == 0 ? firstQuantity : 1, exams[i], QStringLiteral("100.00"),
                                    QStringLiteral("100.00")};
    return doc;
}

tq::Answer SilentPrompts::message(const QString& text, tq::Icon, const QString&, tq::Buttons)
{
    Bench::promptsSeen() << text;
    return tq::Answer::Ok;
}

std::optional<QString> SilentPrompts::input(const QString& prompt, const QString&, const QString&)
{
    Bench::promptsSeen() << prompt;
    return std::nullopt;
}

QString SilentPrompts::openFile(const QString& caption, const QString&, const QString&)
{
    Bench::promptsSeen() << caption;
    return {};
}

QString SilentPrompts::saveFile(const QString& caption, const QString&, const QString&)
{
    Bench::promptsSeen() << caption;
    return {};
}

void SilentPrompts::showModal(QWidget* screen)
{
    Bench::promptsSeen() << screen->objectName();
    screen->deleteLater();
}

QStringList& Bench::promptsSeen()
{
    static QStringList seen;
    return seen;
}

Outcome Bench::measure(const Path& path)
{
    Outcome o;
    o.name = path.name;
    o.target = path.target.text();
    o.note = path.note;
    promptsSeen().clear();
    try {
        std::vector<double> ours;
        std::vector<double> floor;
        if (path.wholeProcess) {
            // Taken in turn, so that whatever else the machine does falls on both.
            path.run();
            path.floor();
            for (int i = 0; i < kProcessRuns; ++i) {
                ours.push_back(path.run() / 1000.0);
                floor.push_back(path.floor() / 1000.0);
            }
        } else {
            const Timed a = timeInProcess(path.run);
            const Timed b = timeInProcess(path.floor);
            ours = a.ms;
            floor = b.ms;
            o.items = a.items;
            o.floorItems = b.items;
            o.agree = a.items == b.items;
        }
        o.runs = int(ours.size());
        o.medianMs = median(ours);
        o.floorMs = median(floor);
        o.met = path.target.met(o.medianMs, o.floorMs);
    } catch (const tq::AppError& e) {
        o.problem = e.message();
    } catch (const std::exception& e) {
        o.problem = QString::fromLocal8Bit(e.what());
    }
    if (o.problem.isEmpty() && !promptsSeen().isEmpty())
        o.problem = QStringLiteral("the screen said: ") + promptsSeen().first();
    // The next path finds the store as a user would: no transaction left open.
    tq::rollbackOpenTransaction();
    if (path.after) {
        try {
            path.after();
        } catch (const tq::AppError& e) {
            o.problem = QStringLiteral("could not clean up: ") + e.message();
        } catch (const std::exception& e) {
            o.problem = QStringLiteral("could not clean up: ") + QString::fromLocal8Bit(e.what());
        }
    }
    return o;
}

std::vector<Outcome> Bench::run(const QString& only)
{
    std::vector<Outcome> out;
    for (const Path& p : m_paths)
        if (only.isEmpty() || p.name.contains(only, Qt::CaseInsensitive))
            out.push_back(measure(p));
    return out;
}

bool Bench::print(QTextStream& out, const std::vector<Outcome>& outcomes) const
{
    int width = 4;
    for (const Outcome& o : outcomes)
        width = std::max(width, int(o.name.size()));
    auto put = [&out](QString line) {
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        out << line << Qt::endl;
    };
    put(QStringLiteral("%1  %2  %3  %4  %5  %6")
            .arg(QStringLiteral("path"), -width)
            .arg(QStringLiteral("median ms"), 10)
            .arg(QStringLiteral("floor ms"), 10)
            .arg(QStringLiteral("ratio"), 7)
            .arg(QStringLiteral("runs"), 4)
            .arg(QStringLiteral("target"), -24));
    bool allMet = true;
    for (const Outcome& o : outcomes) {
        allMet = allMet && o.ok();
        QString line = QStringLiteral("%1  ").arg(o.name, -width);
        if (!o.problem.isEmpty()) {
            put(line + QStringLiteral("FAILED: ") + o.problem);
            continue;
        }
        line += QStringLiteral("%1  %2  %3  %4  %5")
                    .arg(o.medianMs, 10, 'f', 2)
                    .arg(o.floorMs, 10, 'f', 2)
                    .arg(o.floorMs > 0 ? o.medianMs / o.floorMs : 0.0, 7, 'f', 2)
                    .arg(o.runs, 4)
                    .arg(o.target, -24);
        if (!o.met)
            line += QStringLiteral("  MISSED");
        if (!o.agree)
            line += QStringLiteral("  DIFFERS: %1 seen, floor %2").arg(o.items).arg(o.floorItems);
        put(line);
    }
    for (const Outcome& o : outcomes)
        if (!o.note.isEmpty())
            put(QStringLiteral("  %1: %2").arg(o.name, o.note));
    return allMet;
}

namespace {

// A child process's end of the bench: its pipes, and the child waited for
// (killed when it outstays ten seconds) when this goes.
struct Child {
    pid_t pid = -1;
    int out = -1;   // its standard output, read here
    int err = -1;   // its standard error, read when it fails

    ~Child()
    {
        if (pid > 0) {
            const QDeadlineTimer deadline(10000);
            int status = 0;
            while (waitpid(pid, &status, WNOHANG) == 0) {
                if (deadline.hasExpired()) {
                    kill(pid, SIGKILL);
                    waitpid(pid, &status, 0);
                    break;
                }
                ::poll(nullptr, 0, 1);
            }
        }
        for (int fd : {out, err})
            if (fd >= 0)
                ::close(fd);
    }

    // Reads up to the first line of its output; false when none came in time.
    bool firstLine(QByteArray& line, int timeoutMs) const
    {
        const QDeadlineTimer deadline(timeoutMs);
        char c = 0;
        for (;;) {
            pollfd p{out, POLLIN, 0};
            if (::poll(&p, 1, int(deadline.remainingTime())) <= 0)
                return false;
            const ssize_t n = ::read(out, &c, 1);
            if (n <= 0)
                return false;
            if (c == '\n')
                return true;
            line += c;
        }
    }

    QString errorText() const
    {
        QByteArray text(4096, Qt::Uninitialized);
        const ssize_t n = err >= 0 ? ::read(err, text.data(), text.size()) : 0;
        return QString::fromLocal8Bit(text.left(int(std::max<ssize_t>(n, 0))));
    }
};

}  // namespace

qint64 timeToWindow(const QString& program, const QStringList& arguments)
{
    // posix_spawn, as a desktop launches a program: the child does not
    // start from a copy of the bench's own memory, which grows as it runs
    // and made each launch cost from 33 to 45 ms on either side.
    std::vector<QByteArray> words{QFile::encodeName(program)};
    for (const QString& a : arguments)
        words.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& w : words)
        argv.push_back(w.data());
    argv.push_back(nullptr);
    std::vector<QByteArray> env{QByteArrayLiteral("QT_QPA_PLATFORM=offscreen")};
    for (char** e = environ; *e; ++e)
        if (!QByteArray(*e).startsWith("QT_QPA_PLATFORM="))
            env.emplace_back(*e);
    std::vector<char*> envp;
    for (QByteArray& e : env)
        envp.push_back(e.data());
    envp.push_back(nullptr);

    int out[2];
    int err[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the child's output");
    if (pipe2(err, O_CLOEXEC) != 0) {
        ::close(out[0]);
        ::close(out[1]);
        throw std::runtime_error("no pipe for the child's errors");
    }
    Child child;
    child.out = out[0];
    child.err = err[0];
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    QElapsedTimer clock;
    clock.start();
    const int spawned =
        posix_spawn(&child.pid, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(err[1]);
    if (spawned != 0) {
        child.pid = -1;
        throw std::runtime_error(QStringLiteral("%1 did not start: %2")
                                     .arg(program, QString::fromLocal8Bit(strerror(spawned)))
                                     .toStdString());
    }
    QByteArray line;
    if (!child.firstLine(line, 30000)) {
        kill(child.pid, SIGKILL);
        throw std::runtime_error(
            QStringLiteral("%1 showed no window: %2").arg(program, child.errorText()).toStdString());
    }
    const qint64 us = clock.nsecsElapsed() / 1000;
    bool number = false;
    line.trimmed().toLongLong(&number);
    if (!number)
        throw std::runtime_error(QStringLiteral("%1 printed no start-up milliseconds")
                                     .arg(program)
                                     .toStdString());
    return us;
}

QString narrowedSource(const QString& command, const QString& child, const QString& condition)
{
    const tq::Shape* shape = nullptr;
    for (const tq::CommandDef& def : tq::amb1().catalogue())
        if (def.name.compare(command, Qt::CaseInsensitive) == 0)
            shape = def.shape.get();
    if (shape && !child.isEmpty()) {
        const tq::Shape* parent = shape;
        shape = nullptr;
        for (const tq::Shape::Relation& r : parent->relations)
            if (r.name.compare(child, Qt::CaseInsensitive) == 0)
                shape = r.child.get();
    }
    if (!shape)
        throw std::runtime_error(
            QStringLiteral("%1 %2 has no stored shape").arg(command, child).toStdString());
    QString sql = shape->sql;
    if (!sql.contains(QLatin1String(" WHERE "), Qt::CaseInsensitive))
        throw std::runtime_error(
            QStringLiteral("the source of %1 has no WHERE").arg(command).toStdString());
    const int order = sql.lastIndexOf(QLatin1String(" ORDER BY "), -1, Qt::CaseInsensitive);
    const QString narrowing = QStringLiteral(" AND ") + condition;
    if (order >= 0)
        sql.insert(order, narrowing);
    else
        sql += narrowing;
    return sql;
}

}  // namespace bench
