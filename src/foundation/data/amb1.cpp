// The data environment amb1: Connection1, the named recordsets, the
// client-side snapshot every screen walks, its Filter, and the hierarchical
// results (invoice with its lines, report groups) built from Shape texts.
#include "foundation/data/amb1.h"

#include "foundation/base/native.h"

#include "foundation/data/catalogue_p.h"
#include "foundation/data/dialect.h"
#include "foundation/data/filter_p.h"
#include "foundation/base/apperror.h"
#include "foundation/data/schema.h"
#include "foundation/base/values.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QRegularExpression>
#include <QThread>
#include <QUrl>
#include <QVector>
#include <algorithm>
#include <cmath>
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

using detail::ColumnIndex;
using detail::ColumnKind;
using detail::Filter;
using detail::Link;
using detail::Node;
using detail::StoreCondition;
using detail::Table;

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

namespace {

constexpr auto kConnection = "Connection1";

QString connectionName() { return QString::fromLatin1(kConnection); }

Engine currentEngine() { return amb1().engine(); }

QSqlDatabase currentDb()
{
    QSqlDatabase db = amb1().connection();
    if (!db.isValid() || !db.isOpen())
        throw DbError(QStringLiteral("La base de datos no está abierta."),
                      QStringLiteral("Connection1 cerrada"));
    return db;
}

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
                               const ColumnIndex* names = nullptr, int max = 0)
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

// ---------------------------------------------------------------- narrowing in the store

int placeholders(const QString& sql);

bool g_filtersInStore = true;

// The columns of a result and what each holds, by the statement's text.
struct Described {
    ColumnIndex columns;
    QVector<ColumnKind> kinds;
};

QHash<QString, std::shared_ptr<const Described>>& describedCache()
{
    static QHash<QString, std::shared_ptr<const Described>> cache;
    return cache;
}

ColumnKind kindOfValueType(int type)
{
    switch (type) {
    case QMetaType::Bool:
        return ColumnKind::YesNo;
    case QMetaType::QDate:
    case QMetaType::QDateTime:
    case QMetaType::QTime:
        return ColumnKind::Date;
    case QMetaType::QString:
        return ColumnKind::Text;
    default:
        return detail::isNumberType(QVariant(QMetaType(type))) ? ColumnKind::Number
                                                               : ColumnKind::Unknown;
    }
}

// What the store says of a statement's result columns; null when it can't
// say (the rows are then narrowed in memory, as always).
std::shared_ptr<const Described> describe(const QString& sql)
{
    auto& cache = describedCache();
    if (const auto it = cache.constFind(sql); it != cache.constEnd())
        return *it;
    QSqlDatabase db = currentDb();
    auto out = std::make_shared<Described>();
    const QVariant handle = db.driver()->handle();
    if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0) {
        // The embedded store keeps the declared type of each column of a result.
        const native::Sqlite* api = native::sqlite();
        sqlite3* store = *static_cast<sqlite3* const*>(handle.constData());
        if (!api || !store)
            return nullptr;
        sqlite3_stmt* st = nullptr;
        const QByteArray text = sql.toUtf8();
        if (api->prepare_v2(store, text.constData(), int(text.size()), &st, nullptr) != SQLITE_OK
            || !st) {
            api->finalize(st);
            return nullptr;
        }
        for (int i = 0; i < api->column_count(st); ++i) {
            out->columns.add(QString::fromUtf8(api->column_name(st, i)));
            const char* declared = api->column_decltype(st, i);
            out->kinds << detail::kindOfDeclaredType(declared ? QString::fromUtf8(declared)
                                                              : QString());
        }
        api->finalize(st);
    } else {
        // A server types every column: read the types of an empty result.
        QSqlQuery q(db);
        if (!q.prepare(dialect::adapted(
                QStringLiteral("SELECT * FROM (%1) AS tqd WHERE 1 = 0").arg(sql), Engine::Server)))
            return nullptr;
        for (int i = 0; i < placeholders(sql); ++i)
            q.addBindValue(QVariant());
        if (!q.exec())
            return nullptr;
        const QSqlRecord rec = q.record();
        for (int i = 0; i < rec.count(); ++i) {
            out->columns.add(rec.fieldName(i));
            out->kinds << kindOfValueType(rec.field(i).metaType().id());
        }
    }
    cache.insert(sql, out);
    return out;
}

