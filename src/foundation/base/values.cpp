#include "foundation/base/values.h"

#include "foundation/base/apperror.h"

#include <QRegularExpression>
#include <cmath>

namespace tq {

QString money(double amount)
{
    if (!std::isfinite(amount))
        throw AppError(QStringLiteral("El monto no es un número válido."));
    QString s = QString::number(amount, 'f', 2);
    if (s == QLatin1String("-0.00"))
        s = QStringLiteral("0.00");
    if (s.startsWith(QLatin1String("0.")))
        s.remove(0, 1);
    else if (s.startsWith(QLatin1String("-0.")))
        s.remove(1, 1);
    return s;
}

QString money(const QVariant& amount)
{
    if (amount.isNull())
        return money(0.0);
    bool ok = false;
    const double d = amount.toDouble(&ok);
    return money(ok ? d : Val(amount.toString()));
}

double Val(const QString& text)
{
    // Blanks, tabs and line feeds are skipped wherever they stand ("1 500"
    // is 1500); then an optional sign, digits with at most one decimal
    // point, and an optional exponent.
    QString packed;
    packed.reserve(text.size());
    for (const QChar c : text)
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t') && c != QLatin1Char('\n')
            && c != QLatin1Char('\r'))
            packed.append(c);
    static const QRegularExpression re(
        QStringLiteral("^([-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?)"));
    const auto m = re.match(packed);
    if (!m.hasMatch())
        return 0.0;
    return m.captured(1).toDouble();
}

bool isNumeric(const QString& text)
{
    static const QRegularExpression re(
        QStringLiteral("^\\s*[-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?\\s*$"));
    return re.match(text).hasMatch();
}

namespace {

// Rounds as the classic conversion did (half to even) and refuses what the
// target can't hold. `what` names the range in the message.
double checkedWhole(double value, double low, double high, const QString& range)
{
    if (!std::isfinite(value))
        throw AppError(QStringLiteral("El valor no es un número válido."));
    const double r = std::nearbyint(value);
    if (r < low || r > high)
        throw AppError(QStringLiteral("El número %1 es demasiado grande: %2.")
                           .arg(QString::number(value, 'f', value == r ? 0 : 2), range));
    return r;
}

double numberOf(const QVariant& value)
{
    bool ok = false;
    const double d = value.toDouble(&ok);
    return ok ? d : Val(value.toString());
}

}  // namespace

std::int16_t toInt16(double value)
{
    return static_cast<std::int16_t>(checkedWhole(
        value, -32768.0, 32767.0, QStringLiteral("este valor va de -32768 a 32767")));
}

std::int16_t toInt16(const QVariant& value)
{
    return value.isNull() ? std::int16_t(0) : toInt16(numberOf(value));
}

std::int16_t toInt16(const QString& text) { return toInt16(Val(text)); }

std::int32_t toInt32(double value)
{
    return static_cast<std::int32_t>(checkedWhole(
        value, -2147483648.0, 2147483647.0,
        QStringLiteral("un código o número de registro va de -2147483648 a 2147483647")));
}

std::int32_t toInt32(const QVariant& value)
{
    return value.isNull() ? 0 : toInt32(numberOf(value));
}

std::int32_t toInt32(const QString& text) { return toInt32(Val(text)); }

int monthsBetween(const QDate& from, const QDate& to)
{
    if (!from.isValid() || !to.isValid())
        return 0;
    return (to.year() - from.year()) * 12 + (to.month() - from.month());
}

int yearsBetween(const QDate& from, const QDate& to)
{
    if (!from.isValid() || !to.isValid())
        return 0;
    return to.year() - from.year();
}

Age calculoedad(const QDate& birth, const QDate& today)
{
    Age a;
    const int m = monthsBetween(birth, today);
    a.years = static_cast<int>(std::trunc(m / 12.0));
    const double rest = m / 12.0 - a.years;
    // Truncated, not rounded: floating error can lose a month (35 -> 2 y 10 m).
    a.months = static_cast<int>(std::trunc(rest * 12.0));
    a.text = QString::number(a.years) + QStringLiteral(" Años ") + QString::number(a.months)
             + QStringLiteral(" meses");
    return a;
}

QString dateLong(const QDate& d) { return d.toString(QStringLiteral("dd/MM/yyyy")); }
QString dateShort(const QDate& d) { return d.toString(QStringLiteral("dd/MM/yy")); }

QString spokenNumbers(const QList<std::int32_t>& numbers, qsizetype named)
{
    QStringList names;
    for (qsizetype i = 0; i < std::min(numbers.size(), named); ++i)
        names << QString::number(numbers.at(i));
    const qsizetype rest = numbers.size() - names.size();
    if (rest > 0)
        return names.join(QStringLiteral(", ")) + QStringLiteral(" y %1 más").arg(rest);
    if (names.size() < 2)
        return names.join(QString());
    const QString last = names.takeLast();
    return names.join(QStringLiteral(", ")) + QStringLiteral(" y ") + last;
}

QDate parseDate(const QString& text)
{
    static const QRegularExpression dmy(QStringLiteral(
        "^\\s*(\\d{1,2})/(\\d{1,2})/(\\d{2}|\\d{4})(?:\\s+\\d{1,2}:\\d{2}(?::\\d{2})?)?\\s*$"));
    const auto m = dmy.match(text);
    if (m.hasMatch()) {
        int year = m.captured(3).toInt();
        if (m.capturedLength(3) == 2)
            year += year < 30 ? 2000 : 1900;
        return QDate(year, m.captured(2).toInt(), m.captured(1).toInt());
    }
    return storedDate(text.trimmed());
}

QDate storedDate(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QDate:
        return value.toDate();
    case QMetaType::QDateTime:
        return value.toDateTime().date();
    case QMetaType::QString: {
        // "YYYY-MM-DD", then nothing, or a time "[T ]HH:MM[:SS[.fff]]". Read
        // by hand: a long list checks one date per row.
        const QString t = value.toString();
        auto digits = [&t](int from, int count) {
            int n = 0;
            for (int i = from; i < from + count; ++i) {
                const char16_t c = t.at(i).unicode();
                if (c < u'0' || c > u'9')
                    return -1;
                if (count <= 4)   // a fraction of a second is only checked
                    n = n * 10 + (c - u'0');
            }
            return n;
        };
        if (t.size() < 10 || t.at(4) != QLatin1Char('-') || t.at(7) != QLatin1Char('-'))
            return {};
        const int y = digits(0, 4), m = digits(5, 2), d = digits(8, 2);
        if (y < 0 || m < 0 || d < 0)
            return {};
        if (t.size() > 10) {
            const QChar sep = t.at(10);
            const bool hm = t.size() >= 16 && (sep == QLatin1Char('T') || sep == QLatin1Char(' '))
                            && digits(11, 2) >= 0 && t.at(13) == QLatin1Char(':') && digits(14, 2) >= 0;
            if (!hm)
                return {};
            if (t.size() > 16) {
                const bool secs = t.size() >= 19 && t.at(16) == QLatin1Char(':') && digits(17, 2) >= 0;
                if (!secs)
                    return {};
                if (t.size() > 19 && (t.at(19) != QLatin1Char('.') || t.size() == 20 || digits(20, t.size() - 20) < 0))
                    return {};
            }
        }
        return QDate(y, m, d);
    }
    default:
        return {};
    }
}

}  // namespace tq
