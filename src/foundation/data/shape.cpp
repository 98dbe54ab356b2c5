// Hierarchical results: the rows of a shape with the rows related to each
// (an invoice with its lines) or gathered in groups (a report's groups), and
// a recordset's child rows under the current row.
#include "foundation/data/amb1_p.h"

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"

#include <QDateTime>
#include <cmath>

namespace tq {

namespace {

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

}  // namespace

namespace detail {

// The rows of a shape and of every shape below it. `where`, when given,
// narrows the shape's own rows in the store; the rows below are then read
// only for the rows that pass.
std::shared_ptr<const Node> buildNode(const Shape& shape, const QVariantList& binds, int& used,
                                      const StoreCondition* where, int depth)
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

}  // namespace detail

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

}  // namespace tq
