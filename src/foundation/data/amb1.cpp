// The data environment amb1: Connection1 on the store file or on the server,
// the statements run on it (execute, scalar, insert, the rows of a select)
// and the failures of either engine worded for the user. Recordsets, shapes,
// narrowing in the store and transactions each have a file beside this one.
#include "foundation/data/amb1_p.h"

#include "foundation/base/native.h"

#include "foundation/data/dialect.h"
#include "foundation/base/apperror.h"
#include "foundation/data/schema.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlField>
#include <QSqlRecord>
#include <QRegularExpression>
#include <QThread>
#include <QUrl>
#include <cmath>

namespace tq {

namespace {

constexpr auto kConnection = "Connection1";

QString connectionName() { return QString::fromLatin1(kConnection); }

// What the user reads when the store refuses or fails. The driver's own
// text, in English, goes to the log with the statement, never to the screen.
QString serverFailure(const QSqlError& e)
{
    const QString state = e.nativeErrorCode();
    if (state.startsWith(QLatin1String("23")))
        return QStringLiteral("La base de datos rechazó los datos porque no cumplen sus reglas.");
    if (state.startsWith(QLatin1String("08")) || state == QLatin1String("57P01"))
        return QStringLiteral("Se perdió la conexión con el servidor de la base de datos. "
                              "Revise la red y vuelva a intentarlo.");
    if (state == QLatin1String("40001") || state == QLatin1String("40P01")
        || state == QLatin1String("55P03"))
        return QStringLiteral("La base de datos está ocupada por otra estación. Intente de "
                              "nuevo en un momento.");
    if (state.startsWith(QLatin1String("53")))
        return QStringLiteral("El servidor de la base de datos no tiene espacio para guardar "
                              "los cambios.");
    if (state == QLatin1String("42501") || state == QLatin1String("25006"))
        return QStringLiteral("El usuario del servidor no tiene permiso para guardar cambios "
                              "en la base de datos.");
    return QStringLiteral("La base de datos no aceptó la operación. El detalle quedó anotado en "
                          "tarvenquil.log.");
}

}  // namespace

namespace detail {

Engine currentEngine() { return amb1().engine(); }

QSqlDatabase currentDb()
{
    QSqlDatabase db = amb1().connection();
    if (!db.isValid() || !db.isOpen())
        throw DbError(QStringLiteral("La base de datos no está abierta."),
                      QStringLiteral("Connection1 cerrada"));
    return db;
}

QString storeFailure(const QSqlError& e)
{
    if (currentEngine() == Engine::Server)
        return serverFailure(e);
    bool ok = false;
    const int code = e.nativeErrorCode().toInt(&ok) & 0xff;   // the store's main result code
    if (ok) {
        switch (code) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return QStringLiteral("La base de datos está ocupada por otra estación. Intente de "
                                  "nuevo en un momento.");
        case SQLITE_READONLY:
            return QStringLiteral("La base de datos es de solo lectura: no se pueden guardar "
                                  "cambios en ella.");
        case SQLITE_IOERR:
            return QStringLiteral("No se pudo leer o escribir el archivo de la base de datos.");
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return QStringLiteral("El archivo de la base de datos está dañado.");
        case SQLITE_FULL:
            return QStringLiteral("El disco está lleno: no se pudieron guardar los cambios.");
        case SQLITE_CANTOPEN:
            return QStringLiteral("No se pudo abrir el archivo de la base de datos.");
        case SQLITE_CONSTRAINT:
            return QStringLiteral("La base de datos rechazó los datos porque no cumplen sus "
                                  "reglas.");
        default:
            break;
        }
    }
    return QStringLiteral("La base de datos no aceptó la operación. El detalle quedó anotado en "
                          "tarvenquil.log.");
}

// Prepares and runs a statement with its bound values.
QSqlQuery run(const QString& sql, const QVariantList& binds, bool forwardOnly)
{
    QSqlQuery q(currentDb());
    q.setForwardOnly(forwardOnly);
    const QString text = dialect::adapted(sql, currentEngine());
    if (binds.isEmpty()) {
        // Nothing to bind: run as it stands (the server's driver prepares
        // only queries, and preparing costs it a round trip).
        if (!q.exec(text))
            throw DbError(storeFailure(q.lastError()), q.lastError().text(), sql);
        return q;
    }
    if (!q.prepare(text))
        throw DbError(storeFailure(q.lastError()), q.lastError().text(), sql);
    for (const QVariant& v : binds)
        q.addBindValue(v);
    if (!q.exec())
        throw DbError(storeFailure(q.lastError()), q.lastError().text(), sql);
    return q;
}

// A value as the screens read it on either engine: the server's yes/no
// comes as a truth value, the embedded store's as 1 or 0, and the screens
// have always read 1 or 0. Only the server's values need it.
QVariant asStored(const QVariant& v)
{
    switch (v.metaType().id()) {
    case QMetaType::Bool:
        return QVariant(v.toBool() ? 1 : 0);
    case QMetaType::Double: {
        // A whole number kept as a decimal comes back whole, as the embedded
        // store gives it (an authorisation number, 150 of 150.00).
        const double d = v.toDouble();
        if (std::trunc(d) == d && std::fabs(d) < 9.0e15)
            return QVariant(qlonglong(d));
        return v;
    }
    default:
        return v;
    }
}

// Reads every row of a select. Null when the statement returns no rows.
// `names`, when given, names the columns (a narrowed result renames
// repeated names, the source's own names stand). `max`, when not 0, stops
// after that many rows: the store steps no further.
std::shared_ptr<Table> readAll(const QString& sql, const QVariantList& binds,
                               const ColumnIndex* names, int max)
{
    QSqlQuery q = run(sql, binds, true);
    if (!q.isSelect())
        return nullptr;
    auto t = std::make_shared<Table>();
    const QSqlRecord rec = q.record();
    const int n = rec.count();
    const bool renamed = names && names->columns.size() == n;
    for (int i = 0; i < n; ++i)
        t->addColumn(renamed ? names->columns.at(i) : rec.fieldName(i),
                     rec.field(i).metaType().id() == QMetaType::Bool);
    const bool server = currentEngine() == Engine::Server;
    while ((max <= 0 || t->rows.size() < max) && q.next()) {
        QVector<QVariant> row(n);
        for (int i = 0; i < n; ++i)
            row[i] = server ? asStored(q.value(i)) : q.value(i);
        t->rows.append(std::move(row));
    }
    if (q.lastError().isValid())
        throw DbError(storeFailure(q.lastError()), q.lastError().text(), sql);
    q.finish();
    return t;
}

}  // namespace detail

