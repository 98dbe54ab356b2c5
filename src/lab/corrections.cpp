#include "lab/corrections.h"

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/data/dialect.h"
#include "lab/templates.h"

#include <QHash>

namespace tq::corrections {

namespace {

// A cell of the corrected sheet, and whether the family writes the
// template's version on it.
struct NewCell {
    QString celda;
    QString valor;
    bool withVersion = false;
};

// Which rows carry the version, as each family has always written them.
bool versionOn(int codPlantilla, const QString& celda)
{
    const QChar letter = celda.isEmpty() ? QChar() : celda.at(0).toUpper();
    switch (codPlantilla) {
    case kHematologia: return letter == QLatin1Char('B') || letter == QLatin1Char('W');
    case kUroanalisis: return true;
    case kQuimica: return letter == QLatin1Char('B');
    default: return false;
    }
}

// The one save of every family: the old rows kept and deleted, the new ones
// written under sheet 1 without a format id, the log line. One transaction.
Saved replaceSheet(const Target& target, const QString& descripcion,
                   const QList<NewCell>& cells, std::int32_t version)
{
    if (descripcion.isEmpty())
        throw AppError(kNoReason);
    Transaction t;
    Saved saved;
    saved.version = version;
    // The number is taken under the store's write lock: two corrections at
    // once get two numbers.
    Recordset last;
    last.open(QStringLiteral("SELECT MAX(cod_cambio) AS ultimo FROM historialcambios"));
    saved.codCambio = toInt32(last.field(QStringLiteral("ultimo"))) + 1;

    // Every row of that sheet number goes, whatever its template, as the
    // correction has always taken them; each is kept first.
    saved.earlierCells = amb1().execute(
        QStringLiteral("INSERT INTO celdasanteriores (cod_cambio, Cod_Plantilla, NumFormato, celda, "
                       "valor, version, iduniversalformato) "
                       "SELECT CAST(? AS INTEGER), Cod_Plantilla, NumFormato, celda, valor, version, "
                       "iduniversalformato FROM resultados "
                       "WHERE num_factura = ? AND NumFormato = ? ORDER BY diferenciador"),
        {saved.codCambio, target.factura, target.numFormato});
    amb1().execute(QStringLiteral("DELETE FROM resultados WHERE num_factura = ? AND NumFormato = ?"),
                   {target.factura, target.numFormato});

    // The corrected sheet always comes back as sheet 1 of its invoice.
    saved.numFormato = 1;
    for (const NewCell& cell : cells) {
        QStringList cols = {QStringLiteral("num_factura"), QStringLiteral("Cod_Plantilla"),
                            QStringLiteral("celda"), QStringLiteral("NumFormato"),
                            QStringLiteral("valor")};
        QVariantList values = {target.factura, target.codPlantilla, cell.celda, saved.numFormato,
                               cell.valor};
        if (cell.withVersion) {
            cols << QStringLiteral("version");
            values << version;
        }
        amb1().insert(QStringLiteral("resultados"), cols, values);
    }

    amb1().insert(QStringLiteral("historialcambios"),
                  {QStringLiteral("usuario"), QStringLiteral("fecha"), QStringLiteral("Factura"),
                   QStringLiteral("plantilla"), QStringLiteral("descripcion"),
                   QStringLiteral("cod_cambio"), QStringLiteral("tecnico"),
                   QStringLiteral("momento"), QStringLiteral("NumFormato"),
                   QStringLiteral("Cod_Plantilla")},
                  {target.autorizo, QDate::currentDate(), target.factura, target.plantilla,
                   descripcion, saved.codCambio, target.tecnico, QDateTime::currentDateTime(),
                   target.numFormato, target.codPlantilla});
    t.commit();
    return saved;
}

}  // namespace

Saved saveGrid(const Target& target, const QString& descripcion,
               const QList<std::pair<QString, QString>>& cells, const QString& comment)
{
    if (descripcion.isEmpty())
        throw AppError(kNoReason);
    const int code = target.codPlantilla;
    std::int32_t version = latestVersion(code);
    if (version == 0)
        version = 1;
    QList<NewCell> rows;
    for (const auto& [celda, valor] : cells)
        rows.append({celda, valor, versionOn(code, celda)});
    rows.append({QStringLiteral("W"), comment, versionOn(code, QStringLiteral("W"))});
    return replaceSheet(target, descripcion, rows, version);
}

Saved saveParasitology(const Target& target, const QString& descripcion, const QStringList& fields)
{
    QList<NewCell> rows;
    for (int i = 0; i < fields.size() && i < 10; ++i)
        if (!fields.at(i).isEmpty())
            rows.append({QString::number(i + 1), fields.at(i), false});
    return replaceSheet(target, descripcion, rows, 0);
}

Saved saveBlank(const Target& target, const QString& descripcion, const QString& text)
{
    return replaceSheet(target, descripcion, {{QStringLiteral("1"), text, false}}, 0);
}

QList<Change> changesOfInvoice(std::int32_t factura)
{
    QList<Change> changes;
    QHash<std::int32_t, qsizetype> at;
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_cambio, Factura, NumFormato, Cod_Plantilla, plantilla, "
                           "usuario, tecnico, descripcion, momento, fecha FROM historialcambios "
                           "WHERE Factura = ? AND cod_cambio IS NOT NULL ORDER BY cod_cambio"),
            {factura});
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        Change c;
        c.codCambio = toInt32(rs.field(QStringLiteral("cod_cambio")));
        c.factura = toInt32(rs.field(QStringLiteral("Factura")));
        c.numFormatoAnterior = toInt32(rs.field(QStringLiteral("NumFormato")));
        c.codPlantilla = toInt32(rs.field(QStringLiteral("Cod_Plantilla")));
        c.plantilla = rs.text(QStringLiteral("plantilla"));
        c.autorizo = rs.text(QStringLiteral("usuario"));
        c.tecnico = rs.text(QStringLiteral("tecnico"));
        c.descripcion = rs.text(QStringLiteral("descripcion"));
        const QVariant when = rs.field(QStringLiteral("momento"));
        c.momento = when.isNull() ? QDateTime(rs.field(QStringLiteral("fecha")).toDate(), QTime())
                                  : when.toDateTime();
        at.insert(c.codCambio, changes.size());
        changes.append(c);
    }
    if (changes.isEmpty())
        return changes;
    rs.open(QStringLiteral("SELECT a.cod_cambio, a.Cod_Plantilla, a.celda, a.valor "
                           "FROM celdasanteriores a JOIN historialcambios h "
                           "ON h.cod_cambio = a.cod_cambio WHERE h.Factura = ? ORDER BY %1")
                .arg(QStringLiteral("a.") + dialect::rowIdentity(amb1().engine())),
            {factura});
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const auto found = at.constFind(toInt32(rs.field(QStringLiteral("cod_cambio"))));
        if (found == at.constEnd())
            continue;
        Change& c = changes[*found];
        c.before.append({rs.text(QStringLiteral("celda")), rs.text(QStringLiteral("valor"))});
        c.beforePlantillas.append(toInt32(rs.field(QStringLiteral("Cod_Plantilla"))));
    }
    return changes;
}

