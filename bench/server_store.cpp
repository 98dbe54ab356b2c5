#include "server_store.h"

#include "foundation/data/amb1.h"
#include "foundation/data/schema.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <libpq-fe.h>
#include <sqlite3.h>

namespace bench {

namespace {

// The finished copy, and its name while it is being made: a copy cut short
// never carries the finished name, and the next run throws it away.
const QString kCopy = QStringLiteral("laboratorio");
const QString kCopying = QStringLiteral("laboratorio_copiando");

// A libpq connection that is closed when it goes out of scope.
class ServerLink {
public:
    explicit ServerLink(const QString& connection)
        : m_db(PQconnectdb(connection.toUtf8().constData()))
    {
        if (PQstatus(m_db) != CONNECTION_OK)
            throw StoreError(QStringLiteral("cannot connect to %1: %2")
                                 .arg(connection, QString::fromUtf8(PQerrorMessage(m_db)).trimmed())
                                 .toStdString());
        PQsetNoticeProcessor(m_db, [](void*, const char*) {}, nullptr);
    }
    ~ServerLink() { PQfinish(m_db); }
    ServerLink(const ServerLink&) = delete;
    ServerLink& operator=(const ServerLink&) = delete;
    PGconn* get() const { return m_db; }

    // Runs SQL without values; returns the first value of the first row, if any.
    QString exec(const QString& sql) const
    {
        PGresult* r = PQexec(m_db, sql.toUtf8().constData());
        const ExecStatusType status = PQresultStatus(r);
        const QString why = QString::fromUtf8(PQresultErrorMessage(r)).trimmed();
        QString first;
        if (status == PGRES_TUPLES_OK && PQntuples(r) > 0 && PQnfields(r) > 0)
            first = QString::fromUtf8(PQgetvalue(r, 0, 0));
        PQclear(r);
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
            throw StoreError(QStringLiteral("%1: %2").arg(sql, why).toStdString());
        return first;
    }

private:
    PGconn* m_db;
};

// One table's rows from the file to the server through COPY, in its text
// form: NULL as \N, and the backslash, tab and line breaks escaped.
void copyTable(sqlite3* file, PGconn* server, const QString& table)
{
    const QStringList columns = tq::schema::columnNames(table);
    const QString list = columns.join(QStringLiteral(", "));
    sqlite3_stmt* read = nullptr;
    const QByteArray select = QStringLiteral("SELECT %1 FROM %2").arg(list, table).toUtf8();
    if (sqlite3_prepare_v2(file, select.constData(), -1, &read, nullptr) != SQLITE_OK)
        throw StoreError(QStringLiteral("%1: %2")
                             .arg(QString::fromUtf8(select), QString::fromUtf8(sqlite3_errmsg(file)))
                             .toStdString());
    auto serverFailure = [&](const QString& what) {
        sqlite3_finalize(read);
        return StoreError(QStringLiteral("copying %1, %2: %3")
                              .arg(table, what, QString::fromUtf8(PQerrorMessage(server)).trimmed())
                              .toStdString());
    };
    // FREEZE: the table was emptied in this same transaction, so its rows are
    // written as already visible to everyone, as a store long in use has them.
    PGresult* start = PQexec(
        server,
        QStringLiteral("COPY %1 (%2) FROM STDIN WITH (FREEZE)").arg(table, list).toUtf8().constData());
    const bool copying = PQresultStatus(start) == PGRES_COPY_IN;
    PQclear(start);
    if (!copying)
        throw serverFailure(QStringLiteral("COPY"));

    QByteArray buffer;
    buffer.reserve(1 << 20);
    const int n = int(columns.size());
    int rc;
    while ((rc = sqlite3_step(read)) == SQLITE_ROW) {
        for (int c = 0; c < n; ++c) {
            if (c)
                buffer += '\t';
            if (sqlite3_column_type(read, c) == SQLITE_NULL) {
                buffer += "\\N";
                continue;
            }
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(read, c));
            const int bytes = sqlite3_column_bytes(read, c);
            for (int i = 0; i < bytes; ++i) {
                switch (text[i]) {
                case '\\': buffer += "\\\\"; break;
                case '\t': buffer += "\\t"; break;
                case '\n': buffer += "\\n"; break;
                case '\r': buffer += "\\r"; break;
                default: buffer += text[i];
                }
            }
        }
        buffer += '\n';
        if (buffer.size() > (1 << 20) - 4096) {
            if (PQputCopyData(server, buffer.constData(), int(buffer.size())) != 1)
                throw serverFailure(QStringLiteral("sending rows"));
            buffer.clear();
        }
    }
    if (rc != SQLITE_DONE) {
        const QString why = QString::fromUtf8(sqlite3_errmsg(file));
        PQputCopyEnd(server, "the store file could not be read");
        while (PGresult* r = PQgetResult(server))
            PQclear(r);
        sqlite3_finalize(read);
        throw StoreError(QStringLiteral("reading %1: %2").arg(table, why).toStdString());
    }
    sqlite3_finalize(read);
    if ((!buffer.isEmpty() && PQputCopyData(server, buffer.constData(), int(buffer.size())) != 1)
        || PQputCopyEnd(server, nullptr) != 1)
        throw StoreError(QStringLiteral("copying %1: %2")
                             .arg(table, QString::fromUtf8(PQerrorMessage(server)).trimmed())
                             .toStdString());
    QString why;
    while (PGresult* r = PQgetResult(server)) {
        if (PQresultStatus(r) != PGRES_COMMAND_OK)
            why = QString::fromUtf8(PQresultErrorMessage(r)).trimmed();
        PQclear(r);
    }
    if (!why.isEmpty())
        throw StoreError(QStringLiteral("copying %1: %2").arg(table, why).toStdString());
}

// tests/pg/server.sh with a mode and the server's folder. Throws StoreError.
void serverScript(const QString& mode, const QString& folder)
{
    QProcess script;
    script.start(QStringLiteral(TQ_BENCH_SERVER_SCRIPT), {mode, folder});
    if (!script.waitForFinished(180000) || script.exitStatus() != QProcess::NormalExit
        || script.exitCode() != 0) {
        script.kill();
        throw StoreError(QStringLiteral("server.sh %1 %2 failed: %3")
                             .arg(mode, folder,
                                  QString::fromLocal8Bit(script.readAllStandardError()).trimmed())
                             .toStdString());
    }
}

QString connectionTo(const QString& folder, const QString& database)
{
    return QStringLiteral("host=%1 user=postgres dbname=%2").arg(folder, database);
}

}  // namespace