// ---------------------------------------------------------------- Amb1

Amb1::Amb1() : p(std::make_unique<Impl>())
{
    const QList<CommandDef>& defs = detail::commandCatalogue();
    for (int i = 0; i < defs.size(); ++i)
        p->byName.insert(defs.at(i).name.toLower(), i);
    p->resetSlots();
}

Amb1& Amb1::instance()
{
    static Amb1 amb;
    return amb;
}

void Amb1::openStore(const QString& path)
{
    closeStore();
    const QFileInfo info(path);
    const QString where = QDir::toNativeSeparators(info.absoluteFilePath());
    if (!QDir().mkpath(info.absolutePath()))
        throw DbError(QStringLiteral("No se pudo abrir la base de datos %1: no se pudo crear la "
                                     "carpeta %2.")
                          .arg(where, QDir::toNativeSeparators(info.absolutePath())),
                      QString());

    QString failure;
    QString why;
    QStringList present;   // the tables and indexes the store holds
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName());
        db.setDatabaseName(info.absoluteFilePath());
        // Another workstation may hold the file for a moment while it saves.
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
        if (!db.open()) {
            why = db.lastError().text();
            failure = QStringLiteral("No se pudo abrir la base de datos %1. %2")
                          .arg(where, storeFailure(db.lastError()));
        } else {
            // A file that isn't a store opens but can't be read.
            QSqlQuery check(db);
            if (!check.exec(QStringLiteral("SELECT name FROM sqlite_master "
                                           "WHERE type IN ('table', 'index')"))) {
                why = check.lastError().text();
                failure = QStringLiteral("No se pudo abrir la base de datos %1: el archivo no es "
                                         "una base de datos válida.")
                              .arg(where);
            } else {
                while (check.next())
                    present << check.value(0).toString();
                check.finish();
                // Deletion rules live in the screens; the store enforces no keys.
                check.exec(QStringLiteral("PRAGMA foreign_keys = OFF"));
                // Readers don't wait for a writer, nor a writer for readers:
                // several programs on one machine share the store. A store on
                // a medium that can't keep the write-ahead log stays as it is.
                check.exec(QStringLiteral("PRAGMA journal_mode = WAL"));
                check.finish();
            }
        }
        if (failure.isEmpty())
            p->db = db;
        else
            db.close();
    }
    if (!failure.isEmpty()) {
        QSqlDatabase::removeDatabase(connectionName());
        throw DbError(failure, why);
    }
    p->engine = Engine::Embedded;
    p->file = info.absoluteFilePath();
    prepareOpened(present, where);
}

