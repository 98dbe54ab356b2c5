#include "bare.h"

#include <QLocale>
#include <charconv>
#include <libpq-fe.h>
#include <sqlite3.h>

namespace bench {

namespace {

[[noreturn]] void failFile(sqlite3* db, const QString& what)
{
    throw StoreError(QStringLiteral("%1: %2")
                         .arg(what, QString::fromUtf8(db ? sqlite3_errmsg(db) : "no connection"))
                         .toStdString());
}

// Runs a statement without values on the server and checks that it went through.
void execServer(PGconn* db, const char* sql)
{
    PGresult* r = PQexec(db, sql);
    const ExecStatusType status = PQresultStatus(r);
    const QString why = QString::fromUtf8(PQresultErrorMessage(r)).trimmed();
    PQclear(r);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
        throw StoreError(QStringLiteral("%1: %2").arg(QString::fromUtf8(sql), why).toStdString());
}

// The statement as the server is sent it: the data layer's dialect (LIKE
// ignoring case), and each `?` outside quotes numbered $1, $2, ...
QByteArray toServer(const QString& sql, int* placeholders)
{
    const QString adapted = tq::dialect::adapted(sql, tq::Engine::Server);
    QString out;
    out.reserve(adapted.size() + 16);
    QChar quote;
    int n = 0;
    for (const QChar c : adapted) {
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
        } else if (c == QLatin1Char('?')) {
            out += QLatin1Char('$') + QString::number(++n);
            continue;
        }
        out += c;
    }
    *placeholders = n;
    return out.toUtf8();
}

}  // namespace

Connection* openBare(const StoreAt& store, bool readOnly)
{
    auto* c = new Connection;
    c->m_engine = store.engine;
    if (store.engine == tq::Engine::Server) {
        c->m_server = PQconnectdb(store.location.toUtf8().constData());
        if (PQstatus(c->m_server) != CONNECTION_OK) {
            const QString why = QString::fromUtf8(PQerrorMessage(c->m_server)).trimmed();
            closeBare(c);
            throw StoreError(
                QStringLiteral("cannot connect to %1: %2").arg(store.location, why).toStdString());
        }
        // The server's notices are its own business, not the bench's output.
        PQsetNoticeProcessor(c->m_server, [](void*, const char*) {}, nullptr);
        if (readOnly)
            execServer(c->m_server, "SET default_transaction_read_only = on");
        return c;
    }
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (sqlite3_open_v2(store.location.toUtf8().constData(), &c->m_file, flags, nullptr)
        != SQLITE_OK) {
        const QString why = QString::fromUtf8(c->m_file ? sqlite3_errmsg(c->m_file) : "out of memory");
        closeBare(c);
        throw StoreError(QStringLiteral("cannot open %1: %2").arg(store.location, why).toStdString());
    }
    sqlite3_busy_timeout(c->m_file, 5000);
    return c;
}

void closeBare(Connection* db)
{
    if (!db)
        return;
    if (db->m_file)
        sqlite3_close(db->m_file);
    if (db->m_server)
        PQfinish(db->m_server);
    delete db;
}

void execBare(Connection* db, const char* sql)
{
    if (db->server())
        return execServer(db->server(), sql);
    char* error = nullptr;
    if (sqlite3_exec(db->file(), sql, nullptr, nullptr, &error) != SQLITE_OK) {
        const QString why = QString::fromUtf8(error ? error : "");
        sqlite3_free(error);
        throw StoreError(QStringLiteral("%1: %2").arg(QString::fromUtf8(sql), why).toStdString());
    }
}

Stmt::Stmt(Connection* db, const char* sql) : m_db(db)
{
    if (db->server()) {
        int placeholders = 0;
        m_sql = toServer(QString::fromUtf8(sql), &placeholders);
        m_values.resize(placeholders);   // a value never bound is NULL, as in the file
        return;
    }
    if (sqlite3_prepare_v2(db->file(), sql, -1, &m_stmt, nullptr) != SQLITE_OK)
        failFile(db->file(), QString::fromUtf8(sql));
}

Stmt::Stmt(Connection* db, const QString& sql) : Stmt(db, sql.toUtf8().constData()) {}

Stmt::~Stmt()
{
    if (m_stmt)
        sqlite3_finalize(m_stmt);
    if (m_result)
        PQclear(m_result);
}

void Stmt::fail() const
{
    if (m_db->server())
        throw StoreError(QStringLiteral("%1: %2")
                             .arg(QString::fromUtf8(m_sql),
                                  QString::fromUtf8(m_result ? PQresultErrorMessage(m_result)
                                                             : PQerrorMessage(m_db->server()))
                                      .trimmed())
                             .toStdString());
    failFile(m_db->file(), QString::fromUtf8(sqlite3_sql(m_stmt)));
}

void Stmt::check(int rc) const
{
    if (rc != SQLITE_OK)
        fail();
}