void serverCommand(const QString& connection, const QString& sql)
{
    ServerLink(connection).exec(sql);
}

void copyToServer(const QString& storeFile, const QString& connection)
{
    tq::amb1().openServer(connection);
    tq::amb1().closeStore();

    sqlite3* file = nullptr;
    if (sqlite3_open_v2(storeFile.toUtf8().constData(), &file, SQLITE_OPEN_READONLY, nullptr)
        != SQLITE_OK) {
        sqlite3_close(file);
        throw StoreError(QStringLiteral("cannot open %1").arg(storeFile).toStdString());
    }
    try {
        const ServerLink server(connection);
        const QStringList tables = tq::schema::tableNames();
        server.exec(QStringLiteral("BEGIN"));
        // The first rows the program wrote are in the file as well, as the
        // fill left them.
        server.exec(QStringLiteral("TRUNCATE ") + tables.join(QStringLiteral(", ")));
        for (const QString& table : tables)
            copyTable(file, server.get(), table);
        server.exec(QStringLiteral("COMMIT"));
    } catch (...) {
        sqlite3_close(file);
        throw;
    }
    sqlite3_close(file);

    tq::amb1().openServer(connection);
    tq::schema::syncCounters(tq::amb1().connection());
    tq::amb1().closeStore();
    serverCommand(connection, QStringLiteral("ANALYZE"));
}

LargeServerStore::LargeServerStore(const QString& benchDir, const LargeStore& store, bool rebuild)
{
    const QString name = QStringLiteral("servidor-") + store.key;
    folder = QDir(benchDir).filePath(name);
    // Servers of earlier fills or schemas go, stopped first.
    for (const QString& old : QDir(benchDir).entryList({QStringLiteral("servidor-*")}, QDir::Dirs))
        if (old != name)
            serverScript(QStringLiteral("stop"), QDir(benchDir).filePath(old));

    // A server made by an earlier run starts as it was left; a missing or
    // broken one is made anew (start wipes its folder).
    bool fresh = rebuild
                 || !QFileInfo::exists(QDir(folder).filePath(QStringLiteral("data/PG_VERSION")));
    if (!fresh) {
        try {
            serverScript(QStringLiteral("resume"), folder);
        } catch (const StoreError&) {
            fresh = true;
        }
    }
    if (fresh)
        serverScript(QStringLiteral("start"), folder);

    try {
        const QString admin = connectionTo(folder, QStringLiteral("postgres"));
        connection = connectionTo(folder, kCopy);
        {
            const ServerLink link(admin);
            version = link.exec(QStringLiteral("SHOW server_version"))
                          .section(QLatin1Char(' '), 0, 0);   // "15.18 (Debian ...)"
            if (link.exec(QStringLiteral("SELECT count(*) FROM pg_database WHERE datname = '%1'")
                              .arg(kCopy))
                == QLatin1String("0")) {
                QElapsedTimer clock;
                clock.start();
                link.exec(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(kCopying));
                link.exec(QStringLiteral("CREATE DATABASE %1").arg(kCopying));
                try {
                    copyToServer(store.path, connectionTo(folder, kCopying));
                    link.exec(QStringLiteral("ALTER DATABASE %1 RENAME TO %2").arg(kCopying, kCopy));
                } catch (...) {
                    tq::amb1().closeStore();
                    try {
                        link.exec(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)")
                                      .arg(kCopying));
                    } catch (const StoreError&) {
                        // the next run throws it away
                    }
                    throw;
                }
                copySeconds = clock.elapsed() / 1000.0;
            }
        }

        // The program is pointed at the copy the way a workstation is.
        dataFolder = QDir(folder).filePath(QStringLiteral("datos"));
        QDir().mkpath(dataFolder);
        QFile conf(QDir(dataFolder).filePath(QStringLiteral("servidor.conf")));
        if (!conf.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)
            || conf.write((connection + QLatin1Char('\n')).toUtf8()) < 0)
            throw StoreError(QStringLiteral("cannot write %1").arg(conf.fileName()).toStdString());
    } catch (...) {
        halt();
        throw;
    }
}

LargeServerStore::~LargeServerStore() { halt(); }

void LargeServerStore::halt() noexcept
{
    try {
        serverScript(QStringLiteral("halt"), folder);
    } catch (const StoreError&) {
        // a server left running is stopped by the next run's start
    }
}

}  // namespace bench