QString aliasAt(int depth) { return QStringLiteral("tq%1").arg(depth); }

QString quotedName(QString name)
{
    // "Factura.fecha" names the column fecha.
    // Lower case: the server folds the names it was given unquoted, and the
    // embedded store ignores case in names.
    name = name.mid(name.lastIndexOf(QLatin1Char('.')) + 1).toLower();
    return QLatin1Char('"') + name.replace(QLatin1Char('"'), QStringLiteral("\"\""))
           + QLatin1Char('"');
}

// The rows of `sql` that meet the condition.
QString narrowedSql(const QString& sql, const StoreCondition& where, int depth)
{
    const QString alias = aliasAt(depth);
    return QStringLiteral("SELECT * FROM (%1) AS %2 WHERE %3").arg(sql, alias, where.on(alias));
}

// A query read up to a number of rows. The embedded store steps no further
// than the rows read; the server sends a whole result before its first row
// is read, so it is told the limit, and neither plans for nor sends the rest.
QString limitedSql(const QString& sql, int max)
{
    if (max <= 0 || currentEngine() != Engine::Server
        || !sql.trimmed().startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive))
        return sql;
    return QStringLiteral("SELECT * FROM (%1) AS tqlim LIMIT %2").arg(sql).arg(max);
}

// The filter of a recordset as a condition on the rows its source reads
// first: the rows of a plain or related result, or the rows that a grouped
// result gathers (its groups' columns are theirs). None when no part of the
// filter can be run in the store. Throws AppError for a text it can't read.
std::optional<StoreCondition> storeCondition(const Source& src, const QString& filter)
{
    if (!g_filtersInStore)
        return std::nullopt;
    const std::shared_ptr<const Described> desc = describe(src.shape ? src.shape->sql : src.sql);
    if (!desc)
        return std::nullopt;
    QVector<int> column;   // the filter's columns among the described ones
    ColumnIndex names;
    if (src.shape && !src.shape->computeBy.isEmpty()) {
        for (const QString& c : src.shape->computeBy) {
            names.add(c);
            column << desc->columns.find(c);
        }
    } else {
        names = desc->columns;
        for (int i = 0; i < desc->columns.columns.size(); ++i)
            column << i;
    }
    if (column.contains(-1))
        return std::nullopt;
    const Filter f(filter, [&names](const QString& n) { return names.find(n); });
    return f.toStore([&](int i) { return desc->columns.columns.at(column.at(i)); },
                     [&](int i) { return desc->kinds.at(column.at(i)); });
}

// Number of '?' placeholders outside quoted text.
int placeholders(const QString& sql)
{
    int n = 0;
    QChar quote;
    for (const QChar c : sql) {
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
        } else if (c == QLatin1Char('?')) {
            ++n;
        }
    }
    return n;
}

QString numberKey(double d)
{
    if (std::isfinite(d) && d == std::floor(d) && std::fabs(d) < 1e15)
        return QString::number(static_cast<qint64>(d));
    return QString::number(d, 'g', 15);
}

// Key under which two values relate: 5, 5.0 and "5" are the same key. A null
// value gets a null key and relates to nothing.
QString looseKey(const QVariant& v)
{
    if (!v.isValid() || v.isNull())
        return QString();
    if (v.typeId() == QMetaType::Bool)
        return v.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (detail::isNumberType(v))
        return numberKey(v.toDouble());
    if (v.typeId() == QMetaType::QDate)
        return v.toDate().toString(Qt::ISODate);
    if (v.typeId() == QMetaType::QDateTime)
        return v.toDateTime().toString(Qt::ISODate);
    const QString s = v.toString();
    if (isNumeric(s))
        return numberKey(s.trimmed().toDouble());
    return s;
}

