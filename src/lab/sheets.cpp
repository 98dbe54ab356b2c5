#include "lab/sheets.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "lab/worktable.h"

#include <QHash>

namespace tq::sheets {

namespace {

// One band of a family's table: counters first..last go to row counter+shift.
struct Band {
    int first;
    int last;
    int shift;
    int nameCol;
    int valueCol;
    int normalCol;
};

const QList<Band>& bandsOf(int code)
{
    static const QList<Band> hematologia = {{0, 10, 1, 1, 2, 3}, {11, 21, -10, 4, 5, 6}};
    static const QList<Band> uroanalisis = {{0, 6, 1, 1, 2, -1},
                                            {7, 15, 2, 1, 2, -1},
                                            {16, 22, -15, 3, 4, -1},
                                            {23, 31, -14, 3, 4, -1}};
    static const QList<Band> quimica = {{0, 16, 1, 1, 2, 3}, {17, 33, -16, 4, 5, 6}};
    static const QList<Band> none;
    switch (code) {
    case kHematologia: return hematologia;
    case kUroanalisis: return uroanalisis;
    case kQuimica: return quimica;
    default: return none;
    }
}

GridShape makeShape(int code)
{
    GridShape s;
    switch (code) {
    case kHematologia:
        s.cols = 7;
        s.rows = 14;
        s.headers = {{0, 1, QStringLiteral("          Hematimetría")},
                     {0, 2, QStringLiteral("  Resultado")},
                     {0, 3, QStringLiteral("     Normal")},
                     {0, 4, QStringLiteral("        Leucograma")},
                     {0, 5, QStringLiteral("     Resultado")},
                     {0, 6, QStringLiteral("  Valor Normal")}};
        s.editableCols = {2, 5, 6};
        s.clearedOnClickCol = 2;
        s.savedCols = {2, 5};
        s.lastSavedRow = 11;
        break;
    case kUroanalisis:
        s.cols = 5;
        s.rows = 18;
        s.headers = {{0, 1, QStringLiteral("FISICO")},
                     {0, 2, QStringLiteral("    VALORES")},
                     {0, 3, QStringLiteral("    MICROSCOPIO")},
                     {0, 4, QStringLiteral("     VALORES")},
                     {8, 1, QStringLiteral("EXAMEN QUIMICO CUALITATIVO")},
                     {8, 2, QStringLiteral("     VALORES")},
                     {8, 3, QStringLiteral("   OTROS")},
                     {8, 4, QStringLiteral("     VALORES")}};
        s.secondHeaderRow = 8;
        s.editableCols = {2, 4, 5};
        s.savedCols = {2, 4};
        s.lastSavedRow = 17;
        break;
    case kQuimica:
        s.cols = 7;
        s.rows = 18;
        s.headers = {{0, 2, QStringLiteral("  R e p o r t e")},
                     {0, 3, QStringLiteral("     Normal")},
                     {0, 5, QStringLiteral("     R e p o r t e")},
                     {0, 6, QStringLiteral("  Normal")}};
        s.editableCols = {2, 3, 5, 6};
        s.savedCols = {2, 5};
        s.lastSavedRow = 17;
        break;
    default:
        break;
    }
    return s;
}

// A parameter as the sheet looks it up by its name: the first of that name,
// with its stored normal values in ascending population order.
struct NamedParameter {
    std::int32_t code = 0;
    QString unidad;
    QList<NormalRow> normals;
};

// "?, ?, ..." for n values.
QString placeholders(qsizetype n)
{
    QStringList marks;
    for (qsizetype i = 0; i < n; ++i)
        marks << QStringLiteral("?");
    return marks.join(QStringLiteral(", "));
}

// The parameters of a sheet in two reads, whatever their number: the
// catalogue rows of the names, then the normal values of those found.
QHash<QString, NamedParameter> parametersByName(const QStringList& names, bool withNormals)
{
    QHash<QString, NamedParameter> out;
    QVariantList wanted;
    for (const QString& name : names)
        if (name != kLineBreakParameter && !wanted.contains(name))
            wanted << name;
    if (wanted.isEmpty())
        return out;
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_parametro, parametro, unidad FROM parametros "
                           "WHERE parametro IN (%1) ORDER BY cod_parametro")
                .arg(placeholders(wanted.size())),
            wanted);
    QHash<std::int32_t, QString> nameOf;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const QString name = rs.text(QStringLiteral("parametro"));
        if (out.contains(name))
            continue;   // the first of that name
        NamedParameter p;
        p.code = toInt32(rs.field(QStringLiteral("cod_parametro")));
        p.unidad = rs.text(QStringLiteral("unidad"));
        out.insert(name, p);
        nameOf.insert(p.code, name);
    }
    if (!withNormals || nameOf.isEmpty())
        return out;
    QVariantList codes;
    for (auto it = nameOf.cbegin(); it != nameOf.cend(); ++it)
        codes << it.key();
    rs.open(QStringLiteral("SELECT cod_parametro, cod_sexo, valor_normal FROM valparametros "
                           "WHERE cod_parametro IN (%1) ORDER BY cod_parametro, cod_sexo")
                .arg(placeholders(codes.size())),
            codes);
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const QString name = nameOf.value(toInt32(rs.field(QStringLiteral("cod_parametro"))));
        out[name].normals.append({toInt16(rs.field(QStringLiteral("cod_sexo"))),
                                  rs.text(QStringLiteral("valor_normal"))});
    }
    return out;
}

