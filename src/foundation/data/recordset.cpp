// The recordset: a client-side snapshot of a query's or a named source's
// rows, read at open or when first needed, its classic walk (moveFirst, eof,
// moveNext, field) and its Filter, run in the store when it can be and always
// read again in memory.
#include "foundation/data/amb1_p.h"

#include "foundation/base/apperror.h"

#include <algorithm>

namespace tq {

namespace detail {

QString noCurrentRow()
{
    return QStringLiteral("No hay un registro actual: el conjunto de registros está al "
                          "principio o al final, o no tiene filas.");
}

}  // namespace detail

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

const CommandDef* Recordset::command() const { return m_def; }

}  // namespace tq