void Stmt::bindText(int at, QByteArray text)
{
    if (at < 1 || at > int(m_values.size()))
        throw StoreError(QStringLiteral("%1: no value %2 to bind")
                             .arg(QString::fromUtf8(m_sql))
                             .arg(at)
                             .toStdString());
    m_values[at - 1] = std::move(text);
}

void Stmt::bind(int at, Null)
{
    if (m_db->server()) {
        bindText(at, {});
        m_values[at - 1].reset();
        return;
    }
    check(sqlite3_bind_null(m_stmt, at));
}

void Stmt::bind(int at, int v)
{
    if (m_db->server())
        return bindText(at, QByteArray::number(v));
    check(sqlite3_bind_int(m_stmt, at, v));
}

void Stmt::bind(int at, qint64 v)
{
    if (m_db->server())
        return bindText(at, QByteArray::number(v));
    check(sqlite3_bind_int64(m_stmt, at, v));
}

void Stmt::bind(int at, bool v)
{
    if (m_db->server())
        return bindText(at, v ? QByteArrayLiteral("true") : QByteArrayLiteral("false"));
    check(sqlite3_bind_int(m_stmt, at, v ? 1 : 0));
}

void Stmt::bind(int at, double v)
{
    if (m_db->server())
        return bindText(at, QByteArray::number(v, 'g', QLocale::FloatingPointShortest));
    check(sqlite3_bind_double(m_stmt, at, v));
}

void Stmt::bind(int at, const char* v)
{
    if (m_db->server())
        return bindText(at, QByteArray(v));
    check(sqlite3_bind_text(m_stmt, at, v, -1, SQLITE_TRANSIENT));
}

void Stmt::bind(int at, const QString& v)
{
    if (v.isNull())
        return bind(at, null);
    QByteArray utf8 = v.toUtf8();
    if (m_db->server())
        return bindText(at, std::move(utf8));
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

void Stmt::execute()
{
    if (m_result)
        PQclear(m_result);
    std::vector<const char*> values(m_values.size());
    for (std::size_t i = 0; i < m_values.size(); ++i)
        values[i] = m_values[i] ? m_values[i]->constData() : nullptr;
    m_result = PQexecParams(m_db->server(), m_sql.constData(), int(values.size()), nullptr,
                            values.data(), nullptr, nullptr, 0);
    m_row = -1;
    const ExecStatusType status = PQresultStatus(m_result);
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK)
        fail();
}

void Stmt::run()
{
    if (m_db->server()) {
        execute();
        PQclear(m_result);
        m_result = nullptr;
        return;
    }
    const int rc = sqlite3_step(m_stmt);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW)
        fail();
    sqlite3_reset(m_stmt);
}

bool Stmt::next()
{
    if (m_db->server()) {
        if (!m_result)
            execute();
        if (++m_row < PQntuples(m_result))
            return true;
        PQclear(m_result);
        m_result = nullptr;
        return false;
    }
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE)
        fail();
    sqlite3_reset(m_stmt);
    return false;
}

qint64 Stmt::readRows()
{
    if (m_db->server()) {
        execute();
        const int rows = PQntuples(m_result);
        const int columns = PQnfields(m_result);
        // Every value came over in its text form; each is looked at once.
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < columns; ++c)
                (void)PQgetvalue(m_result, r, c);
        PQclear(m_result);
        m_result = nullptr;
        return rows;
    }
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

const char* Stmt::value(int col) const { return PQgetvalue(m_result, m_row, col); }

int Stmt::columnInt(int col) const
{
    if (!m_db->server())
        return sqlite3_column_int(m_stmt, col);
    const char* v = value(col);
    if (*v == 't' || *v == 'f')
        return *v == 't';
    return int(columnDouble(col));
}

double Stmt::columnDouble(int col) const
{
    if (!m_db->server())
        return sqlite3_column_double(m_stmt, col);
    const char* v = value(col);
    if (*v == 't' || *v == 'f')
        return *v == 't';
    double d = 0;
    std::from_chars(v, v + PQgetlength(m_result, m_row, col), d);
    return d;
}

QString Stmt::columnText(int col) const
{
    if (m_db->server())
        return PQgetisnull(m_result, m_row, col)
                   ? QString()
                   : QString::fromUtf8(value(col), PQgetlength(m_result, m_row, col));
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, col));
    return text ? QString::fromUtf8(text, sqlite3_column_bytes(m_stmt, col)) : QString();
}

bool Stmt::columnIsNull(int col) const
{
    if (m_db->server())
        return PQgetisnull(m_result, m_row, col);
    return sqlite3_column_type(m_stmt, col) == SQLITE_NULL;
}

int Stmt::columnCount() const
{
    return m_db->server() ? PQnfields(m_result) : sqlite3_column_count(m_stmt);
}

double scalarBare(Connection* db, const char* sql)
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

std::vector<int> intColumn(Stmt& s)
{
    std::vector<int> out;
    while (s.next())
        out.push_back(s.columnInt(0));
    return out;
}

}  // namespace bench
