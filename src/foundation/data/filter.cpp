// The classic Filter: reading its text, running it over rows in memory, and
// the condition the store runs in its place.
#include "foundation/data/filter_p.h"

#include "foundation/data/amb1.h"

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"

#include <QDate>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <vector>

namespace tq::detail {

void ColumnIndex::add(const QString& name)
{
    const QString key = name.toLower();
    if (!index.contains(key)) {
        index.insert(key, columns.size());
        exact.insert(name, columns.size());   // the same column, found without folding case
    }
    columns << name;
}

int ColumnIndex::find(const QString& name) const
{
    // Asked for as the store spelled it, which is how rows are walked.
    if (const auto hit = exact.constFind(name); hit != exact.constEnd())
        return *hit;
    auto it = index.constFind(name.toLower());
    if (it != index.constEnd())
        return *it;
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot >= 0) {
        it = index.constFind(name.mid(dot + 1).toLower());
        if (it != index.constEnd())
            return *it;
    }
    return -1;
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

ColumnKind kindOfDeclaredType(const QString& declared)
{
    const QString t = declared.toUpper();
    if (t.isEmpty())
        return ColumnKind::Unknown;
    if (t.contains(QLatin1String("BOOL")) || t == QLatin1String("BIT")
        || t == QLatin1String("YESNO"))
        return ColumnKind::YesNo;
    if (t.contains(QLatin1String("DATE")) || t.contains(QLatin1String("TIME")))
        return ColumnKind::Date;
    if (t.contains(QLatin1String("CHAR")) || t.contains(QLatin1String("TEXT"))
        || t.contains(QLatin1String("CLOB")) || t.contains(QLatin1String("MEMO")))
        return ColumnKind::Text;
    for (const char* n : {"INT", "NUMERIC", "DECIMAL", "REAL", "DOUB", "FLOA", "MONEY", "CURRENCY",
                          "COUNTER"})
        if (t.contains(QLatin1String(n)))
            return ColumnKind::Number;
    return ColumnKind::Unknown;
}

QString StoreCondition::on(const QString& alias) const
{
    QString out = sql;
    return out.replace(kAliasMark, alias);
}

// The reading of a filter text, kept out of the header.
namespace filterimpl {

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
    FilterParser(const QString& text, const std::function<int(const QString&)>& resolve)
        : m_src(text), m_resolve(resolve)
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
        c.column = m_resolve(name.text);
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
            lit.date = parseDate(v.text);   // a quoted date, read once (invalid for other texts)
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
            // Plain text is escaped a run at a time, so that a letter written
            // as two UTF-16 units (an emoji) stays whole.
            QString re, plain;
            const auto flush = [&] {
                re += QRegularExpression::escape(plain);
                plain.clear();
            };
            for (const QChar ch : lit.text) {
                if (ch == QLatin1Char('*') || ch == QLatin1Char('%')) {
                    flush();
                    re += QStringLiteral(".*");
                } else if (ch == QLatin1Char('_') || ch == QLatin1Char('?')) {
                    flush();
                    re += QLatin1Char('.');
                } else {
                    plain += ch;
                }
            }
            flush();
            c.like = QRegularExpression(QRegularExpression::anchoredPattern(re),
                                        QRegularExpression::CaseInsensitiveOption
                                            | QRegularExpression::DotMatchesEverythingOption);
        }
        return n;
    }

    QString m_src;
    const std::function<int(const QString&)>& m_resolve;
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
        const QDate wanted = lit.date;
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


bool passes(const FilterNode& n, const QVector<QVariant>& row, const QVector<bool>& yesNo)
{
    switch (n.kind) {
    case FilterNode::And:
        return passes(*n.left, row, yesNo) && passes(*n.right, row, yesNo);
    case FilterNode::Or:
        return passes(*n.left, row, yesNo) || passes(*n.right, row, yesNo);
    case FilterNode::Leaf:
        break;
    }
    return matches(n.cond, row, yesNo.value(n.cond.column));
}

// ---------------------------------------------------------------- in the store
//
// Each part of the filter becomes a condition that holds for every row the
// classic reading lets through; where that can't be said exactly, the part
// is left to the reading in memory (no condition) or widened (numbers within
// the classic tolerance, letters beyond plain ASCII matched by any letter).
// The rows the store returns are then read in memory as before, so the
// result is the classic one, at the cost of the rows returned.

