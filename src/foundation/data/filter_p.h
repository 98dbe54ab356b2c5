#pragma once
// The classic Filter text of a recordset ("factura = 12", "anulada =0 and
// fecha = 22/11/2026", "apellido like '*o*'"): read once, then either run over
// rows held in memory, or turned into a condition that the store runs itself,
// so that narrowing a million rows costs only the rows that pass. Private to
// the data environment.
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>
#include <optional>

namespace tq::detail {

// Columns found by name as recordsets find them: without regard to case, the
// first of equal names wins, and "Factura.fecha" names the column fecha.
struct ColumnIndex {
    QStringList columns;
    QHash<QString, int> index;   // lower-case name -> column
    QHash<QString, int> exact;   // name as the store gave it -> column (the common case, no folding)

    void add(const QString& name);
    int find(const QString& name) const;   // -1 when missing
};

bool isNumberType(const QVariant& v);

// What a result column holds, as the store declares it.
enum class ColumnKind { Unknown, Number, YesNo, Date, Text };
ColumnKind kindOfDeclaredType(const QString& declared);

// A condition for the store's WHERE clause over a result named by an alias.
// The text carries kAliasMark where the alias goes.
struct StoreCondition {
    static constexpr QChar kAliasMark = QChar(0x01);
    QString sql;
    QVariantList binds;

    QString on(const QString& alias) const;
};

class Filter {
public:
    // Reads the text; `resolve` finds a column by name (-1 when there is
    // none). Throws AppError, in Spanish, for a text it can't read.
    Filter(const QString& text, const std::function<int(const QString&)>& resolve);
    ~Filter();
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    // The classic reading of one row: dates, numbers, yes/no and text, as
    // the laboratory's screens have always filtered.
    bool passes(const QVector<QVariant>& row, const QVector<bool>& yesNoColumns) const;

    // A condition the store can run that every row passing the filter meets.
    // It may let a few more rows through (passes() has the last word); none
    // when no part of the filter can be run in the store. `name` gives the
    // store's name of a column the filter reads and `kind` what it holds.
    std::optional<StoreCondition> toStore(const std::function<QString(int)>& name,
                                          const std::function<ColumnKind(int)>& kind) const;

    struct Node;

private:
    std::unique_ptr<Node> m_root;
};

}  // namespace tq::detail