void Amb1::openServer(const QString& connection)
{
    closeStore();
    const QString where = serverDescription(connection);
    QString failure;
    QString why;
    QStringList present;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connectionName());
        if (!db.isValid()) {
            failure = QStringLiteral("No se puede usar el servidor de la base de datos: falta el "
                                     "controlador de PostgreSQL (paquete libqt6sql6-psql).");
        } else {
            // The whole libpq text goes through as it stands; the password
            // comes from the user's .pgpass, never from our files. A server
            // that doesn't answer is given up after a few seconds.
            QString options = connection;
            if (!options.contains(QLatin1String("connect_timeout")))
                options += QStringLiteral(" connect_timeout=8");
            if (!options.contains(QLatin1String("options")))
                options += QStringLiteral(" options='-c client_min_messages=warning'");
            if (!options.contains(QLatin1String("application_name")))
                options += QStringLiteral(" application_name=tarvenquil");
            db.setConnectOptions(options);
            if (!db.open()) {
                why = db.lastError().text();
                failure = QStringLiteral("No se pudo conectar con el servidor de la base de datos "
                                         "(%1). Revise que el servidor esté encendido y al "
                                         "alcance de esta estación, y la conexión escrita en "
                                         "servidor.conf.")
                              .arg(where);
            } else {
                QSqlQuery check(db);
                // Straight from the catalogue: the views over it (pg_tables,
                // pg_indexes) cost a fresh connection twice as long.
                if (!check.exec(QStringLiteral(
                        "SELECT c.relname FROM pg_class c JOIN pg_namespace n "
                        "ON n.oid = c.relnamespace WHERE n.nspname = current_schema() "
                        "AND c.relkind IN ('r', 'p', 'i')"))) {
                    why = check.lastError().text();
                    failure = QStringLiteral("No se pudo leer la base de datos del servidor "
                                             "(%1).")
                                  .arg(where);
                } else {
                    while (check.next())
                        present << check.value(0).toString();
                }
                check.finish();
            }
        }
        if (failure.isEmpty())
            p->db = db;
        else if (db.isValid())
            db.close();
    }
    if (!failure.isEmpty()) {
        QSqlDatabase::removeDatabase(connectionName());
        throw DbError(failure, why);
    }
    p->engine = Engine::Server;
    p->file = where;
    p->connection = connection;
    prepareOpened(present, where);
}

// A store just opened: an empty one gets its tables and first rows, one made
// by an earlier version is brought up to this one.
void Amb1::prepareOpened(const QStringList& present, const QString& where)
{
    try {
        const bool fresh = schema::isEmpty(present);
        if (fresh)
            schema::inTransaction(p->db,
                                  QStringLiteral("No se pudo abrir la base de datos %1: no se "
                                                 "pudieron guardar sus tablas nuevas.")
                                      .arg(where),
                                  [this] {
                                      schema::create(p->db);
                                      schema::seedFirstStart(p->db);
                                  });
        // A store made by an earlier version is brought up to this one.
        if (!fresh)
            schema::upgrade(p->db, present);
        schema::searchIndexes(p->db, present);
        schema::syncCounters(p->db);
    } catch (...) {
        closeStore();
        throw;
    }
    // Opened on another thread (at start-up, while the first window is
    // built): the connection is handed to the program's own thread, which
    // uses it from now on.
    const QCoreApplication* app = QCoreApplication::instance();
    if (app && QThread::currentThread() != app->thread() && p->db.driver())
        p->db.driver()->moveToThread(app->thread());
}

QString serverDescription(const QString& connection)
{
    // key=value pairs, or a postgresql:// address; the password never shows.
    QString host;
    QString database;
    if (connection.trimmed().startsWith(QLatin1String("postgres"))) {
        const QUrl url(connection.trimmed());
        host = url.host();
        database = url.path().mid(1);
    } else {
        static const QRegularExpression pair(
            QStringLiteral("(\\w+)\\s*=\\s*('(?:[^'\\\\]|\\\\.)*'|\\S*)"));
        for (auto it = pair.globalMatch(connection); it.hasNext();) {
            const QRegularExpressionMatch m = it.next();
            QString value = m.captured(2);
            if (value.startsWith(QLatin1Char('\'')))
                value = value.mid(1, value.size() - 2);
            const QString key = m.captured(1).toLower();
            if ((key == QLatin1String("host") || key == QLatin1String("hostaddr")) && host.isEmpty())
                host = value;
            else if (key == QLatin1String("dbname"))
                database = value;
        }
    }
    if (host.isEmpty())
        host = QStringLiteral("localhost");
    return database.isEmpty() ? QStringLiteral("servidor %1").arg(host)
                              : QStringLiteral("servidor %1, base %2").arg(host, database);
}