// Inserts one cell of a sheet. The format id goes in only when there is one.
void insertCell(std::int32_t factura, std::int32_t numFormato, int code, const QString& celda,
                const QVariant& version, std::int32_t formatId, const QString& valor)
{
    QStringList cols = {QStringLiteral("num_factura"), QStringLiteral("Cod_Plantilla"),
                        QStringLiteral("celda"), QStringLiteral("NumFormato"),
                        QStringLiteral("valor")};
    QVariantList values = {factura, code, celda, numFormato, valor};
    if (version.isValid()) {
        cols << QStringLiteral("version");
        values << version;
    }
    if (formatId != 0) {
        cols << QStringLiteral("iduniversalformato");
        values << formatId;
    }
    amb1().insert(QStringLiteral("resultados"), cols, values);
}

SavedSheet beginSave(const SheetContext& context)
{
    SavedSheet saved;
    if (context.proposedFormatId > 0) {
        const TakenFormatId taken = takeFormatId(context.proposedFormatId);
        saved.formatId = taken.id;
        saved.formatIdMoved = taken.moved;
    }
    return saved;
}

// Every picked exam of `factura` (all of them when `factura` is 0) leaves the
// work table onto its invoice line. Each exam closes on its own invoice: the
// pair invoice/number is what finds a waiting exam.
void closePicked(SavedSheet& saved, const SheetContext& context, std::int32_t factura = 0)
{
    for (const PickedExam& pick : context.picks) {
        if (factura != 0 && pick.factura != factura)
            continue;
        if (cerrarExamen(pick.factura, pick.correlativo, saved.formatId, context.tecnico,
                         context.today))
            ++saved.closed;
    }
}

}  // namespace

bool isGridTemplate(int codPlantilla)
{
    return codPlantilla == kHematologia || codPlantilla == kUroanalisis
           || codPlantilla == kQuimica;
}

const GridShape& gridShape(int codPlantilla)
{
    static const GridShape shapes[] = {makeShape(0), makeShape(kHematologia),
                                       makeShape(kUroanalisis), makeShape(kQuimica)};
    return isGridTemplate(codPlantilla) ? shapes[codPlantilla - 1] : shapes[0];
}

std::optional<Place> placeOf(int codPlantilla, int counter)
{
    for (const Band& b : bandsOf(codPlantilla))
        if (counter >= b.first && counter <= b.last)
            return Place{counter + b.shift, b.nameCol, b.valueCol, b.normalCol};
    return std::nullopt;
}

QChar letterOfColumn(int codPlantilla, int col)
{
    if (!isGridTemplate(codPlantilla))
        return {};
    if (col == 2)
        return QLatin1Char('B');
    if (codPlantilla == kUroanalisis && col == 4)
        return QLatin1Char('D');
    if (codPlantilla != kUroanalisis && col == 5)
        return QLatin1Char('E');
    return {};
}

