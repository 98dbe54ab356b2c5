#pragma once
// The store with nothing of ours in between: SQLite's C API for the store
// file, libpq for a database on the server. The large store is filled through
// it, and every floor runs its SQL through it, on the engine the program runs
// on. Values are bound the way Qt's drivers bind them, so that both sides read
// the same stored forms: a QDate as "YYYY-MM-DD", a QDateTime as
// "YYYY-MM-DDTHH:MM:SS.zzz", money as the "#.00" text the program writes, a
// bool as 0/1 in the file and as true/false on the server.
//
// On the server a statement is run as the program's data layer would have it
// run (its LIKE ignoring case), with each `?` sent as a parameter of its own
// ($1, $2, ...) in one round trip.
#include "foundation/data/dialect.h"

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <optional>
#include <stdexcept>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;
struct pg_conn;
struct pg_result;

namespace bench {

// A failure of the store, with the engine's own words.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Where a store is: the store file, or a libpq connection text.
struct StoreAt {
    tq::Engine engine = tq::Engine::Embedded;
    QString location;
    static StoreAt file(const QString& path) { return {tq::Engine::Embedded, path}; }
    static StoreAt server(const QString& connection) { return {tq::Engine::Server, connection}; }
};

// One bare connection to a store.
class Connection {
public:
    tq::Engine engine() const { return m_engine; }
    sqlite3* file() const { return m_file; }      // null on the server
    pg_conn* server() const { return m_server; }  // null on the store file

private:
    friend Connection* openBare(const StoreAt& store, bool readOnly);
    friend void closeBare(Connection* db);
    tq::Engine m_engine = tq::Engine::Embedded;
    sqlite3* m_file = nullptr;
    pg_conn* m_server = nullptr;
};

Connection* openBare(const StoreAt& store, bool readOnly);
void closeBare(Connection* db);
// Runs SQL without values (BEGIN, COMMIT, settings).
void execBare(Connection* db, const char* sql);

// Stands for SQL NULL in bind lists.
struct Null {};
inline constexpr Null null{};

// One statement: bind, step, read, reset.
class Stmt {
public:
    Stmt(Connection* db, const char* sql);
    Stmt(Connection* db, const QString& sql);
    ~Stmt();
    Stmt(const Stmt&) = delete;
    Stmt& operator=(const Stmt&) = delete;

    void bind(int at, Null);
    void bind(int at, int v);
    void bind(int at, qint64 v);
    void bind(int at, bool v);
    void bind(int at, double v);
    void bind(int at, const char* v);
    void bind(int at, const QString& v);   // a null QString binds NULL, as Qt's drivers do
    void bind(int at, const QDate& v);
    void bind(int at, const QDateTime& v);
    template <typename T>
    void bind(int at, const std::optional<T>& v)
    {
        if (v)
            bind(at, *v);
        else
            bind(at, null);
    }
    template <typename... T>
    void bind(int at, const std::variant<T...>& v)
    {
        std::visit([&](const auto& value) { bind(at, value); }, v);
    }

    // Binds the values in order and runs the statement once (a write).
    template <typename... Values>
    void row(const Values&... values)
    {
        int at = 0;
        (bind(++at, values), ...);
        run();
    }
    void run();

    // Binds the values in order and reads every row, touching each column
    // as a reader would; returns the number of rows.
    template <typename... Values>
    qint64 readAll(const Values&... values)
    {
        int at = 0;
        (bind(++at, values), ...);
        return readRows();
    }

    bool next();   // steps to the next row; false at the end (and resets)
    int columnInt(int col) const;        // a yes/no column reads 1 or 0 on both engines
    double columnDouble(int col) const;
    QString columnText(int col) const;   // "" for NULL
    bool columnIsNull(int col) const;
    int columnCount() const;

private:
    qint64 readRows();
    void check(int rc) const;
    [[noreturn]] void fail() const;
    void bindText(int at, QByteArray text);
    void execute();   // on the server: sends the statement with its values
    const char* value(int col) const;

    Connection* m_db;
    // The store file.
    sqlite3_stmt* m_stmt = nullptr;
    // The server: the statement, its values as text (null for NULL), and the
    // rows of the last run with the cursor in them.
    QByteArray m_sql;
    std::vector<std::optional<QByteArray>> m_values;
    pg_result* m_result = nullptr;
    int m_row = -1;
};

// The value of the first column of the first row.
double scalarBare(Connection* db, const char* sql);
// The first column of every row, as whole numbers (the values already bound).
std::vector<int> intColumn(Stmt& s);

}  // namespace bench