// The distinct values of a column of the rows read, as the store gave them
// (nulls relate to nothing); none when the column is missing or the values
// are too many to be listed in a statement.
std::optional<QVariantList> parentKeys(const Table& rows, const QString& column)
{
    constexpr int kMaxListed = 500;
    const int at = rows.find(column);
    if (at < 0)
        return std::nullopt;
    QVariantList keys;
    QSet<QPair<int, QString>> seen;
    for (const QVector<QVariant>& r : rows.rows) {
        const QVariant& v = r.at(at);
        if (!v.isValid() || v.isNull())
            continue;
        const QPair<int, QString> key(v.typeId(), v.toString());
        if (seen.contains(key))
            continue;
        if (keys.size() == kMaxListed)
            return std::nullopt;
        seen.insert(key);
        keys << v;
    }
    return keys;
}

// The rows of a shape and of every shape below it. `where`, when given,
// narrows the shape's own rows in the store; the rows below are then read
// only for the rows that pass.
std::shared_ptr<const Node> buildNode(const Shape& shape, const QVariantList& binds, int& used,
                                      const StoreCondition* where = nullptr, int depth = 0)
{
    const int need = placeholders(shape.sql);
    const QVariantList mine = binds.mid(used, need);
    used += need;
    std::shared_ptr<Table> rows;
    if (where) {
        const std::shared_ptr<const Described> names = describe(shape.sql);
        rows = readAll(narrowedSql(shape.sql, *where, depth), mine + where->binds,
                       names ? &names->columns : nullptr);
    } else {
        rows = readAll(shape.sql, mine);
    }
    if (!rows)
        throw DbError(QStringLiteral("La consulta de «%1» no devuelve filas.").arg(shape.alias),
                      QString(), shape.sql);

    auto detail = std::make_shared<Node>();
    detail->table = rows;
    for (const Shape::Relation& rel : shape.relations) {
        if (!rel.child)
            continue;
        Link link;
        link.name = rel.name.isEmpty() ? rel.child->alias : rel.name;
        std::optional<StoreCondition> childWhere;
        if (where) {
            // Child rows whose key is among the keys of the parent rows that
            // pass. A few keys go as a list of their values: the store then
            // narrows the children's own query, which it does not do for a
            // condition over a subquery when that query is DISTINCT (the
            // invoices of one insurer among all the paid ones).
            std::optional<QVariantList> keys = parentKeys(*rows, rel.parentColumn);
            const QString mark(StoreCondition::kAliasMark);
            if (keys && keys->isEmpty()) {
                childWhere = StoreCondition{QStringLiteral("1 = 0"), {}};
            } else if (keys) {
                const QStringList marks(keys->size(), QStringLiteral("?"));
                childWhere = StoreCondition{QStringLiteral("%1.%2 IN (%3)")
                                                .arg(mark, quotedName(rel.childColumn),
                                                     marks.join(QStringLiteral(", "))),
                                            *keys};
            } else {
                const QString alias = aliasAt(depth);
                childWhere = StoreCondition{
                    QStringLiteral("%1.%2 IN (SELECT %3.%4 FROM (%5) AS %3 WHERE %6)")
                        .arg(mark, quotedName(rel.childColumn), alias,
                             quotedName(rel.parentColumn), shape.sql, where->on(alias)),
                    mine + where->binds};
            }
        }
        link.node = buildNode(*rel.child, binds, used, childWhere ? &*childWhere : nullptr,
                              depth + 1);
        link.parentColumn = rows->find(rel.parentColumn);
        const Table& childRows = *link.node->table;
        const int childColumn = childRows.find(rel.childColumn);
        if (link.parentColumn < 0 || childColumn < 0)
            throw AppError(QStringLiteral("La relación «%1» une las columnas «%2» y «%3», que sus "
                                          "consultas no devuelven.")
                               .arg(link.name, rel.parentColumn, rel.childColumn));
        for (int i = 0; i < childRows.rows.size(); ++i) {
            const QString key = looseKey(childRows.rows.at(i).at(childColumn));
            if (!key.isNull())
                link.byKey[key].append(i);
        }
        detail->links.append(std::move(link));
    }
    if (shape.computeBy.isEmpty())
        return detail;

    // COMPUTE alias BY columns: one parent row per distinct group, in the
    // order in which the groups first appear.
    QVector<int> cols;
    auto groups = std::make_shared<Table>();
    for (const QString& c : shape.computeBy) {
        const int at = rows->find(c);
        if (at < 0)
            throw AppError(QStringLiteral("La agrupación «%1» usa la columna «%2», que su consulta "
                                          "no devuelve.")
                               .arg(shape.alias, c));
        cols << at;
        groups->addColumn(c, rows->yesNo.at(at));
    }
    Link link;
    link.name = shape.alias;
    link.node = detail;
    link.grouping = true;
    QHash<QString, int> groupOf;
    for (int i = 0; i < rows->rows.size(); ++i) {
        const QVector<QVariant>& r = rows->rows.at(i);
        QString key;
        for (int c : cols) {
            const QVariant& v = r.at(c);
            key += (v.isNull() ? QStringLiteral("\x01") : looseKey(v)) + QChar(0x1f);
        }
        auto it = groupOf.constFind(key);
        int g;
        if (it == groupOf.constEnd()) {
            g = groups->rows.size();
            groupOf.insert(key, g);
            QVector<QVariant> values;
            values.reserve(cols.size());
            for (int c : cols)
                values << r.at(c);
            groups->rows.append(std::move(values));
            link.groups.append(QVector<int>());
        } else {
            g = *it;
        }
        link.groups[g].append(i);
    }
    auto parent = std::make_shared<Node>();
    parent->table = groups;
    parent->links.append(std::move(link));
    return parent;
}


