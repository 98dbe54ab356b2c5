// The laboratory's report layouts: each report is declared with its command
// and its paper; every bound field and total names a column that its level of
// the command really has, on a store holding one of every kind of record; the
// heading band carries what the heading routine fills; and the texts that
// callers and users rely on stand where they belong.
#include "report_fixture.h"

#include "foundation/reports/layout.h"

#include <QDate>

using namespace tq;
using namespace tq::report;
using namespace tq::test;

namespace {

// Every report of the program and the command it reads.
const QMap<QString, QString> kCommands = {
    {"DataReport1", "rsrfact1"}, {"DataReport2", "rsrcorte_Grouping"},
    {"DataReport3", "rsrexamenes"}, {"DataReport4", "rsCommand5"}, {"DataReport5", "rsCommand2"},
    {"DataReport6", "rsInsuProv_Grouping"}, {"DataReport7", "rsRepCompras_Grouping"},
    {"DataReport8", "rsRepInsumos"}, {"DataReport9", "rsRepcomp_Grouping"},
    {"DataReport10", "rsRepFacgan"}, {"DataReport11", "rsRepClienteexamen_Grouping"},
    {"DataReport12", "rsRepAgotado"}, {"DataReport13", "rsrfact1"},
    {"DataReport14", "rsrexamenes"}, {"DataReport15", "rsrfact1"}, {"DataReport16", "rstempo"},
    {"DataReport17", "rsrcuentas"}, {"DataReport18", "rsrcpagadas"},
    {"DataReport19", "rstipoexamen"}, {"DataReport20", "rsrfact1"},
    {"DataReport21", "rsRepremitidos"}, {"DataReport22", "rsrepcambios"},
    {"DataReport23", "rsfactanuladas"}, {"DataReport24", "rscuentascliente_Grouping"},
    {"ReporVentasTarjeta", "rsrepventastarjeta_Grouping"}, {"reporOrden", "rsrorden"},
    {"ReporComision", "rscomision_Grouping"},
};
// The invoices print on half a letter sheet and the ticket (DataReport20) on
// the 80 mm roll; every other report on a letter sheet.
const QStringList kHalfLetter = {"DataReport1", "DataReport13", "DataReport15"};

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

// ---- a laboratory with one of every record the reports read

int add(const QString& table, const QStringList& columns, const QVariantList& values)
{
    return amb1().insert(table, columns, values).toInt();
}

void fillStore()
{
    const QDate day(2026, 11, 20);
    add("seguros", {"Cod_Seguro", "Empresa", "Contacto", "Tel", "Banco", "Cuenta"},
        {1, "Seguros Atlantida", "Marta Pineda", "2222-1111", "Banco del Pais", "01-223"});
    const int tipo = fillLaboratory();
    const int hemo = addExam(tipo, "Hemograma", 150, 60);
    const int sent = addExam(tipo, "r.Cultivo de orina", 400, 250);
    const int ana = addPatient("Ana", "O'Neil");
    const int luis = addPatient("Luis", "Zelaya", 1);
    const int doctor = add("Doctores", {"Nombre_doctor", "Apellido_doctor", "porsentaje"},
                           {"Carlos", "Reyes", 10});
    // A cash invoice with a doctor and a discount, a voided one, a card sale,
    // and an insurer's credit invoice.
    addInvoice(1, day, ana, {{hemo, 2}}, {}, false, "Descuento", 30);
    addInvoice(2, day, ana, {{hemo, 1}}, {}, true);
    addInvoice(3, day.addDays(1), ana, {{sent, 1}}, {0, 400});
    addInvoice(4, day, luis, {{hemo, 1}}, {0}, false, {}, 0, 0);
    amb1().execute("UPDATE Factura SET Cod_doctor = ? WHERE factura = 1", {doctor});
    amb1().execute("UPDATE Factura SET motivo_anulacion = '1', fecha_anulacion = ? WHERE factura = 2",
                   {day});
    amb1().execute("UPDATE Factura SET tipo_factura = 'Credito' WHERE factura = 4");
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
    void everyReportIsDeclaredWithItsCommandAndPaper()
    {
        for (const auto& [name, command] : kCommands.asKeyValueRange()) {
            const Layout* l = findLayout(name);
            QVERIFY2(l, qPrintable(name));
            QCOMPARE(l->command, command);
            QVERIFY2(!l->title.isEmpty(), qPrintable(name));

            const QSizeF mm = l->page.size(QPageSize::Millimeter);
            const double across = l->orientation == QPageLayout::Landscape ? mm.height() : mm.width();
            if (name == QLatin1String("DataReport20"))
                QCOMPARE(qRound(mm.width()), 80);
            else if (kHalfLetter.contains(name))
                QVERIFY2(qAbs(mm.width() - 139.7) < 0.1 && qAbs(mm.height() - 215.9) < 0.1,
                         qPrintable(name));
            else
                QCOMPARE(l->page.id(), QPageSize::Letter);

            // The heading band holds, once each, what the heading routine fills:
            // the logo as a picture, the laboratory's lines as captions; the
            // letterhead stops before the rtn.
            QStringList heading;
            for (const Item& i : l->encabezado.items)
                if (i.kind == Item::Kind::Picture)
                    heading << i.name + "/" + i.text;
                else if (i.kind == Item::Kind::Caption && !i.name.isEmpty() && !i.text.isEmpty())
                    heading << i.name;
            heading.sort();
            QStringList expected{"direccion", "laboratorio", "logo/logo", "rtn"};
            if (name == QLatin1String("DataReport19"))
                expected.removeLast();
            QCOMPARE(heading, expected);

            // Nothing stands beyond the paper's edge, and no two texts of a
            // band print over each other.
            const QList<Placed> all = itemsOf(*l);
            for (int a = 0; a < all.size(); ++a) {
                const Item& i = *all.at(a).item;
                const QString where = name + ": " + i.text + " in " + all.at(a).band;
                QVERIFY2(i.box.x + i.box.w <= across - 2 * l->marginMm + 0.01, qPrintable(where));
                for (int b = a + 1; b < all.size(); ++b) {
                    const Item& j = *all.at(b).item;
                    if (all.at(a).band != all.at(b).band || i.kind == Item::Kind::Line
                        || j.kind == Item::Kind::Line)
                        continue;
                    const bool apart = i.box.x + i.box.w <= j.box.x + 0.01
                                       || j.box.x + j.box.w <= i.box.x + 0.01
                                       || i.box.y + i.box.h <= j.box.y + 0.01
                                       || j.box.y + j.box.h <= i.box.y + 0.01;
                    QVERIFY2(apart, qPrintable(where + " under " + j.text));
                }
            }
        }
        // No other report is declared under another name.
        QStringList declared = layoutNames();
        declared.sort();
        QStringList reports = kCommands.keys();
        reports.sort();
        QCOMPARE(declared, reports);
    }

    void fieldsAndTotalsNameColumnsOfTheirLevel()
    {
        TempStore store;
        fillStore();
        for (const QString& name : kCommands.keys()) {
            const Layout& l = layoutOf(name);
            Recordset& top = openedFor(l);
            const QList<Recordset> levels = levelsOf(l, top);
            QVERIFY2(l.levels.isEmpty() || levels.first().recordCount() > 0, qPrintable(name));
            // The last level is the detail: it goes down to the command's deepest rows.
            if (!l.levels.isEmpty())
                QVERIFY2(levels.last().childNames().isEmpty(),
                         qPrintable(name + QStringLiteral(" stops above ")
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
                const QString where = name + QStringLiteral(" ") + p.band
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

    void textsThatCallersAndReadersRelyOn()
    {
        // Texts as the laboratory has always read them, odd spellings included.
        const QList<std::pair<QString, QString>> texts = {
            {"DataReport15", "Facturado por:"},
            {"DataReport2", "cheque"},
            {"DataReport7", "COREO ELECTRONICO"},
            {"DataReport14", "SELECCIONADO"},
            {"DataReport17", "DETALLE DE FACTURAS PENDIENTES"},
            {"DataReport21", "Descipcion de Examen"},
            // The fixed lines of normal values, whole.
            {"DataReport16", "RBC     3.80 - 5.80          Hgb     11.0 - 16.5                       "
                             "HCT     33.0 - 43.0              MCV    80.0 - 97.0    MCH    26.5 - "
                             "36.0    MCHC  31.0 - 35.0   RDW    11.5 - 16.5"},
            {"DataReport16", "PLT    150 - 500           PCT   0.10 - 1.00             MPV    5.0 - 11.0"
                             "         PDW  12.0 - 18.0"},
            {"DataReport24", "TOTAL SEGURO"},
        };
        for (const auto& [report, text] : texts)
            QVERIFY2(captionsOf(layoutOf(report)).contains(text), qPrintable(report + ": " + text));
        for (const char* other : {"DataReport1", "DataReport13", "DataReport20"})
            QVERIFY2(!captionsOf(layoutOf(other)).contains(QStringLiteral("FACTURA ANULADA")), other);
        QVERIFY(!captionsOf(layoutOf(QStringLiteral("DataReport13"))).contains(
            QStringLiteral("Facturado por:")));
    }
};

QTEST_MAIN(TestLayouts)
#include "test_layouts.moc"
