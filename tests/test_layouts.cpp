// The laboratory's report layouts: each report is declared with its command
// and its paper; every bound field and total names a column that its level of
// the command really has, on a store holding one of every kind of record; the
// heading band carries what the heading routine fills; and the texts that
// callers and users rely on stand where they belong.
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/layout.h"

#include <QDate>
#include <QSet>

using namespace tq;
using namespace tq::report;

namespace {

struct Declared {
    const char* report;
    const char* command;
    const char* paper;   // "ticket", "half", "letter"
};

const QList<Declared> kCatalogue = {
    {"DataReport1", "rsrfact1", "half"},
    {"DataReport2", "rsrcorte_Grouping", "letter"},
    {"DataReport3", "rsrexamenes", "letter"},
    {"DataReport4", "rsCommand5", "letter"},
    {"DataReport5", "rsCommand2", "letter"},
    {"DataReport6", "rsInsuProv_Grouping", "letter"},
    {"DataReport7", "rsRepCompras_Grouping", "letter"},
    {"DataReport8", "rsRepInsumos", "letter"},
    {"DataReport9", "rsRepcomp_Grouping", "letter"},
    {"DataReport10", "rsRepFacgan", "letter"},
    {"DataReport11", "rsRepClienteexamen_Grouping", "letter"},
    {"DataReport12", "rsRepAgotado", "letter"},
    {"DataReport13", "rsrfact1", "half"},
    {"DataReport14", "rsrexamenes", "letter"},
    {"DataReport15", "rsrfact1", "half"},
    {"DataReport16", "rstempo", "letter"},
    {"DataReport17", "rsrcuentas", "letter"},
    {"DataReport18", "rsrcpagadas", "letter"},
    {"DataReport19", "rstipoexamen", "letter"},
    {"DataReport20", "rsrfact1", "ticket"},
    {"DataReport21", "rsRepremitidos", "letter"},
    {"DataReport22", "rsrepcambios", "letter"},
    {"ReporVentasTarjeta", "rsrepventastarjeta_Grouping", "letter"},
    {"DataReport23", "rsfactanuladas", "letter"},
    {"reporOrden", "rsrorden", "letter"},
    {"ReporComision", "rscomision_Grouping", "letter"},
    {"DataReport24", "rscuentascliente_Grouping", "letter"},
};

QString q(const char* s) { return QString::fromUtf8(s); }

const Layout& layoutOf(const QString& name)
{
    const Layout* l = findLayout(name);
    if (!l)
        qFatal("no layout %s", qPrintable(name));
    return *l;
}

// Every item of a layout with the band it stands in, for the searches below.
struct Placed {
    const Item* item;
    QString band;   // "encabezado", "pageHeader", "level:<i>:header", ...
    int level;      // the level whose band it is; -1 outside the levels
};

QList<Placed> itemsOf(const Layout& l)
{
    QList<Placed> out;
    auto add = [&out](const Band& b, const QString& name, int level) {
        for (const Item& i : b.items)
            out << Placed{&i, name, level};
    };
    add(l.encabezado, QStringLiteral("encabezado"), -1);
    add(l.pageHeader, QStringLiteral("pageHeader"), -1);
    for (int i = 0; i < l.levels.size(); ++i) {
        add(l.levels.at(i).header, QStringLiteral("level:%1:header").arg(i), i);
        add(l.levels.at(i).footer, QStringLiteral("level:%1:footer").arg(i), i);
    }
    add(l.pageFooter, QStringLiteral("pageFooter"), -1);
    add(l.reportFooter, QStringLiteral("reportFooter"), -1);
    return out;
}

QStringList captionsOf(const Layout& l)
{
    QStringList out;
    for (const Placed& p : itemsOf(l))
        if (p.item->kind == Item::Kind::Caption)
            out << p.item->text;
    return out;
}

const Item* named(const Layout& l, const QString& name, QString* band = nullptr)
{
    for (const Placed& p : itemsOf(l))
        if (p.item->name == name) {
            if (band)
                *band = p.band;
            return p.item;
        }
    return nullptr;
}

// ---- a laboratory with one of every record the reports read

int add(const char* table, const QStringList& columns, const QVariantList& values)
{
    return amb1().insert(q(table), columns, values).toInt();
}

void fillLaboratory()
{
    const QDate day(2026, 11, 20);
    add("seguros", {"Cod_Seguro", "Empresa", "Contacto", "Tel", "Banco", "Cuenta"},
        {1, "Seguros Atlantida", "Marta Pineda", "2222-1111", "Banco del Pais", "01-223"});
    const int tipo = add("TipoExamen", {"tipo_examen"}, {"Hematologia"});
    const int hemo = add("Examenes", {"examen", "cod_tipo_examen", "precio", "valor"},
                         {"Hemograma", tipo, 150.0, 60.0});
    const int sent = add("Examenes", {"examen", "cod_tipo_examen", "precio", "valor"},
                         {"r.Cultivo de orina", tipo, 400.0, 250.0});
    const int ana = add("Pacientes", {"nombre_paciente", "apellido_paciente", "direccion_paciente",
                                      "sexo", "Cod_seguro"},
                        {"Ana", "O'Neil", "Col. Kennedy", "Femenino", 0});
    const int luis = add("Pacientes", {"nombre_paciente", "apellido_paciente", "Cod_seguro"},
                         {"Luis", "Zelaya", 1});
    const int doctor = add("Doctores", {"Nombre_doctor", "Apellido_doctor", "porsentaje"},
                           {"Carlos", "Reyes", 10});

    const QStringList invoiceColumns{"factura", "fecha", "cod_paciente", "faturado", "sub_total",
                                     "adicional", "valadicional", "total", "efectivo", "tarjeta",
                                     "Abono", "anulada", "motivo_anulacion", "fecha_anulacion",
                                     "Cod_doctor", "tipo_factura"};
    // A cash invoice with a doctor and a discount, a voided one, a card sale,
    // and an insurer's credit invoice.
    add("Factura", invoiceColumns, {1, day, ana, "admin", 300.0, "Descuento", 30.0, 270.0, 270.0,
                                    0.0, 270.0, false, QVariant(), QVariant(), doctor, "Contado"});
    add("Factura", invoiceColumns, {2, day, ana, "admin", 150.0, QVariant(), 0.0, 150.0, 150.0,
                                    0.0, 150.0, true, "1", day, QVariant(), "Contado"});
    add("Factura", invoiceColumns, {3, day.addDays(1), ana, "admin", 400.0, QVariant(), 0.0, 400.0,
                                    0.0, 400.0, 400.0, false, QVariant(), QVariant(), QVariant(),
                                    "Contado"});
    add("Factura", invoiceColumns, {4, day, luis, "admin", 150.0, QVariant(), 0.0, 150.0, 0.0,
                                    0.0, 0.0, false, QVariant(), QVariant(), QVariant(),
                                    "Credito"});
    const QStringList lineColumns{"factura", "cod_descripcionexamen", "cantidad", "subtotal"};
    add("FacturaDetalle", lineColumns, {1, hemo, 2, 300.0});
    add("FacturaDetalle", lineColumns, {2, hemo, 1, 150.0});
    add("FacturaDetalle", lineColumns, {3, sent, 1, 400.0});
    add("FacturaDetalle", lineColumns, {4, hemo, 1, 150.0});
    add("Datostarjeta", {"factura", "num_autorizacion", "num_tarjeta", "num_identidad"},
        {3, 55012, "Ana O'Neil", "0801-1990-01234"});
    add("cxc", {"factura", "Cod_paciente", "estado"}, {4, luis, false});
    add("cxc", {"factura", "Cod_paciente", "estado", "fecha_pago"}, {1, ana, true, day});

    add("orden", {"orden", "fecha", "cod_paciente", "faturado", "sub_total", "total", "adicional",
                  "valadicional"},
        {1, day, ana, "admin", 150.0, 165.0, "Recargo", 15.0});
    add("ordenDetalle", {"orden", "cod_descripcionexamen", "cantidad", "precio", "subtotal"},
        {1, hemo, 1, 150.0, 150.0});

    add("proveedor", {"prvcod", "prvnom", "prvref", "prvdir", "prvtel", "prvcor"},
        {1, "Droguería Central", "Pedro Cruz", "Tegucigalpa", "2233-4455", "ventas@central.hn"});
    add("Insumos", {"Cod_Item", "nombre_Item", "descripcion_Item", "precio_Item", "unidad",
                    "cminima", "stock"},
        {1, "Tubos lila", "Tubo con EDTA", 4.0, "caja", 10, 3});
    add("proveedoresinsumos", {"prvcod", "cod_item"}, {1, 1});
    add("compra", {"numcompra", "fecha", "prvcod", "total"}, {1, day, 1, 30.0});
    add("compradetalle", {"numcompra", "cod_item", "cantidad", "preciodecompra", "subtotal"},
        {1, 1, 10, 3.0, 30.0});

    add("Tempo", {"nombre", "edad", "sexo", "fecha"},
        {"Ana O'Neil", "34 años", "Femenino", "20/11/2026"});
    add("historialcambios", {"Factura", "plantilla", "usuario", "fecha", "descripcion"},
        {1, "HEMATOLOGIA", "admin", day,
         "El usuario modifico el formato de resultado por Error de Prueba"});
}

// The rows of a report's command as its caller opens them. Two reports read
// slots that their screens open with their own text.
Recordset& openedFor(const Layout& l)
{
    Recordset& rs = amb1().rs(l.command);
    if (rs.isOpen())
        rs.close();
    if (l.command == QLatin1String("rsRepAgotado"))
        rs.open(QStringLiteral("SELECT Insumos.Cod_Item, Insumos.nombre_Item, "
                               "Insumos.descripcion_Item, Insumos.precio_Item, Insumos.unidad, "
                               "Insumos.cminima, Insumos.stock FROM Insumos "
                               "WHERE cminima >= stock ORDER BY nombre_Item"));
    else if (l.command == QLatin1String("rsrepcambios"))
        rs.open(QStringLiteral("SELECT * FROM historialcambios WHERE fecha >= ? AND fecha <= ?"),
                {QDate(2026, 11, 1), QDate(2026, 11, 30)});
    else
        rs.open();
    rs.setFilter(QString());
    return rs;
}

// One recordset per level of the layout: the command's rows, then under the
// first row that has any, the child the next level names.
QList<Recordset> levelsOf(const Layout& l, Recordset& top)
{
    QList<Recordset> out{top};
    for (int i = 1; i < l.levels.size(); ++i) {
        Recordset& parent = out.last();
        Recordset found;
        bool any = false;
        for (parent.moveFirst(); !parent.eof() && !any; parent.moveNext()) {
            found = parent.child(l.levels.at(i).rows);
            any = found.recordCount() > 0;
        }
        if (!any)
            qFatal("%s: no row of level %d has rows under \"%s\"", qPrintable(l.name), i - 1,
                   qPrintable(l.levels.at(i).rows));
        parent.moveFirst();
        out << found;
    }
    return out;
}

bool isIsoDate(const QVariant& v)
{
    return v.typeId() == QMetaType::QDate || v.typeId() == QMetaType::QDateTime
           || QDate::fromString(v.toString().left(10), Qt::ISODate).isValid();
}

}  // namespace