QString noCurrentRow()
{
    return QStringLiteral("No hay un registro actual: el conjunto de registros está al "
                          "principio o al final, o no tiene filas.");
}

}  // namespace

// ---------------------------------------------------------------- Recordset

Recordset::Recordset() = default;

Recordset::Recordset(const CommandDef* def) : m_def(def) {}

int Recordset::state() const { return d ? 1 : 0; }

namespace {

// A recordset's hold on every row of a node read from a source.
std::shared_ptr<Recordset::Data> holding(const std::shared_ptr<const Node>& node,
                                         const std::shared_ptr<const Source>& src)
{
    auto data = std::make_shared<Recordset::Data>();
    data->node = node;
    data->base.resize(node->table->rows.size());
    for (int i = 0; i < data->base.size(); ++i)
        data->base[i] = i;
    data->view = data->base;
    data->source = src;
    return data;
}

// Reads a source's rows (all, or those the condition lets through).
std::shared_ptr<Recordset::Data> fetch(const std::shared_ptr<const Source>& src,
                                       const StoreCondition* where)
{
    std::shared_ptr<const Node> node;
    if (src->shape) {
        int used = 0;
        node = buildNode(*src->shape, src->binds, used, where);
    } else {
        std::shared_ptr<Table> t;
        if (where) {
            const std::shared_ptr<const Described> names = describe(src->sql);
            t = readAll(limitedSql(narrowedSql(src->sql, *where, 0), src->maxRecords),
                        src->binds + where->binds, names ? &names->columns : nullptr,
                        src->maxRecords);
        } else {
            t = readAll(limitedSql(src->sql, src->maxRecords), src->binds, nullptr,
                        src->maxRecords);
        }
        if (!t)
            throw DbError(QStringLiteral("La consulta no devuelve filas."), QString(), src->sql);
        auto n = std::make_shared<Node>();
        n->table = t;
        node = n;
    }
    return holding(node, src);
}

// Narrows the rows held to those that pass the classic reading of the filter.
void applyFilter(Recordset::Data& data, const QString& filter)
{
    const Table& t = *data.node->table;
    const Filter f(filter, [&t](const QString& n) { return t.find(n); });
    QVector<int> view;
    view.reserve(data.base.size());
    for (int r : std::as_const(data.base))
        if (f.passes(t.rows.at(r), t.yesNo))
            view.append(r);
    data.view = std::move(view);
    data.filter = filter;
}

}  // namespace

void Recordset::open(const QString& sql, const QVariantList& binds, int maxRecords)
{
    auto src = std::make_shared<Source>();
    src->sql = sql;
    src->binds = binds;
    src->maxRecords = std::max(0, maxRecords);
    std::shared_ptr<Table> t = readAll(limitedSql(sql, src->maxRecords), binds, nullptr,
                                       src->maxRecords);
    if (!t) {
        // delete, update, insert: nothing to hold.
        close();
        return;
    }
    auto node = std::make_shared<Node>();
    node->table = t;
    d = holding(node, src);
    m_pos = d->view.isEmpty() ? -1 : 0;
}

