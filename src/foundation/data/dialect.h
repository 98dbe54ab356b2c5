#pragma once
// The two engines the store can live on, and the few places where their SQL
// differs. Screens write one SQL; the data layer adapts it here.
#include <QSqlDatabase>
#include <QString>

namespace tq {

enum class Engine {
    Embedded,   // SQLite, the store file of the data folder (one workstation)
    Server,     // PostgreSQL, shared by several workstations
};

Engine engineOf(const QSqlDatabase& db);

namespace dialect {

// The statement as the engine runs it. On the server: LIKE ignores case, as
// it does on the embedded store (ILIKE). Text inside quotes is left alone.
QString adapted(const QString& sql, Engine engine);

// The hidden identity every row has, for tables without a key of their
// own where "the first row" must be told from its twins: SQLite's rowid,
// PostgreSQL's ctid (both ordered; the first row stored is the lowest).
QString rowIdentity(Engine engine);

// The key of the one lock that saves take on the server, so that saves from
// several workstations follow one another as they do on the embedded store.
constexpr qint64 kSaveLock = 0x54617276;   // "Tarv"

}  // namespace dialect
}  // namespace tq
