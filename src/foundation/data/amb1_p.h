#pragma once
// What the files of the data environment share, and nobody else: the rows a
// recordset holds, the tree of a hierarchical result, where a recordset's rows
// come from, Connection1's state, and the helpers that run statements and
// narrow them in the store.
#include "foundation/data/amb1.h"

#include "foundation/data/catalogue_p.h"
#include "foundation/data/filter_p.h"

#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QVector>
#include <optional>
#include <vector>

namespace tq {

namespace detail {

// Rows read at open, shared by a recordset and its copies and children.
struct Table : ColumnIndex {
    QVector<bool> yesNo;   // yes/no columns, read as truth by Filter
    QVector<QVector<QVariant>> rows;

    void addColumn(const QString& name, bool isYesNo)
    {
        add(name);
        yesNo << isYesNo;
    }
};

struct Node;

// A named child of every row of a node: related rows (RELATE) or the rows of
// a group (COMPUTE BY).
struct Link {
    QString name;
    std::shared_ptr<const Node> node;
    bool grouping = false;
    int parentColumn = -1;
    QHash<QString, QVector<int>> byKey;   // relation: child rows by key
    QVector<QVector<int>> groups;         // grouping: child rows of each group
};

struct Node {
    std::shared_ptr<const Table> table;
    QList<Link> links;
};

}  // namespace detail

// The files of the data environment name these helpers without their namespace.
using namespace detail;

// Where a recordset's rows come from, so that they can be read again, and
// narrowed by a filter in the store.
struct Source {
    QString sql;
    QVariantList binds;
    std::shared_ptr<const Shape> shape;   // a hierarchical result
    int maxRecords = 0;                   // rows read at most; 0 for all
};

struct Recordset::Data {
    std::shared_ptr<const Node> node;
    QVector<int> base;   // rows of the table this recordset holds (all, or a child's)
    QVector<int> view;   // those of `base` that pass the filter
    QString filter;
    std::shared_ptr<const Source> source;   // top-level recordsets only
    bool pending = false;    // opened; the rows are read when first needed
    bool narrowed = false;   // the rows were read with the filter run in the store
};

struct Amb1::Impl {
    QSqlDatabase db;
    Engine engine = Engine::Embedded;
    QString file;     // the store file, or the server's description
    QString connection;   // the server's libpq text
    std::vector<Recordset> sets;
    QHash<QString, int> byName;   // lower-case name -> slot
    int depth = 0;                // open transaction levels
    QVariant lastId;

    void resetSlots()
    {
        const QList<CommandDef>& defs = detail::commandCatalogue();
        sets.clear();
        sets.reserve(defs.size());
        for (const CommandDef& def : defs)
            sets.emplace_back(&def);
    }
};

namespace detail {

// Connection1 and its engines (amb1.cpp).
Engine currentEngine();
QSqlDatabase currentDb();
QString storeFailure(const QSqlError& e);
QSqlQuery run(const QString& sql, const QVariantList& binds, bool forwardOnly);
QVariant asStored(const QVariant& v);
std::shared_ptr<Table> readAll(const QString& sql, const QVariantList& binds,
                               const ColumnIndex* names = nullptr, int max = 0);

// Narrowing in the store (narrowing.cpp).
// The columns of a result and what each holds, by the statement's text.
struct Described {
    ColumnIndex columns;
    QVector<ColumnKind> kinds;
};
QHash<QString, std::shared_ptr<const Described>>& describedCache();
std::shared_ptr<const Described> describe(const QString& sql);
int placeholders(const QString& sql);
QString aliasAt(int depth);
QString quotedName(QString name);
QString narrowedSql(const QString& sql, const StoreCondition& where, int depth);
QString limitedSql(const QString& sql, int max);
std::optional<StoreCondition> storeCondition(const Source& src, const QString& filter);
std::optional<QVariantList> parentKeys(const Table& rows, const QString& column);

// Hierarchical results (shape.cpp) and the walk (recordset.cpp).
std::shared_ptr<const Node> buildNode(const Shape& shape, const QVariantList& binds, int& used,
                                      const StoreCondition* where = nullptr, int depth = 0);
QString noCurrentRow();

}  // namespace detail

}  // namespace tq
