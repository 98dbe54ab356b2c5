#pragma once
// SQLite's C API with nothing of ours in between: the large store is filled
// through it, and every floor runs its SQL through it. Values are bound the
// way Qt's driver binds them, so that both sides read the same stored forms:
// a QDate as "YYYY-MM-DD", a QDateTime as "YYYY-MM-DDTHH:MM:SS.zzz", a bool
// as 0/1, money as the "#.00" text the program writes.
#include <QDate>
#include <QDateTime>
#include <QString>
#include <optional>
#include <sqlite3.h>
#include <stdexcept>
#include <variant>

namespace bench {

// A failure of the store, with SQLite's own words.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

sqlite3* openBare(const QString& path, bool readOnly);
void closeBare(sqlite3* db);
void execBare(sqlite3* db, const char* sql);

// Stands for SQL NULL in bind lists.
struct Null {};
inline constexpr Null null{};

// One prepared statement: bind, step, read, reset.
class Stmt {
public:
    Stmt(sqlite3* db, const char* sql);
    Stmt(sqlite3* db, const QString& sql);
    ~Stmt();
    Stmt(const Stmt&) = delete;
    Stmt& operator=(const Stmt&) = delete;

    void bind(int at, Null);
    void bind(int at, int v);
    void bind(int at, qint64 v);
    void bind(int at, bool v);
    void bind(int at, double v);
    void bind(int at, const char* v);
    void bind(int at, const QString& v);   // a null QString binds NULL, as Qt's driver does
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
    int columnInt(int col) const;
    double columnDouble(int col) const;
    QString columnText(int col) const;   // "" for NULL
    bool columnIsNull(int col) const;

private:
    qint64 readRows();
    void check(int rc) const;

    sqlite3* m_db;
    sqlite3_stmt* m_stmt = nullptr;
};

// The value of the first column of the first row.
double scalarBare(sqlite3* db, const char* sql);

}  // namespace bench
