// The data environment amb1: Connection1, the named recordsets, the
// client-side snapshot every screen walks, its Filter, and the hierarchical
// results (invoice with its lines, report groups) built from Shape texts.
#include "foundation/data/amb1.h"

#include "foundation/data/catalogue_p.h"
#include "foundation/base/apperror.h"
#include "foundation/data/schema.h"
#include "foundation/base/values.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVector>
#include <algorithm>
#include <cmath>
#include <vector>

namespace tq {

namespace detail {

// Rows read at open, shared by a recordset and its copies and children.
struct Table {
    QStringList columns;
    QHash<QString, int> index;   // lower-case name -> column; the first of equal names wins
    QVector<bool> yesNo;         // yes/no columns, read as truth by Filter
    QVector<QVector<QVariant>> rows;

    void addColumn(const QString& name, bool isYesNo)
    {
        const QString key = name.toLower();
        if (!index.contains(key))
            index.insert(key, columns.size());
        columns << name;
        yesNo << isYesNo;
    }
    int find(const QString& name) const
    {
        auto it = index.constFind(name.toLower());
        if (it != index.constEnd())
            return *it;
        // "Factura.fecha" names the column fecha.
        const int dot = name.lastIndexOf(QLatin1Char('.'));
        if (dot >= 0) {
            it = index.constFind(name.mid(dot + 1).toLower());
            if (it != index.constEnd())
                return *it;
        }
        return -1;
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

using detail::Link;
using detail::Node;
using detail::Table;

struct Recordset::Data {
    std::shared_ptr<const Node> node;
    QVector<int> base;   // rows of the table this recordset holds (all, or a child's)
    QVector<int> view;   // those of `base` that pass the filter
    QString filter;
};

namespace {

constexpr auto kConnection = "Connection1";

QString connectionName() { return QString::fromLatin1(kConnection); }

QSqlDatabase currentDb()
{
    QSqlDatabase db = amb1().connection();
    if (!db.isValid() || !db.isOpen())
        throw DbError(QStringLiteral("La base de datos no está abierta."),
                      QStringLiteral("Connection1 cerrada"));
    return db;
}

// Prepares and runs a statement with its bound values.
QSqlQuery run(const QString& sql, const QVariantList& binds, bool forwardOnly)
{
    QSqlQuery q(currentDb());
    q.setForwardOnly(forwardOnly);
    if (!q.prepare(sql))
        throw DbError(QStringLiteral("La base de datos rechazó la consulta: %1")
                          .arg(q.lastError().text()),
                      q.lastError().text(), sql);
    for (const QVariant& v : binds)
        q.addBindValue(v);
    if (!q.exec())
        throw DbError(QStringLiteral("Error de la base de datos: %1").arg(q.lastError().text()),
                      q.lastError().text(), sql);
    return q;
}

// Reads every row of a select. Null when the statement returns no rows.
std::shared_ptr<Table> readAll(const QString& sql, const QVariantList& binds)
{
    QSqlQuery q = run(sql, binds, true);
    if (!q.isSelect())
        return nullptr;
    auto t = std::make_shared<Table>();
    const QSqlRecord rec = q.record();
    const int n = rec.count();
    for (int i = 0; i < n; ++i)
        t->addColumn(rec.fieldName(i), rec.field(i).metaType().id() == QMetaType::Bool);
    while (q.next()) {
        QVector<QVariant> row(n);
        for (int i = 0; i < n; ++i)
            row[i] = q.value(i);
        t->rows.append(std::move(row));
    }
    if (q.lastError().isValid())
        throw DbError(QStringLiteral("Error de la base de datos: %1").arg(q.lastError().text()),
                      q.lastError().text(), sql);
    q.finish();
    return t;
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

bool isNumberType(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
        return true;
    default:
        return false;
    }
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
    if (isNumberType(v))
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

std::shared_ptr<const Node> buildNode(const Shape& shape, const QVariantList& binds, int& used)
{
    const int need = placeholders(shape.sql);
    const QVariantList mine = binds.mid(used, need);
    used += need;
    std::shared_ptr<Table> rows = readAll(shape.sql, mine);
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
        link.node = buildNode(*rel.child, binds, used);
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

// ---------------------------------------------------------------- Filter

enum class Op { Eq, Ne, Lt, Gt, Le, Ge, Like, IsNull, IsNotNull };

struct Literal {
    enum Kind { Number, Text, Date, Bool, Null } kind = Null;
    double number = 0;
    QString text;
    QDate date;
    bool truth = false;
};

struct Condition {
    int column = -1;
    Op op = Op::Eq;
    Literal value;
    QRegularExpression like;
};

struct FilterNode {
    enum Kind { Leaf, And, Or } kind = Leaf;
    Condition cond;
    std::unique_ptr<FilterNode> left, right;
};

struct Token {
    enum Kind { End, Ident, Number, Text, Date, BareDate, LParen, RParen, Oper } kind = End;
    QString text;     // as read (identifiers without brackets, text without quotes)
    bool quotedName = false;
};

class FilterParser {
public:
    FilterParser(const QString& text, const Table& table) : m_src(text), m_table(table)
    {
        tokenize();
    }

    std::unique_ptr<FilterNode> parse()
    {
        auto n = parseOr();
        if (peek().kind != Token::End)
            fail(QStringLiteral("sobra «%1»").arg(peek().text));
        return n;
    }

private:
    [[noreturn]] void fail(const QString& why) const
    {
        throw AppError(QStringLiteral("El filtro «%1» no se puede aplicar: %2.").arg(m_src, why));
    }

    void tokenize()
    {
        static const QRegularExpression date(
            QStringLiteral("\\G[-+]?\\d{1,2}/\\d{1,2}/\\d{2,4}(?![\\d/])"));
        static const QRegularExpression number(
            QStringLiteral("\\G[-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?"));
        static const QRegularExpression ident(QStringLiteral("\\G[\\p{L}_][\\p{L}\\p{N}_.]*"));
        const QString& s = m_src;
        int i = 0;
        while (i < s.size()) {
            const QChar c = s.at(i);
            if (c.isSpace()) {
                ++i;
                continue;
            }
            Token t;
            if (c == QLatin1Char('(') || c == QLatin1Char(')')) {
                t.kind = c == QLatin1Char('(') ? Token::LParen : Token::RParen;
                t.text = c;
                ++i;
            } else if (c == QLatin1Char('<') || c == QLatin1Char('>') || c == QLatin1Char('=')
                       || c == QLatin1Char('!')) {
                t.kind = Token::Oper;
                t.text = c;
                ++i;
                if (i < s.size()) {
                    const QString two = t.text + s.at(i);
                    if (two == QLatin1String("<=") || two == QLatin1String(">=")
                        || two == QLatin1String("<>") || two == QLatin1String("!=")) {
                        t.text = two;
                        ++i;
                    }
                }
                if (t.text == QLatin1String("!"))
                    fail(QStringLiteral("el signo «!» no es un operador"));
            } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
                // Quoted text; a doubled quote stands for one.
                const QChar q = c;
                ++i;
                bool closed = false;
                while (i < s.size()) {
                    if (s.at(i) == q) {
                        if (i + 1 < s.size() && s.at(i + 1) == q) {
                            t.text += q;
                            i += 2;
                            continue;
                        }
                        ++i;
                        closed = true;
                        break;
                    }
                    t.text += s.at(i++);
                }
                if (!closed)
                    fail(QStringLiteral("falta cerrar la comilla del texto «%1»").arg(t.text));
                t.kind = Token::Text;
            } else if (c == QLatin1Char('#')) {
                const int end = s.indexOf(QLatin1Char('#'), i + 1);
                if (end < 0)
                    fail(QStringLiteral("falta cerrar la fecha entre «#»"));
                t.kind = Token::Date;
                t.text = s.mid(i + 1, end - i - 1).trimmed();
                i = end + 1;
            } else if (c == QLatin1Char('[') || c == QLatin1Char('`')) {
                const QChar close = c == QLatin1Char('[') ? QLatin1Char(']') : QLatin1Char('`');
                const int end = s.indexOf(close, i + 1);
                if (end < 0)
                    fail(QStringLiteral("falta cerrar el nombre de columna"));
                t.kind = Token::Ident;
                t.quotedName = true;
                t.text = s.mid(i + 1, end - i - 1);
                i = end + 1;
            } else if (auto m = date.match(s, i); m.hasMatch()) {
                t.kind = Token::BareDate;
                t.text = m.captured();
                i += m.capturedLength();
            } else if (auto m2 = number.match(s, i); m2.hasMatch()) {
                t.kind = Token::Number;
                t.text = m2.captured();
                i += m2.capturedLength();
            } else if (auto m3 = ident.match(s, i); m3.hasMatch()) {
                t.kind = Token::Ident;
                t.text = m3.captured();
                i += m3.capturedLength();
            } else {
                fail(QStringLiteral("no se entiende «%1»").arg(s.mid(i, 10)));
            }
            m_tokens.push_back(t);
        }
        m_tokens.push_back(Token());
    }

    const Token& peek() const { return m_tokens[m_at]; }
    Token take() { return m_tokens[m_at < m_tokens.size() - 1 ? m_at++ : m_at]; }

    bool isWord(const Token& t, const char* word) const
    {
        return t.kind == Token::Ident && !t.quotedName
               && t.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    }

    std::unique_ptr<FilterNode> parseOr()
    {
        auto left = parseAnd();
        while (isWord(peek(), "or")) {
            take();
            auto n = std::make_unique<FilterNode>();
            n->kind = FilterNode::Or;
            n->left = std::move(left);
            n->right = parseAnd();
            left = std::move(n);
        }
        return left;
    }

    std::unique_ptr<FilterNode> parseAnd()
    {
        auto left = parsePrimary();
        while (isWord(peek(), "and")) {
            take();
            auto n = std::make_unique<FilterNode>();
            n->kind = FilterNode::And;
            n->left = std::move(left);
            n->right = parsePrimary();
            left = std::move(n);
        }
        return left;
    }

    std::unique_ptr<FilterNode> parsePrimary()
    {
        if (peek().kind == Token::LParen) {
            take();
            auto n = parseOr();
            if (peek().kind != Token::RParen)
                fail(QStringLiteral("falta cerrar un paréntesis"));
            take();
            return n;
        }
        return parseClause();
    }

    std::unique_ptr<FilterNode> parseClause()
    {
        const Token name = take();
        if (name.kind != Token::Ident || isWord(name, "and") || isWord(name, "or"))
            fail(name.kind == Token::End ? QStringLiteral("falta una condición al final")
                                         : QStringLiteral("se esperaba el nombre de una columna "
                                                          "en lugar de «%1»")
                                               .arg(name.text));
        auto n = std::make_unique<FilterNode>();
        Condition& c = n->cond;
        c.column = m_table.find(name.text);
        if (c.column < 0)
            fail(QStringLiteral("la columna «%1» no está en el conjunto de registros")
                     .arg(name.text));

        const Token op = take();
        if (isWord(op, "is")) {
            bool negated = false;
            if (isWord(peek(), "not")) {
                take();
                negated = true;
            }
            if (!isWord(take(), "null"))
                fail(QStringLiteral("se esperaba «Null» después de «Is»"));
            c.op = negated ? Op::IsNotNull : Op::IsNull;
            return n;
        }
        if (isWord(op, "like")) {
            c.op = Op::Like;
        } else if (op.kind == Token::Oper) {
            if (op.text == QLatin1String("="))
                c.op = Op::Eq;
            else if (op.text == QLatin1String("<>") || op.text == QLatin1String("!="))
                c.op = Op::Ne;
            else if (op.text == QLatin1String("<"))
                c.op = Op::Lt;
            else if (op.text == QLatin1String(">"))
                c.op = Op::Gt;
            else if (op.text == QLatin1String("<="))
                c.op = Op::Le;
            else
                c.op = Op::Ge;
        } else {
            fail(QStringLiteral("se esperaba un operador (=, <>, <, >, <=, >=, Like) después de "
                                "«%1»")
                     .arg(name.text));
        }

        const Token v = take();
        Literal& lit = c.value;
        switch (v.kind) {
        case Token::Number:
            lit.kind = Literal::Number;
            lit.number = v.text.toDouble();
            lit.text = v.text;
            break;
        case Token::Text:
            lit.kind = Literal::Text;
            lit.text = v.text;
            break;
        case Token::Date:
        case Token::BareDate:
            lit.kind = Literal::Date;
            lit.text = v.text;
            lit.date = parseDate(v.text);
            if (!lit.date.isValid())
                fail(QStringLiteral("la fecha «%1» no es válida").arg(v.text));
            break;
        case Token::Ident:
            if (isWord(v, "true") || isWord(v, "false")) {
                lit.kind = Literal::Bool;
                lit.truth = isWord(v, "true");
                lit.text = v.text;
                break;
            }
            if (isWord(v, "null")) {
                lit.kind = Literal::Null;
                break;
            }
            fail(QStringLiteral("el valor «%1» debe ir entre comillas").arg(v.text));
        default:
            fail(QStringLiteral("falta el valor después de «%1 %2»").arg(name.text, op.text));
        }
        if (c.op == Op::Like) {
            if (lit.kind == Literal::Null)
                fail(QStringLiteral("Like necesita un texto"));
            // * and % stand for any run of characters, _ and ? for one.
            QString re;
            for (const QChar ch : lit.text) {
                if (ch == QLatin1Char('*') || ch == QLatin1Char('%'))
                    re += QStringLiteral(".*");
                else if (ch == QLatin1Char('_') || ch == QLatin1Char('?'))
                    re += QLatin1Char('.');
                else
                    re += QRegularExpression::escape(QString(ch));
            }
            c.like = QRegularExpression(QRegularExpression::anchoredPattern(re),
                                        QRegularExpression::CaseInsensitiveOption
                                            | QRegularExpression::DotMatchesEverythingOption);
        }
        return n;
    }

    QString m_src;
    const Table& m_table;
    std::vector<Token> m_tokens;
    size_t m_at = 0;
};

bool cellTruth(const QVariant& v)
{
    if (v.typeId() == QMetaType::Bool)
        return v.toBool();
    if (isNumberType(v))
        return v.toDouble() != 0.0;
    const QString s = v.toString().trimmed();
    if (s.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (s.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    return Val(s) != 0.0;
}

template <typename T>
bool compareBy(Op op, const T& a, const T& b)
{
    switch (op) {
    case Op::Eq: return a == b;
    case Op::Ne: return !(a == b);
    case Op::Lt: return a < b;
    case Op::Gt: return b < a;
    case Op::Le: return !(b < a);
    case Op::Ge: return !(a < b);
    default: return false;
    }
}

bool compareNumbers(Op op, double a, double b)
{
    const double tol = 1e-9 * std::max({1.0, std::fabs(a), std::fabs(b)});
    const int cmp = std::fabs(a - b) <= tol ? 0 : (a < b ? -1 : 1);
    return compareBy(op, cmp, 0);
}

bool matches(const Condition& c, const QVector<QVariant>& row, bool yesNoColumn)
{
    const QVariant& v = row.at(c.column);
    const bool null = !v.isValid() || v.isNull();
    if (c.op == Op::IsNull)
        return null;
    if (c.op == Op::IsNotNull)
        return !null;
    const Literal& lit = c.value;
    if (lit.kind == Literal::Null)
        return c.op == Op::Eq ? null : (c.op == Op::Ne ? !null : false);
    if (null)
        return false;

    if (c.op == Op::Like)
        return c.like.match(v.toString()).hasMatch();

    // Yes/no: true, false, -1, 0 and 1 are read as truth.
    if (lit.kind == Literal::Bool || (yesNoColumn && lit.kind == Literal::Number)
        || v.typeId() == QMetaType::Bool) {
        bool litTruth = lit.truth;
        if (lit.kind == Literal::Number)
            litTruth = lit.number != 0.0;
        else if (lit.kind == Literal::Text)
            litTruth = cellTruth(QVariant(lit.text));
        else if (lit.kind == Literal::Date)
            return false;
        return compareBy(c.op, cellTruth(v) ? 1 : 0, litTruth ? 1 : 0);
    }

    const QDate asDate = storedDate(v);
    if (lit.kind == Literal::Date || (asDate.isValid() && lit.kind == Literal::Text)) {
        const QDate wanted = lit.kind == Literal::Date ? lit.date : parseDate(lit.text);
        QDate have = asDate;
        if (!have.isValid())
            have = parseDate(v.toString());
        if (wanted.isValid() && have.isValid())
            return compareBy(c.op, have, wanted);
        if (lit.kind == Literal::Date)
            return false;
        // A text that isn't a date, against a date column: compare as text.
    }

    if (lit.kind == Literal::Number) {
        if (isNumberType(v))
            return compareNumbers(c.op, v.toDouble(), lit.number);
        const QString s = v.toString();
        if (isNumeric(s))
            return compareNumbers(c.op, s.trimmed().toDouble(), lit.number);
        return false;
    }

    // Text.
    if (isNumberType(v) && isNumeric(lit.text))
        return compareNumbers(c.op, v.toDouble(), lit.text.trimmed().toDouble());
    return compareBy(c.op, v.toString().compare(lit.text), 0);
}

bool passes(const FilterNode& n, const QVector<QVariant>& row, const Table& t)
{
    switch (n.kind) {
    case FilterNode::And:
        return passes(*n.left, row, t) && passes(*n.right, row, t);
    case FilterNode::Or:
        return passes(*n.left, row, t) || passes(*n.right, row, t);
    case FilterNode::Leaf:
        break;
    }
    return matches(n.cond, row, t.yesNo.at(n.cond.column));
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

void Recordset::open(const QString& sql, const QVariantList& binds)
{
    std::shared_ptr<Table> t = readAll(sql, binds);
    if (!t) {
        // delete, update, insert: nothing to hold.
        close();
        return;
    }
    auto node = std::make_shared<Node>();
    node->table = t;
    auto data = std::make_shared<Data>();
    data->node = node;
    data->base.resize(t->rows.size());
    for (int i = 0; i < data->base.size(); ++i)
        data->base[i] = i;
    data->view = data->base;
    d = std::move(data);
    m_pos = d->view.isEmpty() ? -1 : 0;
}

void Recordset::open()
{
    if (!m_def)
        throw AppError(QStringLiteral("Este conjunto de registros no tiene una consulta guardada."));
    switch (m_def->kind) {
    case CommandKind::Slot:
        throw AppError(QStringLiteral("El conjunto de registros «%1» no tiene una consulta "
                                      "guardada; se abre con su propio texto.")
                           .arg(m_def->name));
    case CommandKind::Table:
        open(QStringLiteral("SELECT * FROM ") + m_def->text);
        return;
    case CommandKind::Query:
        open(m_def->text);
        return;
    case CommandKind::Shaped:
        if (!m_def->shape)
            throw AppError(QStringLiteral("El conjunto de registros «%1» no tiene su forma "
                                          "jerárquica.")
                               .arg(m_def->name));
        openShape(*m_def->shape);
        return;
    }
}

void Recordset::openShape(const Shape& shape, const QVariantList& binds)
{
    int used = 0;
    std::shared_ptr<const Node> node = buildNode(shape, binds, used);
    auto data = std::make_shared<Data>();
    data->node = node;
    data->base.resize(node->table->rows.size());
    for (int i = 0; i < data->base.size(); ++i)
        data->base[i] = i;
    data->view = data->base;
    d = std::move(data);
    m_pos = d->view.isEmpty() ? -1 : 0;
}

void Recordset::close()
{
    d.reset();
    m_pos = -1;
}

int Recordset::recordCount() const { return d ? d->view.size() : 0; }

bool Recordset::eof() const { return !d || d->view.isEmpty() || m_pos >= d->view.size(); }

bool Recordset::bof() const { return !d || d->view.isEmpty() || m_pos < 0; }

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

QStringList Recordset::fieldNames() const { return d ? d->node->table->columns : QStringList(); }

bool Recordset::hasField(const QString& name) const
{
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
    return valueAt(row, columnOf(d ? d->node->table.get() : nullptr, name, m_def));
}

QVariant Recordset::valueAt(int row, int column) const
{
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
    const Table& t = *d->node->table;
    QVector<int> view;
    if (filter.trimmed().isEmpty()) {
        view = d->base;
    } else {
        FilterParser parser(filter, t);
        const std::unique_ptr<FilterNode> tree = parser.parse();
        view.reserve(d->base.size());
        for (int r : std::as_const(d->base))
            if (passes(*tree, t.rows.at(r), t))
                view.append(r);
    }
    // Copies of this recordset keep their own rows.
    if (d.use_count() > 1)
        d = std::make_shared<Data>(*d);
    d->view = std::move(view);
    d->filter = filter.trimmed().isEmpty() ? QString() : filter;
    m_pos = d->view.isEmpty() ? -1 : 0;
}

QString Recordset::filter() const { return d ? d->filter : QString(); }

Recordset Recordset::child(const QString& name) const
{
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
    QString file;
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
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName());
        db.setDatabaseName(info.absoluteFilePath());
        // Another workstation may hold the file for a moment while it saves.
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
        if (!db.open()) {
            why = db.lastError().text();
            failure = QStringLiteral("No se pudo abrir la base de datos %1: %2").arg(where, why);
        } else {
            // A file that isn't a store opens but can't be read.
            QSqlQuery check(db);
            if (!check.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
                why = check.lastError().text();
                failure = QStringLiteral("No se pudo abrir la base de datos %1: el archivo no es "
                                         "una base de datos válida (%2).")
                              .arg(where, why);
            } else {
                check.finish();
                // Deletion rules live in the screens; the store enforces no keys.
                check.exec(QStringLiteral("PRAGMA foreign_keys = OFF"));
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
    p->file = info.absoluteFilePath();

    try {
        if (schema::isEmpty(p->db)) {
            if (!p->db.transaction())
                throw DbError(QStringLiteral("No se pudo abrir la base de datos %1: no se pudo "
                                             "iniciar la creación de sus tablas.")
                                  .arg(where),
                              p->db.lastError().text());
            try {
                schema::create(p->db);
                schema::seedFirstStart(p->db);
            } catch (...) {
                p->db.rollback();
                throw;
            }
            if (!p->db.commit()) {
                const QString why = p->db.lastError().text();
                p->db.rollback();
                throw DbError(QStringLiteral("No se pudo abrir la base de datos %1: no se pudieron "
                                             "guardar sus tablas nuevas.")
                                  .arg(where),
                              why);
            }
        }
        // A store made by an earlier version is brought up to this one.
        schema::upgrade(p->db);
    } catch (...) {
        closeStore();
        throw;
    }
}

void Amb1::closeStore()
{
    p->resetSlots();
    p->depth = 0;
    p->lastId = QVariant();
    p->file.clear();
    if (p->db.isValid()) {
        if (p->db.isOpen())
            p->db.close();
        p->db = QSqlDatabase();
    }
    if (QSqlDatabase::contains(connectionName()))
        QSqlDatabase::removeDatabase(connectionName());
}

bool Amb1::isOpen() const { return p->db.isValid() && p->db.isOpen(); }

QString Amb1::storeFile() const { return p->file; }

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
    QSqlQuery q = run(sql, binds, true);
    p->lastId = q.lastInsertId();
    const int n = q.numRowsAffected();
    q.finish();
    return n;
}

QVariant Amb1::scalar(const QString& sql, const QVariantList& binds)
{
    QSqlQuery q = run(sql, binds, true);
    QVariant v;
    if (q.isSelect() && q.next())
        v = q.value(0);
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
    execute(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                .arg(table, columns.join(QStringLiteral(", ")), marks.join(QStringLiteral(", "))),
            values);
    return p->lastId;
}

// Nested saves share the outer transaction through savepoints, so an inner
// failure can undo its own rows and the outer save decides on the rest.
void Amb1::begin()
{
    QSqlDatabase db = currentDb();
    if (p->depth == 0) {
        if (!db.transaction())
            throw DbError(QStringLiteral("No se pudo iniciar la transacción: %1")
                              .arg(db.lastError().text()),
                          db.lastError().text());
    } else {
        const QString sql = QStringLiteral("SAVEPOINT tq_sp%1").arg(p->depth);
        QSqlQuery q(db);
        if (!q.exec(sql))
            throw DbError(QStringLiteral("No se pudo iniciar la transacción: %1")
                              .arg(q.lastError().text()),
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
            const QString why = db.lastError().text();
            db.rollback();
            p->depth = 0;
            throw DbError(QStringLiteral("No se pudieron guardar los cambios: %1").arg(why), why);
        }
    } else {
        const QString sql = QStringLiteral("RELEASE SAVEPOINT tq_sp%1").arg(p->depth - 1);
        QSqlQuery q(db);
        if (!q.exec(sql)) {
            const QString why = q.lastError().text();
            rollbackOpenTransaction();
            throw DbError(QStringLiteral("No se pudieron guardar los cambios: %1").arg(why), why,
                          sql);
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