void Amb1::closeStore()
{
    describedCache().clear();
    p->resetSlots();
    p->depth = 0;
    p->lastId = QVariant();
    p->file.clear();
    p->connection.clear();
    p->engine = Engine::Embedded;
    if (p->db.isValid()) {
        if (p->db.isOpen())
            p->db.close();
        p->db = QSqlDatabase();
    }
    if (QSqlDatabase::contains(connectionName()))
        QSqlDatabase::removeDatabase(connectionName());
}

bool Amb1::isOpen() const { return p->db.isValid() && p->db.isOpen(); }

Engine Amb1::engine() const { return p->engine; }

QString Amb1::storeFile() const { return p->file; }

QString Amb1::serverConnection() const { return p->connection; }

QSqlDatabase Amb1::connection() const { return p->db; }

Recordset& Amb1::rs(const QString& name)
{
    const auto it = p->byName.constFind(name.toLower());
    if (it == p->byName.constEnd())
        throw AppError(QStringLiteral("El conjunto de registros «%1» no existe en el entorno de "
                                      "datos.")
                           .arg(name));
    return p->sets[*it];
}

const QList<CommandDef>& Amb1::catalogue() const { return detail::commandCatalogue(); }

int Amb1::execute(const QString& sql, const QVariantList& binds)
{
    if (p->engine == Engine::Embedded) {
        QSqlQuery q = run(sql, binds, true);
        p->lastId = q.lastInsertId();
        const int n = q.numRowsAffected();
        q.finish();
        return n;
    }
    // The server's driver would ask for the key with lastval(), which fails,
    // and spoils the transaction, when no counter was used: an insert into a
    // table with a counter says its key itself.
    static const QRegularExpression insertInto(
        QStringLiteral("^\\s*INSERT\\s+INTO\\s+(\\w+)"), QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = insertInto.match(sql);
    const QString counter = m.hasMatch() ? schema::counterColumn(m.captured(1)) : QString();
    if (counter.isEmpty() || sql.contains(QLatin1String("RETURNING"), Qt::CaseInsensitive)) {
        QSqlQuery q = run(sql, binds, true);
        p->lastId = QVariant();
        const int n = q.numRowsAffected();
        q.finish();
        return n;
    }
    QSqlQuery q = run(sql + QStringLiteral(" RETURNING ") + counter, binds, true);
    int n = 0;
    while (q.next()) {
        p->lastId = q.value(0);
        ++n;
    }
    q.finish();
    // A key given by hand moves the counter past it.
    const QString head = sql.left(sql.indexOf(QLatin1String("VALUES"), 0, Qt::CaseInsensitive));
    if (QRegularExpression(QStringLiteral("\\b%1\\b").arg(counter),
                           QRegularExpression::CaseInsensitiveOption)
            .match(head)
            .hasMatch())
        schema::syncCounter(p->db, m.captured(1));
    return n;
}

QVariant Amb1::scalar(const QString& sql, const QVariantList& binds)
{
    QSqlQuery q = run(sql, binds, true);
    QVariant v;
    if (q.isSelect() && q.next())
        v = currentEngine() == Engine::Server ? asStored(q.value(0)) : q.value(0);
    q.finish();
    return v;
}

QVariant Amb1::lastInsertId() const { return p->lastId; }

QVariant Amb1::insert(const QString& table, const QStringList& columns,
                      const QVariantList& values)
{
    if (columns.size() != values.size())
        throw AppError(QStringLiteral("Error interno: %1 columnas y %2 valores para %3.")
                           .arg(columns.size())
                           .arg(values.size())
                           .arg(table));
    QStringList marks;
    marks.reserve(columns.size());
    for (int i = 0; i < columns.size(); ++i)
        marks << QStringLiteral("?");
    QString sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                      .arg(table, columns.join(QStringLiteral(", ")),
                           marks.join(QStringLiteral(", ")));
    if (p->engine == Engine::Embedded) {
        execute(sql, values);
        return p->lastId;
    }
    // The server tells the key it gave in the insert's own answer.
    const QString counter = schema::counterColumn(table);
    if (counter.isEmpty()) {
        execute(sql, values);
        return p->lastId = QVariant();
    }
    sql += QStringLiteral(" RETURNING ") + counter;
    QSqlQuery q = run(sql, values, true);
    p->lastId = q.next() ? q.value(0) : QVariant();
    q.finish();
    if (columns.contains(counter, Qt::CaseInsensitive))
        schema::syncCounter(p->db, table);   // a key given by hand moves the counter past it
    return p->lastId;
}

}  // namespace tq
