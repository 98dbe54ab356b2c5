#include "foundation/data/dialect.h"

#include <QHash>
#include <QSqlDriver>

namespace tq {

Engine engineOf(const QSqlDatabase& db)
{
    return db.driverName().startsWith(QLatin1String("QPSQL")) ? Engine::Server
                                                               : Engine::Embedded;
}

namespace dialect {

namespace {

bool isWordChar(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

QString toServer(const QString& sql)
{
    QString out;
    out.reserve(sql.size() + 8);
    QChar quote;   // the quote we are inside, or null
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar c = sql.at(i);
        if (!quote.isNull()) {
            out += c;
            if (c == quote)
                quote = QChar();
            continue;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
            out += c;
            continue;
        }
        if ((c == QLatin1Char('L') || c == QLatin1Char('l')) && i + 4 <= sql.size()
            && sql.mid(i, 4).compare(QLatin1String("LIKE"), Qt::CaseInsensitive) == 0
            && (i == 0 || !isWordChar(sql.at(i - 1)))
            && (i + 4 == sql.size() || !isWordChar(sql.at(i + 4)))) {
            out += QLatin1String("ILIKE");
            i += 3;
            continue;
        }
        out += c;
    }
    return out;
}

}  // namespace

QString rowIdentity(Engine engine)
{
    return engine == Engine::Server ? QStringLiteral("ctid") : QStringLiteral("rowid");
}

QString adapted(const QString& sql, Engine engine)
{
    if (engine == Engine::Embedded)
        return sql;
    // The screens run a few hundred distinct statements; each is adapted once.
    static QHash<QString, QString> cache;
    if (const auto it = cache.constFind(sql); it != cache.constEnd())
        return *it;
    QString out = toServer(sql);
    if (cache.size() > 4096)
        cache.clear();
    cache.insert(sql, out);
    return out;
}

}  // namespace dialect
}  // namespace tq