void Recordset::open()
{
    if (!m_def)
        throw AppError(QStringLiteral("Este conjunto de registros no tiene una consulta guardada."));
    auto src = std::make_shared<Source>();
    switch (m_def->kind) {
    case CommandKind::Slot:
        throw AppError(QStringLiteral("El conjunto de registros «%1» no tiene una consulta "
                                      "guardada; se abre con su propio texto.")
                           .arg(m_def->name));
    case CommandKind::Table:
        src->sql = QStringLiteral("SELECT * FROM ") + m_def->text;
        break;
    case CommandKind::Query:
        src->sql = m_def->text;
        break;
    case CommandKind::Shaped:
        if (!m_def->shape)
            throw AppError(QStringLiteral("El conjunto de registros «%1» no tiene su forma "
                                          "jerárquica.")
                               .arg(m_def->name));
        src->shape = m_def->shape;
        break;
    }
    // A report source is usually narrowed by a filter right after it opens:
    // its rows are read when first needed, by then perhaps filtered in the store.
    auto data = std::make_shared<Data>();
    data->source = src;
    data->pending = true;
    d = std::move(data);
    m_pos = 0;
}

void Recordset::openShape(const Shape& shape, const QVariantList& binds)
{
    auto src = std::make_shared<Source>();
    src->shape = std::make_shared<Shape>(shape);
    src->binds = binds;
    d = fetch(src, nullptr);
    m_pos = d->view.isEmpty() ? -1 : 0;
}

void Recordset::ensureRows() const
{
    if (!d || !d->pending)
        return;
    // Copies made while the rows were pending read these same rows.
    const std::shared_ptr<Data> rows = fetch(d->source, nullptr);
    d->node = rows->node;
    d->base = rows->base;
    d->view = rows->view;
    d->pending = false;
    d->narrowed = false;
}

void Recordset::close()
{
    d.reset();
    m_pos = -1;
}

int Recordset::recordCount() const
{
    ensureRows();
    return d ? d->view.size() : 0;
}

bool Recordset::eof() const
{
    ensureRows();
    return !d || d->view.isEmpty() || m_pos >= d->view.size();
}

bool Recordset::bof() const
{
    ensureRows();
    return !d || d->view.isEmpty() || m_pos < 0;
}

void Recordset::moveFirst() { m_pos = recordCount() > 0 ? 0 : -1; }

void Recordset::moveNext()
{
    const int n = recordCount();
    if (n > 0 && m_pos < n)
        ++m_pos;
}

void Recordset::movePrevious()
{
    if (recordCount() > 0 && m_pos >= 0)
        --m_pos;
}

void Recordset::moveLast() { m_pos = recordCount() - 1; }

int Recordset::position() const
{
    return (m_pos >= 0 && m_pos < recordCount()) ? m_pos : -1;
}

void Recordset::setPosition(int row)
{
    const int n = recordCount();
    m_pos = row < 0 ? -1 : std::min(row, n);
}

QStringList Recordset::fieldNames() const
{
    ensureRows();
    return d ? d->node->table->columns : QStringList();
}

bool Recordset::hasField(const QString& name) const
{
    ensureRows();
    return d && d->node->table->find(name) >= 0;
}

namespace {

QString named(const CommandDef* def)
{
    return def ? QStringLiteral(" «%1»").arg(def->name) : QString();
}

int columnOf(const Table* t, const QString& name, const CommandDef* def)
{
    if (!t)
        throw AppError(QStringLiteral("El conjunto de registros%1 está cerrado.").arg(named(def)));
    const int c = t->find(name);
    if (c < 0)
        throw AppError(QStringLiteral("La columna «%1» no está en el conjunto de registros%2.")
                           .arg(name, named(def)));
    return c;
}

}  // namespace

QVariant Recordset::field(const QString& name) const
{
    ensureRows();
    const int c = columnOf(d ? d->node->table.get() : nullptr, name, m_def);
    if (eof() || bof())
        throw AppError(noCurrentRow());
    return d->node->table->rows.at(d->view.at(m_pos)).at(c);
}