class TestLayouts : public QObject {
    Q_OBJECT

private slots:
    void everyReportIsDeclaredWithItsCommandAndPaper();
    void fieldsAndTotalsNameColumnsOfTheirLevel();
    void theHeadingBandCarriesWhatTheHeadingRoutineFills();
    void textsThatCallersAndReadersRelyOn();
};

void TestLayouts::everyReportIsDeclaredWithItsCommandAndPaper()
{
    QStringList expected;
    for (const Declared& d : kCatalogue) {
        const QString name = q(d.report);
        expected << name;
        const Layout* l = findLayout(name);
        QVERIFY2(l, qPrintable(name));
        QCOMPARE(l->name, name);
        QCOMPARE(l->command, q(d.command));
        QVERIFY2(!l->title.isEmpty(), qPrintable(name));

        const QSizeF mm = l->page.size(QPageSize::Millimeter);
        const double across = l->orientation == QPageLayout::Landscape ? mm.height() : mm.width();
        const QString paper = q(d.paper);
        if (paper == QLatin1String("ticket")) {
            QCOMPARE(qRound(mm.width()), 80);
        } else if (paper == QLatin1String("half")) {
            QVERIFY2(qAbs(mm.width() - 139.7) < 0.1 && qAbs(mm.height() - 215.9) < 0.1,
                     qPrintable(name));
        } else {
            QCOMPARE(l->page.id(), QPageSize::Letter);
        }
        // Nothing stands beyond the paper's edge.
        for (const Placed& p : itemsOf(*l))
            QVERIFY2(p.item->box.x + p.item->box.w <= across - 2 * l->marginMm + 0.01,
                     qPrintable(name + QStringLiteral(": ") + p.item->text + QStringLiteral(" in ")
                                + p.band));
        // No two texts of a band print over each other.
        const QList<Placed> all = itemsOf(*l);
        for (int a = 0; a < all.size(); ++a)
            for (int b = a + 1; b < all.size(); ++b) {
                const Item& i = *all.at(a).item;
                const Item& j = *all.at(b).item;
                if (all.at(a).band != all.at(b).band || i.kind == Item::Kind::Line
                    || j.kind == Item::Kind::Line)
                    continue;
                const bool apart = i.box.x + i.box.w <= j.box.x + 0.01
                                   || j.box.x + j.box.w <= i.box.x + 0.01
                                   || i.box.y + i.box.h <= j.box.y + 0.01
                                   || j.box.y + j.box.h <= i.box.y + 0.01;
                QVERIFY2(apart, qPrintable(name + QStringLiteral(": ") + i.text
                                           + QStringLiteral(" over ") + j.text
                                           + QStringLiteral(" in ") + all.at(a).band));
            }
    }
    // No other report is declared under another name.
    QStringList declared = layoutNames();
    declared.sort();
    expected.sort();
    QCOMPARE(declared, expected);
}