int columnOfLetter(int codPlantilla, QChar letter)
{
    const char l = letter.toUpper().toLatin1();
    switch (codPlantilla) {
    case kHematologia: return l == 'B' ? 2 : l == 'E' ? 5 : -1;
    case kUroanalisis: return l == 'B' ? 2 : l == 'D' ? 4 : l == 'E' ? 5 : -1;
    case kQuimica: return l == 'B' ? 2 : l == 'C' ? 3 : l == 'E' ? 5 : l == 'F' ? 6 : -1;
    default: return -1;
    }
}

QString sheetTitle(int codPlantilla)
{
    switch (codPlantilla) {
    case kHematologia: return QStringLiteral("HEMATOLOGIA");
    case kUroanalisis: return QStringLiteral("UROANALISIS");
    case kQuimica: return QStringLiteral("QUIMICA - CLINICA");
    case kParasitologia: return QStringLiteral("PARASITOLOGICO");
    default: return QStringLiteral("Resultados de Laboratorio");
    }
}

const QStringList& parasitologyCaptions()
{
    static const QStringList captions = {
        QStringLiteral("Color"),   QStringLiteral("Olor"),
        QStringLiteral("Consistencia"), QStringLiteral("Sangre Macroscópica"),
        QStringLiteral("Examen Wrigh"), QStringLiteral("Nota:"),
        QStringLiteral("Quistes"), QStringLiteral("Huevos"),
        QStringLiteral("Larvas"),  QStringLiteral("Otros:")};
    return captions;
}

QList<Cell> layOut(int codPlantilla, const QStringList& names, Normals normals, PatientClass who)
{
    QList<Cell> cells;
    const bool withNormals = normals != Normals::None && codPlantilla != kUroanalisis;
    int room = 0;
    while (placeOf(codPlantilla, room))
        ++room;
    const QHash<QString, NamedParameter> byName =
        parametersByName(names.mid(0, room), withNormals);
    for (int counter = 0; counter < names.size(); ++counter) {
        const std::optional<Place> place = placeOf(codPlantilla, counter);
        if (!place)
            break;   // past the family's room: stored, never shown
        const QString& name = names.at(counter);
        if (name == kLineBreakParameter)
            continue;
        const auto found = byName.constFind(name);
        if (found == byName.constEnd())
            continue;
        const NamedParameter& p = *found;
        cells.append({place->row, place->nameCol, name});
        if (codPlantilla == kUroanalisis) {
            if (normals != Normals::Reprint && !p.unidad.isEmpty())
                cells.append({place->row, place->valueCol, p.unidad});
        } else if (place->normalCol >= 0 && normals != Normals::None) {
            const QString normal =
                elegirValorNormal(p.normals, normals == Normals::Entry ? who : PatientClass{});
            if (!normal.isEmpty())
                cells.append({place->row, place->normalCol, normal});
        }
    }
    return cells;
}

QList<Cell> layOutVersion(int codPlantilla, std::int32_t version, Normals normals,
                          PatientClass who)
{
    QStringList names;
    for (const TemplateParameter& p : templateParameters(codPlantilla, version))
        names << p.parametro;
    return layOut(codPlantilla, names, normals, who);
}

namespace {

StoredSheet readRows(const QString& where, const QVariantList& binds)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT num_factura, NumFormato, Cod_Plantilla, celda, valor, version, "
                           "iduniversalformato FROM resultados WHERE %1 ORDER BY diferenciador")
                .arg(where),
            binds);
    StoredSheet sheet;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        if (sheet.cells.isEmpty()) {
            sheet.codPlantilla = toInt32(rs.field(QStringLiteral("Cod_Plantilla")));
            sheet.version = toInt32(rs.field(QStringLiteral("version")));
            sheet.factura = toInt32(rs.field(QStringLiteral("num_factura")));
            sheet.numFormato = toInt32(rs.field(QStringLiteral("NumFormato")));
            sheet.formatId = toInt32(rs.field(QStringLiteral("iduniversalformato")));
        }
        sheet.cells.append({rs.text(QStringLiteral("celda")), rs.text(QStringLiteral("valor"))});
    }
    return sheet;
}

}  // namespace

