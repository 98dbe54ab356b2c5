#pragma once
// The store's tables, columns and indexes in one place, and the rows the
// program assumes on first start.
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariantList>
#include <QStringList>
#include <functional>

namespace tq::schema {

// Every table of the store, in declaration order.
QStringList tableNames();
// Columns of a table as declared (empty for an unknown table).
QStringList columnNames(const QString& table);

// The column a table numbers by itself (its counter), or empty.
QString counterColumn(const QString& table);
// On the server, moves a table's counter past its highest key, so that keys
// given by hand (a code typed, rows loaded) are never given again. Nothing
// to do on the embedded store. Throws DbError.
void syncCounter(const QSqlDatabase& db, const QString& table);
void syncCounters(const QSqlDatabase& db);

// True when the store has none of the system's tables yet.
bool isEmpty(const QSqlDatabase& db);
// The same, from the names of the tables the store holds.
bool isEmpty(const QStringList& present);
// Creates every table and index. Throws DbError.
void create(const QSqlDatabase& db);
// Fills a new store with the rows the program assumes: insurer 0 "Sin Seguro",
// one `datos` row, one row each in IST, DTE and tarjeta, the six templates,
// the six free-format menus, and the administrator admin/admin with module
// rights 1 to 3. Throws DbError.
void seedFirstStart(const QSqlDatabase& db);

// Brings a store made by an earlier version up to this one: the indexes it
// lacks (`present` names the tables and indexes it holds) and its passwords
// hashed, in one transaction; a store already current is left untouched.
// Throws DbError.
void upgrade(const QSqlDatabase& db, const QStringList& present);

// On the server, the indexes of names searched anywhere in them (trigrams),
// when the store lacks them and the server has the extension; nothing
// otherwise. Never fails: the searches work without them, only slower.
void searchIndexes(const QSqlDatabase& db, const QStringList& present);

// Runs one statement on the connection with the values bound and returns the
// executed query (for its rows or the key it gave). Throws DbError(failure, ...).
QSqlQuery run(const QSqlDatabase& db, const QString& sql, const QVariantList& binds,
              const QString& failure);

// The key the embedded store gave the last insert of `q`; nothing on the
// server, whose driver would ask in a way that spoils the transaction (the
// caller then reads the highest key).
QVariant insertedByDriver(const QSqlQuery& q);

// Runs `work` in one transaction on the connection (or inside the caller's,
// when one is already open); rolls back and rethrows on failure, and throws
// DbError(failure, ...) when the commit fails.
void inTransaction(const QSqlDatabase& db, const QString& failure,
                   const std::function<void()>& work);

}  // namespace tq::schema