void TestLayouts::fieldsAndTotalsNameColumnsOfTheirLevel()
{
    test::TempStore store;
    fillLaboratory();
    for (const Declared& d : kCatalogue) {
        const Layout& l = layoutOf(q(d.report));
        Recordset& top = openedFor(l);
        const QList<Recordset> levels = levelsOf(l, top);
        QVERIFY2(l.levels.isEmpty() || levels.first().recordCount() > 0, d.report);
        // The last level is the detail: it goes down to the command's deepest rows.
        if (!l.levels.isEmpty())
            QVERIFY2(levels.last().childNames().isEmpty(),
                     qPrintable(q(d.report) + QStringLiteral(" stops above ")
                                + levels.last().childNames().join(QLatin1Char(','))));

        auto levelIndex = [&](const QString& rows) {
            for (int i = 0; i < l.levels.size(); ++i)
                if (l.levels.at(i).rows == rows)
                    return i;
            return -1;
        };
        for (const Placed& p : itemsOf(l)) {
            const Item& item = *p.item;
            if (item.kind != Item::Kind::Field && item.kind != Item::Kind::Total)
                continue;
            const QString where = q(d.report) + QStringLiteral(" ") + p.band
                                  + QStringLiteral(": ") + item.text;
            int level = item.kind == Item::Kind::Total ? int(l.levels.size()) - 1
                                                       : std::max(p.level, 0);
            if (item.level)
                level = levelIndex(*item.level);
            QVERIFY2(level >= 0 && level < levels.size(), qPrintable(where));
            const Recordset& rows = levels.at(level);
            QVERIFY2(rows.hasField(item.text),
                     qPrintable(where + QStringLiteral(" not in ")
                                + rows.fieldNames().join(QLatin1Char(','))));

            // Totals close a group or the report: they stand in footers.
            if (item.kind == Item::Kind::Total)
                QVERIFY2(p.band.endsWith(QLatin1String("footer"))
                             || p.band == QLatin1String("reportFooter"),
                         qPrintable(where));
            // Dates are written as dates, amounts are numbers.
            const QVariant sample = rows.valueAt(0, item.text);
            if (!sample.isNull() && item.format != Format::Whole) {
                QVERIFY2(isIsoDate(sample) == (item.format == Format::Date),
                         qPrintable(where + QStringLiteral(" reads ") + sample.toString()));
            }
            if (item.format == Format::Money || (item.kind == Item::Kind::Total && !item.countRows)) {
                bool number = false;
                sample.toString().toDouble(&number);
                QVERIFY2(sample.isNull() || number, qPrintable(where));
            }
        }
        top.close();
    }
}

