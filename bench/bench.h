#pragma once
// The paths a user waits on, each timed through the program's own code and
// beside it its floor: the same SQL run bare on the same store (SQLite's C
// API on the store file, libpq on the server; bare.h). A path is a name, the
// two pieces of work and a target; each area of the program adds its paths in
// a few lines (paths_*.cpp).
#include "bare.h"

#include "billing/invoice/invoicesave.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/prompt.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class QTextStream;

namespace bench {

// What a path must meet.
struct Target {
    enum class Kind { WithinFloor, StartUp };
    Kind kind = Kind::WithinFloor;
    double ratio = 3.0;          // times its floor
    double ceilingMs = 100.0;    // the median's ceiling, whatever the floor
    double smallFloorMs = 3.0;   // a floor under 1 ms still allows this much

    // The house rule: within 100 ms median and within 3x its bare-SQL floor
    // (up to 3 ms where the floor is under 1 ms).
    static Target withinFloor();
    // Start-up: within 1.2x a bare window's.
    static Target startUp();

    bool met(double medianMs, double floorMs) const;
    QString text() const;
};

// One piece of timed work. Returns what it saw (rows read, sign-on granted),
// which the program's side and the floor must agree on.
using Work = std::function<qint64()>;

struct Path {
    QString name;
    Work run;     // through the program's code, as its screen runs it
    Work floor;   // the same SQL bare, on the same engine
    Target target = Target::withinFloor();
    QString note = {};   // printed under the table when set
    // run and floor each start a whole process and return the microseconds
    // until its window is on screen; what they saw is not compared.
    bool wholeProcess = false;
    // Run once after the timing, untimed: a path that writes takes its rows away.
    std::function<void()> after = {};
};

// What every path may use.
struct Context {
    StoreAt store;         // the store the program has open: lab.db, or the server's copy
    QString dataFolder;    // given to the program with --data (a servidor.conf on the server)
    Connection* bare = nullptr;   // a connection of its own for the floors
    int invoice = 0;       // an invoice in the middle of the store
    QDate cutDay;          // that invoice's day
    QString user;          // an employee with the right to enter
    QString password;      // that employee's password
    QString program;       // build/tarvenquil
    QString bareWindow;    // the floor of the start-up
};

struct Outcome {
    QString name;
    double medianMs = 0;
    double floorMs = 0;
    qint64 items = 0;
    qint64 floorItems = 0;
    int runs = 0;
    bool agree = true;     // both sides saw the same
    bool met = true;
    QString target;
    QString problem;       // why the path could not be timed
    QString note;
    bool ok() const { return agree && met && problem.isEmpty(); }
};

// Nobody answers during a benchmark: whatever a screen says is kept, and
// the path that made it speak fails. A path that expects a word of its own
// derives, answers that, and leaves the rest to this.
class SilentPrompts : public tq::PromptService {
public:
    tq::Answer message(const QString& text, tq::Icon, const QString&, tq::Buttons) override;
    std::optional<QString> input(const QString& prompt, const QString&, const QString&) override;
    QString openFile(const QString& caption, const QString&, const QString&) override;
    QString saveFile(const QString& caption, const QString&, const QString&) override;
    void showModal(QWidget* screen) override;
    void endProgram() override {}
};

// A path's own service, in force while it lives.
class PathPrompts : public SilentPrompts {
public:
    PathPrompts() : m_previous(tq::installPrompts(this)) {}
    ~PathPrompts() override { tq::installPrompts(m_previous); }
    PathPrompts(const PathPrompts&) = delete;
    PathPrompts& operator=(const PathPrompts&) = delete;

private:
    tq::PromptService* m_previous;
};

// A document the bench saves: numbered `numero`, dated today, billed by
// "bench" to `patient`, one line of 100.00 per exam (the first of
// `firstQuantity` units).
tq::PricedDocument benchDocument(qint64 numero, int patient, const std::vector<int>& exams,
                                 int firstQuantity = 1);

class Bench {
public:
    void add(Path path);
    // Times the paths whose name contains `only` (every path when empty).
    std::vector<Outcome> run(const QString& only);
    // The table, one row per path, then the notes. Returns true when every
    // path met its target.
    bool print(QTextStream& out, const std::vector<Outcome>& outcomes) const;

    // Texts the screens put up while they were timed; a screen that talks to
    // the user has failed its path. Filled by the bench's prompt service.
    static QStringList& promptsSeen();

private:
    Outcome measure(const Path& path);
    std::vector<Path> m_paths;
};

// Microseconds from launching `program` until it prints its start-up line
// (once its window is exposed). Throws std::runtime_error.
qint64 timeToWindow(const QString& program, const QStringList& arguments);

// The text of a named command's stored source ("rsrfact1"), or of one of its
// children ("Command1"), narrowed by a condition with bound values: the SQL a
// floor runs for a filtered source.
QString narrowedSource(const QString& command, const QString& child, const QString& condition);

// A report source as the screens open it: closed if open, opened, filtered.
tq::Recordset& openFiltered(const QString& command, const QString& filter);

// The areas of the program, each adding its paths.
void addFoundationPaths(Bench& bench, const Context& context);
void addExamPaths(Bench& bench, const Context& context);
void addPatientPaths(Bench& bench, const Context& context);
void addBillingPaths(Bench& bench, const Context& context);
void addReportPaths(Bench& bench, const Context& context);
void addCutPaths(Bench& bench, const Context& context);
void addLabPaths(Bench& bench, const Context& context);     // the work table (paths_lab.cpp)
void addSheetPaths(Bench& bench, const Context& context);   // the result sheets (paths_sheets.cpp)
void addSearchPaths(Bench& bench, const Context& context);
void addResultPaths(Bench& bench, const Context& context);   // printing and history (paths_results.cpp)
void addOrderPaths(Bench& bench, const Context& context);    // orders and quotations (paths_orders.cpp)

// The floor of laying a hematology version out: its parameters in order, the
// catalogue rows of their names (the first of each), the normal values of
// those found; the names that land on the sheet (paths_sheets.cpp).
qint64 hematologyNamesBare(Connection* db, int version);
// The twenty-one values typed on a hematology sheet, in the order it saves
// them (paths_sheets.cpp).
QList<std::pair<QString, QString>> hematologyCells();

}  // namespace bench
