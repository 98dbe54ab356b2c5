#include "bare.h"

namespace bench {

namespace {

[[noreturn]] void fail(sqlite3* db, const QString& what)
{
    throw StoreError(QStringLiteral("%1: %2")
                         .arg(what, QString::fromUtf8(db ? sqlite3_errmsg(db) : "no connection"))
                         .toStdString());
}

}  // namespace

sqlite3* openBare(const QString& path, bool readOnly)
{
    sqlite3* db = nullptr;
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (sqlite3_open_v2(path.toUtf8().constData(), &db, flags, nullptr) != SQLITE_OK) {
        const QString why = QString::fromUtf8(db ? sqlite3_errmsg(db) : "out of memory");
        sqlite3_close(db);
        throw StoreError(QStringLiteral("cannot open %1: %2").arg(path, why).toStdString());
    }
    sqlite3_busy_timeout(db, 5000);
    return db;
}

void closeBare(sqlite3* db)
{
    sqlite3_close(db);
}

void execBare(sqlite3* db, const char* sql)
{
    char* error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) != SQLITE_OK) {
        const QString why = QString::fromUtf8(error ? error : "");
        sqlite3_free(error);
        throw StoreError(QStringLiteral("%1: %2").arg(QString::fromUtf8(sql), why).toStdString());
    }
}

Stmt::Stmt(sqlite3* db, const char* sql) : m_db(db)
{
    if (sqlite3_prepare_v2(db, sql, -1, &m_stmt, nullptr) != SQLITE_OK)
        fail(db, QString::fromUtf8(sql));
}

Stmt::Stmt(sqlite3* db, const QString& sql) : Stmt(db, sql.toUtf8().constData()) {}

Stmt::~Stmt()
{
    sqlite3_finalize(m_stmt);
}

void Stmt::check(int rc) const
{
    if (rc != SQLITE_OK)
        fail(m_db, QString::fromUtf8(sqlite3_sql(m_stmt)));
}

void Stmt::bind(int at, Null) { check(sqlite3_bind_null(m_stmt, at)); }
void Stmt::bind(int at, int v) { check(sqlite3_bind_int(m_stmt, at, v)); }
void Stmt::bind(int at, qint64 v) { check(sqlite3_bind_int64(m_stmt, at, v)); }
void Stmt::bind(int at, bool v) { check(sqlite3_bind_int(m_stmt, at, v ? 1 : 0)); }
void Stmt::bind(int at, double v) { check(sqlite3_bind_double(m_stmt, at, v)); }

void Stmt::bind(int at, const char* v)
{
    check(sqlite3_bind_text(m_stmt, at, v, -1, SQLITE_TRANSIENT));
}

void Stmt::bind(int at, const QString& v)
{
    if (v.isNull())
        return bind(at, null);
    const QByteArray utf8 = v.toUtf8();
    check(sqlite3_bind_text(m_stmt, at, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT));
}

void Stmt::bind(int at, const QDate& v)
{
    if (!v.isValid())
        return bind(at, null);
    bind(at, v.toString(Qt::ISODate));
}

void Stmt::bind(int at, const QDateTime& v)
{
    if (!v.isValid())
        return bind(at, null);
    bind(at, v.toString(Qt::ISODateWithMs));
}

void Stmt::run()
{
    const int rc = sqlite3_step(m_stmt);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW)
        fail(m_db, QString::fromUtf8(sqlite3_sql(m_stmt)));
    sqlite3_reset(m_stmt);
}

bool Stmt::next()
{
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE)
        fail(m_db, QString::fromUtf8(sqlite3_sql(m_stmt)));
    sqlite3_reset(m_stmt);
    return false;
}

qint64 Stmt::readRows()
{
    const int columns = sqlite3_column_count(m_stmt);
    qint64 rows = 0;
    while (next()) {
        // Each value is fetched in the form it is stored in, as any reader must.
        for (int c = 0; c < columns; ++c) {
            switch (sqlite3_column_type(m_stmt, c)) {
            case SQLITE_INTEGER: (void)sqlite3_column_int64(m_stmt, c); break;
            case SQLITE_FLOAT: (void)sqlite3_column_double(m_stmt, c); break;
            case SQLITE_TEXT: (void)sqlite3_column_text(m_stmt, c); break;
            case SQLITE_BLOB: (void)sqlite3_column_blob(m_stmt, c); break;
            default: break;
            }
        }
        ++rows;
    }
    return rows;
}

int Stmt::columnInt(int col) const { return sqlite3_column_int(m_stmt, col); }

double Stmt::columnDouble(int col) const { return sqlite3_column_double(m_stmt, col); }

QString Stmt::columnText(int col) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, col));
    return text ? QString::fromUtf8(text, sqlite3_column_bytes(m_stmt, col)) : QString();
}

bool Stmt::columnIsNull(int col) const
{
    return sqlite3_column_type(m_stmt, col) == SQLITE_NULL;
}

double scalarBare(sqlite3* db, const char* sql)
{
    Stmt s(db, sql);
    double v = 0;
    if (s.next()) {
        v = s.columnDouble(0);
        while (s.next()) {
        }
    }
    return v;
}

}  // namespace bench