void TestLayouts::theHeadingBandCarriesWhatTheHeadingRoutineFills()
{
    for (const Declared& d : kCatalogue) {
        const Layout& l = layoutOf(q(d.report));
        QStringList names;
        for (const Item& i : l.encabezado.items) {
            if (i.name.isEmpty())
                continue;
            names << i.name;
            if (i.name == QLatin1String("logo")) {
                QCOMPARE(i.kind, Item::Kind::Picture);
                QCOMPARE(i.text, QStringLiteral("logo"));
            } else if (i.name != QLatin1String("fechaimpresion")) {
                QCOMPARE(i.kind, Item::Kind::Caption);
                QVERIFY2(!i.text.isEmpty(), qPrintable(i.name));
            }
        }
        QStringList expected{"logo", "laboratorio", "direccion", "rtn"};
        // The letterhead stops before the rtn.
        if (l.name == QLatin1String("DataReport19"))
            expected.removeLast();
        for (const QString& n : expected)
            QVERIFY2(names.count(n) == 1, qPrintable(l.name + QStringLiteral(": ") + n));
        QVERIFY2(names.contains(QStringLiteral("rtn")) == expected.contains(QStringLiteral("rtn")),
                 qPrintable(l.name));
        QVERIFY2(l.encabezado.height > 0, qPrintable(l.name));
    }
    // The letterhead is its heading and nothing else.
    const Layout& letterhead = layoutOf(QStringLiteral("DataReport19"));
    QVERIFY(letterhead.levels.isEmpty());
    QVERIFY(letterhead.pageHeader.items.isEmpty() && letterhead.reportFooter.items.isEmpty());
}