Versions versionsOf(std::int32_t factura, int codPlantilla)
{
    Versions v;
    QList<QHash<QString, QString>> columns;
    const auto addColumn = [&](const QList<sheets::StoredCell>& cells, const QList<int>& codes) {
        QHash<QString, QString> column;
        for (qsizetype i = 0; i < cells.size(); ++i) {
            if (!codes.isEmpty() && codes.value(i) != codPlantilla)
                continue;
            const QString& celda = cells.at(i).celda;
            if (!v.celdas.contains(celda))
                v.celdas << celda;
            column.insert(celda, cells.at(i).valor);
        }
        columns.append(column);
    };
    for (const Change& c : changesOfInvoice(factura)) {
        if (c.codPlantilla != codPlantilla)
            continue;
        v.changes.append(c);
        v.titles << QStringLiteral("Antes del cambio %1 (%2)")
                        .arg(v.changes.size())
                        .arg(c.momento.toString(QStringLiteral("dd/MM/yyyy hh:mm")));
        addColumn(c.before, c.beforePlantillas);
    }
    addColumn(sheets::readSheet(factura, 1, codPlantilla).cells, {});
    v.titles << QStringLiteral("Actual");
    for (const QString& celda : v.celdas) {
        QStringList values;
        QList<bool> changed;
        for (qsizetype c = 0; c < columns.size(); ++c) {
            values << columns.at(c).value(celda);
            changed << (c > 0 && columns.at(c).value(celda) != columns.at(c - 1).value(celda));
        }
        v.values << values;
        v.changed << changed;
    }
    return v;
}

}  // namespace tq::corrections