QString Recordset::text(const QString& name) const
{
    const QVariant v = field(name);
    return v.isNull() ? QString() : v.toString();
}

QVariant Recordset::valueAt(int row, const QString& name) const
{
    ensureRows();
    return valueAt(row, columnOf(d ? d->node->table.get() : nullptr, name, m_def));
}

QVariant Recordset::valueAt(int row, int column) const
{
    ensureRows();
    if (!d)
        throw AppError(QStringLiteral("El conjunto de registros está cerrado."));
    if (row < 0 || row >= d->view.size())
        throw AppError(QStringLiteral("La fila %1 no existe en el conjunto de registros.").arg(row));
    const Table& t = *d->node->table;
    if (column < 0 || column >= t.columns.size())
        throw AppError(QStringLiteral("La columna %1 no existe en el conjunto de registros.")
                           .arg(column));
    return t.rows.at(d->view.at(row)).at(column);
}

void Recordset::setFilter(const QString& filter)
{
    if (!d) {
        if (filter.trimmed().isEmpty())
            return;
        throw AppError(QStringLiteral("No se puede filtrar el conjunto de registros%1: está "
                                      "cerrado.")
                           .arg(m_def ? QStringLiteral(" «%1»").arg(m_def->name) : QString()));
    }
    if (filter.trimmed().isEmpty()) {
        if (d->pending)
            return;
        if (d->narrowed) {
            // Only the filtered rows are held: the whole source is read
            // again when it is next needed.
            auto data = std::make_shared<Data>();
            data->source = d->source;
            data->pending = true;
            d = std::move(data);
            m_pos = 0;
            return;
        }
        // Copies of this recordset keep their own rows.
        if (d.use_count() > 1)
            d = std::make_shared<Data>(*d);
        d->view = d->base;
        d->filter.clear();
        m_pos = d->view.isEmpty() ? -1 : 0;
        return;
    }
    if (d->source) {
        // Run in the store, the filter costs only the rows it lets through.
        if (const std::optional<StoreCondition> where = storeCondition(*d->source, filter)) {
            std::shared_ptr<Data> data = fetch(d->source, &*where);
            data->narrowed = true;
            applyFilter(*data, filter);
            d = std::move(data);
            m_pos = d->view.isEmpty() ? -1 : 0;
            return;
        }
    }
    std::shared_ptr<Data> data;
    if (d->pending || d->narrowed)
        data = fetch(d->source, nullptr);
    else
        data = std::make_shared<Data>(*d);   // copies of this recordset keep their own rows
    applyFilter(*data, filter);
    d = std::move(data);
    m_pos = d->view.isEmpty() ? -1 : 0;
}

QString Recordset::filter() const { return d ? d->filter : QString(); }

Recordset Recordset::child(const QString& name) const
{
    ensureRows();
    if (!d)
        throw AppError(QStringLiteral("El conjunto de registros está cerrado."));
    const Link* link = nullptr;
    for (const Link& l : d->node->links)
        if (l.name.compare(name, Qt::CaseInsensitive) == 0)
            link = &l;
    if (!link)
        throw AppError(QStringLiteral("«%1» no es un conjunto de registros hijo de%2.")
                           .arg(name, m_def ? QStringLiteral(" «%1»").arg(m_def->name)
                                            : QStringLiteral("l conjunto de registros")));
    if (eof() || bof())
        throw AppError(noCurrentRow());
    const int row = d->view.at(m_pos);
    auto data = std::make_shared<Data>();
    data->node = link->node;
    if (link->grouping) {
        data->base = link->groups.at(row);
    } else {
        const QString key = looseKey(d->node->table->rows.at(row).at(link->parentColumn));
        if (!key.isNull())
            data->base = link->byKey.value(key);
    }
    data->view = data->base;
    Recordset out;
    out.d = std::move(data);
    out.m_pos = out.d->view.isEmpty() ? -1 : 0;
    return out;
}

QStringList Recordset::childNames() const
{
    ensureRows();
    QStringList out;
    if (d)
        for (const Link& l : d->node->links)
            out << l.name;
    return out;
}

const CommandDef* Recordset::command() const { return m_def; }