StoredSheet readSheetById(std::int32_t formatId)
{
    return readRows(QStringLiteral("iduniversalformato = ?"), {formatId});
}

StoredSheet readSheet(std::int32_t factura, std::int32_t numFormato, int codPlantilla)
{
    return readRows(QStringLiteral("num_factura = ? AND NumFormato = ? AND Cod_Plantilla = ?"),
                    {factura, numFormato, codPlantilla});
}

RebuiltGrid rebuildGrid(const StoredSheet& sheet)
{
    const int code = sheet.codPlantilla;
    RebuiltGrid out;
    if (!isGridTemplate(code))
        return out;
    out.cells = layOutVersion(code, sheet.version, Normals::Reprint);
    const GridShape& shape = gridShape(code);
    // The comment takes the header of the column the row before it went to
    // (the first column when it comes first); chemistry keeps its headers.
    int lastCol = 0;
    for (const StoredCell& cell : sheet.cells) {
        if (cell.celda.compare(QStringLiteral("W"), Qt::CaseInsensitive) == 0) {
            out.comment = cell.valor;
            if (code != kQuimica)
                out.cells.append({0, lastCol, cell.valor});
            continue;
        }
        if (cell.celda.isEmpty())
            continue;
        const int col = columnOfLetter(code, cell.celda.at(0));
        bool isRow = false;
        const int row = cell.celda.mid(1).toInt(&isRow);
        if (col < 0 || !isRow || row < 1 || row >= shape.rows)
            continue;   // no cell of this family: nothing to show
        lastCol = col;
        out.cells.append({row, col, cell.valor});
    }
    return out;
}

QStringList parasitologyFields(const StoredSheet& sheet)
{
    QStringList fields(10);
    for (const StoredCell& cell : sheet.cells) {
        bool isNumber = false;
        const int n = cell.celda.trimmed().toInt(&isNumber);
        if (isNumber && n >= 1 && n <= 10)
            fields[n - 1] = cell.valor;
    }
    return fields;
}

QString pageTextOf(const StoredSheet& sheet)
{
    return sheet.cells.isEmpty() ? QString() : sheet.cells.first().valor;
}

SavedSheet saveGridSheet(int codPlantilla, const QList<std::pair<QString, QString>>& cells,
                         const QString& comment, const SheetContext& context)
{
    Transaction t;
    SavedSheet saved = beginSave(context);
    std::int32_t version = latestVersion(codPlantilla);
    if (version == 0)
        version = 1;
    const std::int32_t num = nextNumFormato(context.factura);
    for (const auto& [celda, valor] : cells)
        insertCell(context.factura, num, codPlantilla, celda, version, saved.formatId, valor);
    insertCell(context.factura, num, codPlantilla, QStringLiteral("W"), version, saved.formatId,
               comment);
    saved.numFormatos << num;
    closePicked(saved, context);
    t.commit();
    return saved;
}

SavedSheet saveParasitology(const QStringList& fields, const SheetContext& context)
{
    Transaction t;
    SavedSheet saved = beginSave(context);
    const std::int32_t num = nextNumFormato(context.factura);
    for (int i = 0; i < fields.size() && i < 10; ++i)
        if (!fields.at(i).isEmpty())
            insertCell(context.factura, num, kParasitologia, QString::number(i + 1), {},
                       saved.formatId, fields.at(i));
    saved.numFormatos << num;
    closePicked(saved, context);
    t.commit();
    return saved;
}

SavedSheet saveBlankSheet(const QString& text, const SheetContext& context, int codPlantilla)
{
    Transaction t;
    SavedSheet saved = beginSave(context);
    for (std::int32_t factura : context.invoices) {
        const std::int32_t num = nextNumFormato(factura);
        insertCell(factura, num, codPlantilla, QStringLiteral("1"), {}, saved.formatId, text);
        saved.numFormatos << num;
        closePicked(saved, context, factura);
    }
    t.commit();
    return saved;
}

}  // namespace tq::sheets
