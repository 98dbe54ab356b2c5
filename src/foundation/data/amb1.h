#pragma once
// The data environment amb1: the one connection Connection1 to the store and
// the catalogue of named commands. Report sources carry their stored text
// (a query, a table, or a hierarchical shape); slots are opened by screens
// with their own SQL. Every value goes in bound, never concatenated.
#include <QList>
#include "foundation/data/dialect.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>

namespace tq {

enum class LockType { ReadOnly = 1, Optimistic = 3 };
enum class CommandKind { Slot, Table, Query, Shaped };

// A hierarchical result. Two forms, which may nest:
//  - relation: rows of `sql`, each with child rows of another shape whose
//    `childColumn` equals the parent's `parentColumn` (SHAPE ... APPEND ... RELATE);
//  - grouping: when `computeBy` is set, the rows of `sql` are grouped by those
//    columns; the parent rows are the groups (their columns are the `computeBy`
//    columns, in that order) and each group's rows are its child named `alias`
//    (SHAPE ... COMPUTE alias BY ...).
struct Shape {
    QString alias;
    QString sql;
    QStringList computeBy;
    struct Relation {
        QString name;                       // child name, e.g. "Command1"
        std::shared_ptr<const Shape> child; // child rows
        QString parentColumn;
        QString childColumn;
    };
    QList<Relation> relations;
};

struct CommandDef {
    QString name;      // "rsrfact1": the recordset's name, with its "rs" prefix
    LockType lock = LockType::Optimistic;
    CommandKind kind = CommandKind::Slot;
    QString text;      // table name (Table) or SQL (Query); empty for a slot
    std::shared_ptr<const Shape> shape; // Shaped only
    QString serves;    // what it is for, in a few words
};

// A client-side snapshot: every row is read at open. Columns are found by
// name without regard to case. Walking follows the classic idiom: open, test
// recordCount() or moveFirst(), walk until eof().
class Recordset {
public:
    Recordset();
    explicit Recordset(const CommandDef* def);

    int state() const;   // 1 open, 0 closed
    bool isOpen() const { return state() == 1; }
    // Runs `sql` with the bound values (positional '?'). A statement that
    // returns no rows (delete, update) leaves the recordset closed.
    // `maxRecords`, when not 0, reads at most that many rows, now and when a
    // filter set later is run in the store (the first rows that pass it; a
    // filter that can't be run there narrows only the rows read). A list that
    // shows a screenful at a time reads more as it is scrolled.
    // Throws DbError on failure.
    void open(const QString& sql, const QVariantList& binds = {}, int maxRecords = 0);
    // Opens the command's stored source (table, query or shape). Its rows are
    // read when first needed, so that a filter set next is run in the store.
    void open();
    void openShape(const Shape& shape, const QVariantList& binds = {});
    void close();

    int recordCount() const;   // rows that pass the filter
    bool eof() const;
    bool bof() const;
    void moveFirst();
    void moveNext();
    void movePrevious();
    void moveLast();
    int position() const;      // 0-based within the filtered rows; -1 when none
    void setPosition(int row);

    QStringList fieldNames() const;
    bool hasField(const QString& name) const;
    // Value of a column in the current row. Throws AppError at BOF/EOF or for
    // an unknown column.
    QVariant field(const QString& name) const;
    QString text(const QString& name) const;     // "" for null
    // Value of a column in any filtered row, without moving.
    QVariant valueAt(int row, const QString& name) const;
    QVariant valueAt(int row, int column) const;

    // Narrows the rows to those that pass a classic filter text, such as
    // "factura = 12", "anulada =0 and fecha = 22/11/2026" or
    // "fecha >= '01/11/2026' and fecha <= '30/11/2026'". An empty text clears it.
    // On a recordset opened from a query or a named source, the filter runs
    // in the store with its values bound (for a hierarchical result, the
    // rows below are read only for the rows that pass), so it costs only the
    // rows it returns; the classic reading in memory still has the last word.
    // Throws AppError for a text it can't read; the earlier filter stands.
    void setFilter(const QString& filter);
    QString filter() const;

    // Rows related to the current row under the named relation or grouping
    // ("Command1" of rsrfact1, "rcorte" of rsrcorte_Grouping).
    Recordset child(const QString& name) const;
    QStringList childNames() const;

    const CommandDef* command() const;

    struct Data;   // the rows held; opaque

private:
    void ensureRows() const;   // reads the rows of a source opened but not yet read
    std::shared_ptr<Data> d;
    const CommandDef* m_def = nullptr;
    int m_pos = -1;
    friend class Amb1;
};

class Amb1 {
public:
    static Amb1& instance();

    // Opens Connection1 on the store file. A missing or empty store is created
    // with the schema and the rows the program assumes. Throws DbError.
    void openStore(const QString& path);
    // Opens Connection1 on a PostgreSQL server, given a libpq connection text
    // (the password is libpq's to find, in the user's .pgpass). An empty
    // database is made ready as a new store file is. Throws DbError.
    void openServer(const QString& connection);
    void closeStore();
    bool isOpen() const;
    Engine engine() const;
    // The store file, or the description of the server ("servidor X, base Y").
    QString storeFile() const;
    // The libpq connection text the server was opened with (empty otherwise).
    QString serverConnection() const;
    QSqlDatabase connection() const;   // Connection1

    // A named command of the catalogue. Throws AppError for an unknown name.
    Recordset& rs(const QString& name);
    const QList<CommandDef>& catalogue() const;

    // Explicit writes with bound values; returns the rows affected.
    int execute(const QString& sql, const QVariantList& binds = {});
    // Value of the first column of the first row, or an invalid QVariant.
    QVariant scalar(const QString& sql, const QVariantList& binds = {});
    // Key given by the store to the last insert.
    QVariant lastInsertId() const;
    // INSERT INTO table (columns) VALUES (?, ...) with the values bound. The
    // table and column names are the program's own, never typed text.
    // Returns the key the store gave the new row (its counter), if any.
    QVariant insert(const QString& table, const QStringList& columns,
                    const QVariantList& values);

    // Filters of recordsets run in the store (the default), or only in memory
    // (to compare the two on the same rows).
    void setFiltersInStore(bool on);
    bool filtersInStore() const;

    void begin();
    void commit();
    void rollback();
    bool inTransaction() const;
    // Levels of transaction open now (a save inside a save adds one).
    int transactionDepth() const;

private:
    Amb1();
    void prepareOpened(const QStringList& present, const QString& where);
    struct Impl;
    std::unique_ptr<Impl> p;
};

inline Amb1& amb1() { return Amb1::instance(); }

// The store's LIKE pattern (escaped by a backslash) for a classic one ("*ana*"): it
// lets through at least the rows the classic one matches, for a query that
// narrows first and leaves the last word to a recordset's filter.
QString storeLikePattern(const QString& classic);

// "servidor HOST, base DB" for a libpq connection text, without its password.
QString serverDescription(const QString& connection);

// A typed text for an optional column: an empty box stores nothing (NULL).
inline QVariant nullIfEmpty(const QString& text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

// One save that writes several rows: begun in the constructor, rolled back by
// the destructor unless commit() was called.
class Transaction {
public:
    Transaction();
    ~Transaction();
    void commit();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

private:
    bool m_done = false;
};

// Used by the error boundary: rolls back the transaction levels a failed
// action left open, down to `depth` (the levels its caller holds stay).
void rollbackOpenTransaction(int depth = 0);

}  // namespace tq
