// Narrowing in the store: a recordset's filter run by the store as a bound
// condition around its source's own text, the rows below a parent read only
// for the parents that pass, and a page read at a time told to the server.
// What the store says of a result's columns decides which parts it can run.
#include "foundation/data/amb1_p.h"

#include "foundation/base/native.h"
#include "foundation/data/dialect.h"

#include <QSet>
#include <QSqlDriver>
#include <QSqlField>
#include <QSqlRecord>

namespace tq {

namespace {

bool g_filtersInStore = true;

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

}  // namespace

namespace detail {

QHash<QString, std::shared_ptr<const Described>>& describedCache()
{
    static QHash<QString, std::shared_ptr<const Described>> cache;
    return cache;
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

}  // namespace detail

void Amb1::setFiltersInStore(bool on) { g_filtersInStore = on; }

bool Amb1::filtersInStore() const { return g_filtersInStore; }

}  // namespace tq