void TestLayouts::textsThatCallersAndReadersRelyOn()
{
    // The labels callers set, in the invoice's footer, right before the extra.
    for (const auto& [report, labelName] :
         {std::pair{"DataReport1", "Etiqueta14"}, std::pair{"DataReport20", "Etiqueta3"}}) {
        const Layout& l = layoutOf(q(report));
        QString band;
        const Item* label = named(l, q(labelName), &band);
        QVERIFY2(label && label->kind == Item::Kind::Caption, report);
        QCOMPARE(band, QStringLiteral("level:0:footer"));
        QCOMPARE(label->text, QStringLiteral("Otros"));
        bool extra = false;
        for (const Item& i : l.levels.first().footer.items)
            extra |= i.kind == Item::Kind::Field && i.text == QLatin1String("valadicional")
                     && qAbs(i.box.y - label->box.y) < 0.01;
        QVERIFY2(extra, report);
    }

    // Texts as the laboratory has always read them, odd spellings included.
    const QList<std::pair<const char*, QString>> texts = {
        {"DataReport1", "Facturado por:"},
        {"DataReport13", "Faturado por:"},
        {"DataReport15", "Facturado por:"},
        {"DataReport15", "FACTURA ANULADA"},
        {"DataReport2", "cheque"},
        {"DataReport2", "TOTAL GENERAL:"},
        {"DataReport7", "COREO ELECTRONICO"},
        {"DataReport14", "SELECCIONADO"},
        {"DataReport17", "DETALLE DE FACTURAS PENDIENTES"},
        {"DataReport18", "DETALLE DE FACTURAS PENDIENTES"},
        {"DataReport18", "TOTAL ADEUDADO"},
        {"DataReport20", "La factura es beneficio de todos EXIJALA!!!"},
        {"DataReport20", "0.00"},
        {"DataReport21", "Descipcion de Examen"},
        {"DataReport16", "PLT    150 - 500           PCT   0.10 - 1.00             MPV    5.0 - 11.0"
                         "         PDW  12.0 - 18.0"},
        {"ReporVentasTarjeta", "Porcentaje:"},
        {"ReporComision", "TOTAL COMISION:"},
        {"DataReport24", "TOTAL SEGURO"},
    };
    for (const auto& [report, text] : texts)
        QVERIFY2(captionsOf(layoutOf(q(report))).contains(text),
                 qPrintable(q(report) + QStringLiteral(": ") + text));
    for (const char* other : {"DataReport1", "DataReport13", "DataReport20"})
        QVERIFY2(!captionsOf(layoutOf(q(other))).contains(QStringLiteral("FACTURA ANULADA")),
                 other);
    QVERIFY(!captionsOf(layoutOf(QStringLiteral("DataReport13"))).contains(
        QStringLiteral("Facturado por:")));

    // The three fixed lines of normal values, whole, in their order.
    QStringList normals;
    for (const QString& c : captionsOf(layoutOf(QStringLiteral("DataReport16"))))
        if (c.startsWith(QLatin1String("WBC")) || c.startsWith(QLatin1String("RBC"))
            || c.startsWith(QLatin1String("PLT")))
            normals << c;
    QCOMPARE(normals.size(), 3);
    QCOMPARE(normals.at(1),
             QStringLiteral("RBC     3.80 - 5.80          Hgb     11.0 - 16.5                       "
                            "HCT     33.0 - 43.0              MCV    80.0 - 97.0    MCH    26.5 - "
                            "36.0    MCHC  31.0 - 35.0   RDW    11.5 - 16.5"));
}

QTEST_MAIN(TestLayouts)
#include "test_layouts.moc"