struct Part {
    QString sql;
    QVariantList binds;
};

using MaybePart = std::optional<Part>;

Part plain(const QString& sql, QVariantList binds = {}) { return Part{sql, std::move(binds)}; }

QString quotedName(QString name)
{
    return QLatin1Char('"') + name.replace(QLatin1Char('"'), QStringLiteral("\"\""))
           + QLatin1Char('"');
}

// Like text of the store for a classic pattern: * and % any run, _ and ? one
// character. The store folds case for plain letters only, so any other
// letter is matched by any one character and left to the reading in memory.
QString likePattern(const QString& text)
{
    QString out;
    for (int i = 0; i < text.size(); ++i) {
        const QChar ch = text.at(i);
        if (ch == QLatin1Char('*') || ch == QLatin1Char('%')) {
            out += QLatin1Char('%');
        } else if (ch == QLatin1Char('_') || ch == QLatin1Char('?')) {
            out += QLatin1Char('_');
        } else if (ch == QLatin1Char('\\')) {
            out += QStringLiteral("\\\\");
        } else if (ch.unicode() > 127) {
            out += QLatin1Char('_');
            if (ch.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
                ++i;
        } else {
            out += ch;
        }
    }
    return out;
}

MaybePart numberPart(Op op, const QString& col, double x)
{
    if (!std::isfinite(x))
        return std::nullopt;
    // Wider than the classic tolerance, so that no row it counts equal is lost.
    const double tol = 2e-9 * std::max(1.0, std::fabs(x));
    switch (op) {
    case Op::Eq: return plain(col + QStringLiteral(" BETWEEN ? AND ?"), {x - tol, x + tol});
    case Op::Ne: return plain(col + QStringLiteral(" <> ?"), {x});
    case Op::Lt: return plain(col + QStringLiteral(" < ?"), {x});
    case Op::Le: return plain(col + QStringLiteral(" <= ?"), {x + tol});
    case Op::Gt: return plain(col + QStringLiteral(" > ?"), {x});
    case Op::Ge: return plain(col + QStringLiteral(" >= ?"), {x - tol});
    default: return std::nullopt;
    }
}

// Dates are kept as ISO text, with or without a time: a day is a range.
MaybePart datePart(Op op, const QString& col, const QDate& d)
{
    const QDate next = d.addDays(1);
    switch (op) {
    case Op::Eq:
        return plain(QStringLiteral("(%1 >= ? AND %1 < ?)").arg(col), {d, next});
    case Op::Ne:
        return plain(QStringLiteral("(%1 < ? OR %1 >= ?)").arg(col), {d, next});
    case Op::Lt: return plain(col + QStringLiteral(" < ?"), {d});
    case Op::Le: return plain(col + QStringLiteral(" < ?"), {next});
    case Op::Gt: return plain(col + QStringLiteral(" >= ?"), {next});
    case Op::Ge: return plain(col + QStringLiteral(" >= ?"), {d});
    default: return std::nullopt;
    }
}

// A column the store can't type (a computed one) is narrowed only for the
// values of the kind the condition speaks of; the others pass to memory.
MaybePart onlyForTypes(const MaybePart& part, const QString& col, const char* storeTypes)
{
    // The server types every column, so it has none of these.
    if (!part || amb1().engine() == Engine::Server)
        return std::nullopt;
    return plain(QStringLiteral("(typeof(%1) NOT IN (%2) OR %3)")
                     .arg(col, QLatin1String(storeTypes), part->sql),
                 part->binds);
}

std::optional<double> numberOf(const Literal& lit)
{
    if (lit.kind == Literal::Number)
        return lit.number;
    if (lit.kind == Literal::Text && isNumeric(lit.text))
        return lit.text.trimmed().toDouble();
    return std::nullopt;
}

MaybePart leafPart(const Condition& c, const QString& col, ColumnKind kind)
{
    const Literal& lit = c.value;
    if (c.op == Op::IsNull)
        return plain(col + QStringLiteral(" IS NULL"));
    if (c.op == Op::IsNotNull)
        return plain(col + QStringLiteral(" IS NOT NULL"));
    if (lit.kind == Literal::Null) {
        if (c.op == Op::Eq)
            return plain(col + QStringLiteral(" IS NULL"));
        if (c.op == Op::Ne)
            return plain(col + QStringLiteral(" IS NOT NULL"));
        return plain(QStringLiteral("1 = 0"));
    }
    if (c.op == Op::Like) {
        const MaybePart like =
            plain(col + QStringLiteral(" LIKE ? ESCAPE '\\'"), {likePattern(lit.text)});
        if (kind == ColumnKind::Text)
            return like;
        if (kind == ColumnKind::Unknown)
            return onlyForTypes(like, col, "'text'");
        return std::nullopt;
    }
    const bool textIsDate = lit.kind == Literal::Text && parseDate(lit.text).isValid();
    switch (kind) {
    case ColumnKind::YesNo:
        if ((lit.kind == Literal::Bool || lit.kind == Literal::Number)
            && (c.op == Op::Eq || c.op == Op::Ne)) {
            const bool truth = lit.kind == Literal::Bool ? lit.truth : lit.number != 0.0;
            return plain(col + ((c.op == Op::Eq) == truth ? QStringLiteral(" = TRUE")
                                                          : QStringLiteral(" = FALSE")));
        }
        return std::nullopt;
    case ColumnKind::Number:
        if (const auto x = numberOf(lit))
            return numberPart(c.op, col, *x);
        return std::nullopt;
    case ColumnKind::Date:
        if (lit.kind == Literal::Date)
            return datePart(c.op, col, lit.date);
        if (textIsDate)
            return datePart(c.op, col, parseDate(lit.text));
        return std::nullopt;
    case ColumnKind::Text:
        if (lit.kind == Literal::Text && !textIsDate) {
            if (c.op == Op::Eq)
                return plain(col + QStringLiteral(" = ?"), {lit.text});
            if (c.op == Op::Ne)
                return plain(col + QStringLiteral(" <> ?"), {lit.text});
        }
        return std::nullopt;
    case ColumnKind::Unknown:
        if (lit.kind == Literal::Number)
            return onlyForTypes(numberPart(c.op, col, lit.number), col, "'integer', 'real'");
        if (lit.kind == Literal::Text && !textIsDate && !isNumeric(lit.text) && c.op == Op::Eq)
            return onlyForTypes(plain(col + QStringLiteral(" = ?"), {lit.text}), col, "'text'");
        return std::nullopt;
    }
    return std::nullopt;
}

MaybePart storePart(const FilterNode& n, const std::function<QString(int)>& name,
                    const std::function<ColumnKind(int)>& kind)
{
    if (n.kind == FilterNode::Leaf) {
        const QString col =
            QString(StoreCondition::kAliasMark) + QLatin1Char('.') + quotedName(name(n.cond.column));
        return leafPart(n.cond, col, kind(n.cond.column));
    }
    MaybePart left = storePart(*n.left, name, kind);
    MaybePart right = storePart(*n.right, name, kind);
    if (n.kind == FilterNode::And) {
        // A part left to memory narrows nothing; the other still does.
        if (!left || !right)
            return left ? left : right;
        return plain(QStringLiteral("(%1 AND %2)").arg(left->sql, right->sql),
                     left->binds + right->binds);
    }
    if (!left || !right)
        return std::nullopt;
    return plain(QStringLiteral("(%1 OR %2)").arg(left->sql, right->sql),
                 left->binds + right->binds);
}

}  // namespace filterimpl

struct Filter::Node {
    std::unique_ptr<filterimpl::FilterNode> tree;
};

Filter::Filter(const QString& text, const std::function<int(const QString&)>& resolve)
    : m_root(std::make_unique<Node>())
{
    filterimpl::FilterParser parser(text, resolve);
    m_root->tree = parser.parse();
}

Filter::~Filter() = default;

bool Filter::passes(const QVector<QVariant>& row, const QVector<bool>& yesNoColumns) const
{
    return filterimpl::passes(*m_root->tree, row, yesNoColumns);
}

std::optional<StoreCondition> Filter::toStore(const std::function<QString(int)>& name,
                                              const std::function<ColumnKind(int)>& kind) const
{
    const filterimpl::MaybePart part = filterimpl::storePart(*m_root->tree, name, kind);
    if (!part)
        return std::nullopt;
    return StoreCondition{part->sql, part->binds};
}

}  // namespace tq::detail

namespace tq {

QString storeLikePattern(const QString& classic) { return detail::filterimpl::likePattern(classic); }

}  // namespace tq