// ---------------------------------------------------------------- Amb1

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
                if (!check.exec(QStringLiteral(
                        "SELECT tablename FROM pg_tables WHERE schemaname = current_schema() "
                        "UNION ALL "
                        "SELECT indexname FROM pg_indexes WHERE schemaname = current_schema()"))) {
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

// Nested saves share the outer transaction through savepoints, so an inner
// failure can undo its own rows and the outer save decides on the rest.
void Amb1::begin()
{
    QSqlDatabase db = currentDb();
    if (p->depth == 0) {
        // A save takes the store for writing at once: two programs on one
        // store then wait for each other (the busy timeout) instead of both
        // reading a free number and one failing when it writes it.
        // On the server one lock, held to the end of the transaction, does
        // what the embedded store's immediate transaction does.
        QSqlQuery q(db);
        const bool server = p->engine == Engine::Server;
        if (!q.exec(server ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE")))
            throw DbError(QStringLiteral("No se pudo iniciar la transacción. %1")
                              .arg(storeFailure(q.lastError())),
                          q.lastError().text());
        if (server && !q.exec(QStringLiteral("SELECT pg_advisory_xact_lock(%1)")
                                  .arg(dialect::kSaveLock))) {
            const QSqlError why = q.lastError();
            db.rollback();
            throw DbError(QStringLiteral("No se pudo iniciar la transacción. %1")
                              .arg(storeFailure(why)),
                          why.text());
        }
    } else {
        const QString sql = QStringLiteral("SAVEPOINT tq_sp%1").arg(p->depth);
        QSqlQuery q(db);
        if (!q.exec(sql))
            throw DbError(QStringLiteral("No se pudo iniciar la transacción. %1")
                              .arg(storeFailure(q.lastError())),
                          q.lastError().text(), sql);
    }
    ++p->depth;
}

void Amb1::commit()
{
    if (p->depth <= 0)
        throw AppError(QStringLiteral("No hay una transacción abierta que confirmar."));
    QSqlDatabase db = currentDb();
    if (p->depth == 1) {
        if (!db.commit()) {
            const QSqlError why = db.lastError();
            db.rollback();
            p->depth = 0;
            throw DbError(QStringLiteral("No se pudieron guardar los cambios. %1")
                              .arg(storeFailure(why)),
                          why.text());
        }
    } else {
        const QString sql = QStringLiteral("RELEASE SAVEPOINT tq_sp%1").arg(p->depth - 1);
        QSqlQuery q(db);
        if (!q.exec(sql)) {
            const QSqlError why = q.lastError();
            rollbackOpenTransaction();
            throw DbError(QStringLiteral("No se pudieron guardar los cambios. %1")
                              .arg(storeFailure(why)),
                          why.text(), sql);
        }
    }
    --p->depth;
}

void Amb1::rollback()
{
    if (p->depth <= 0)
        return;
    if (!isOpen()) {
        p->depth = 0;
        return;
    }
    if (p->depth == 1) {
        p->db.rollback();
    } else {
        const int level = p->depth - 1;
        QSqlQuery q(p->db);
        if (!q.exec(QStringLiteral("ROLLBACK TO SAVEPOINT tq_sp%1").arg(level))
            || !q.exec(QStringLiteral("RELEASE SAVEPOINT tq_sp%1").arg(level))) {
            // The savepoint is gone; undo the whole save rather than keep half.
            p->db.rollback();
            p->depth = 0;
            return;
        }
    }
    --p->depth;
}

void Amb1::setFiltersInStore(bool on) { g_filtersInStore = on; }

bool Amb1::filtersInStore() const { return g_filtersInStore; }

bool Amb1::inTransaction() const { return p->depth > 0; }

int Amb1::transactionDepth() const { return p->depth; }

Transaction::Transaction()
{
    amb1().begin();
}

Transaction::~Transaction()
{
    if (m_done)
        return;
    try {
        if (amb1().inTransaction())
            amb1().rollback();
    } catch (...) {
        // A destructor runs while an error is already on its way to the user.
    }
}

void Transaction::commit()
{
    if (m_done)
        return;
    m_done = true;
    amb1().commit();
}

void rollbackOpenTransaction(int depth)
{
    Amb1& a = amb1();
    while (a.transactionDepth() > depth)
        a.rollback();
}

}  // namespace tq
