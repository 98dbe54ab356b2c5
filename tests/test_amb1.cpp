// The data environment: the named commands, the walking idiom, bound values,
// Filter, the invoice with its lines and the report groups, transactions and
// a store that can't be opened.
#include "testsupport.h"

#include "foundation/amb1.h"
#include "foundation/errors.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QTemporaryDir>

using namespace tq;

namespace {

int addPatient(const QString& nombre, const QString& apellido)
{
    amb1().execute(QStringLiteral("INSERT INTO Pacientes (nombre_paciente, apellido_paciente, "
                                  "direccion_paciente, Cod_seguro) VALUES (?, ?, ?, 0)"),
                   {nombre, apellido, QStringLiteral("Col. Kennedy")});
    return amb1().lastInsertId().toInt();
}

int addExam(const QString& examen, double precio)
{
    amb1().execute(QStringLiteral("INSERT INTO Examenes (examen, cod_tipo_examen, precio, valor) "
                                  "VALUES (?, 1, ?, ?)"),
                   {examen, precio, precio / 2});
    return amb1().lastInsertId().toInt();
}

int addDoctor(const QString& nombre, const QString& apellido, double porsentaje)
{
    amb1().execute(QStringLiteral("INSERT INTO Doctores (Nombre_doctor, Apellido_doctor, "
                                  "porsentaje) VALUES (?, ?, ?)"),
                   {nombre, apellido, porsentaje});
    return amb1().lastInsertId().toInt();
}

struct Invoice {
    int factura;
    QDate fecha;
    int paciente;
    double total;
    bool anulada = false;
    QVariant doctor = QVariant();
    double abono = 0;
    bool pagadaDoc = false;
};

void addInvoice(const Invoice& f)
{
    amb1().execute(QStringLiteral("INSERT INTO Factura (factura, fecha, cod_paciente, faturado, "
                                  "sub_total, total, efectivo, Abono, anulada, Cod_doctor, "
                                  "pagada_doc, tipo_factura) "
                                  "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                   {f.factura, f.fecha, f.paciente, QStringLiteral("admin"), f.total, f.total,
                    f.total, f.abono, f.anulada, f.doctor, f.pagadaDoc,
                    QStringLiteral("Contado")});
}

void addLine(int factura, int exam, int cantidad, double subtotal)
{
    amb1().execute(QStringLiteral("INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, "
                                  "cantidad, subtotal) VALUES (?, ?, ?, ?)"),
                   {factura, exam, cantidad, subtotal});
}

// Every value of a column over the (filtered) rows, in order.
QStringList column(const Recordset& rs, const QString& name)
{
    QStringList out;
    for (int i = 0; i < rs.recordCount(); ++i)
        out << rs.valueAt(i, name).toString();
    return out;
}

template <typename Fn>
QString appErrorOf(Fn&& fn)
{
    try {
        fn();
    } catch (const AppError& e) {
        return e.message();
    }
    return QString();
}

}  // namespace

class TestAmb1 : public QObject {
    Q_OBJECT

private slots:
    void catalogueHoldsTheNamedCommandsInOrder();
    void everyStoredSourceOpensOnAnEmptyStore();
    void walkingIdiomAndBoundValues();
    void filterReadsDatesNumbersAndYesNo();
    void unreadableFilterIsRefused();
    void invoiceWithItsLines();
    void shapesRelateLooselyAndTakeTheirOwnValues();
    void cashCutGroupsByDateAndVoided();
    void commissionsGroupByDoctorAndDay();
    void transactionsRollBackWhatFailed();
    void storeThatCannotBeOpened();
    void largeResultsStayFast();
};

void TestAmb1::catalogueHoldsTheNamedCommandsInOrder()
{
    test::TempStore store;
    const QList<CommandDef>& cat = amb1().catalogue();
    QCOMPARE(cat.size(), 57);
    QCOMPARE(cat.first().name, QStringLiteral("rsempleado"));
    QCOMPARE(cat.at(6).name, QStringLiteral("rsrfact1"));
    QCOMPARE(cat.at(8).name, QStringLiteral("rsrcorte_Grouping"));
    QCOMPARE(cat.at(29).name, QStringLiteral("rsInsuProv_Grouping"));
    QCOMPARE(cat.at(53).name, QStringLiteral("rscomision_Grouping"));
    QCOMPARE(cat.last().name, QStringLiteral("rscuentascliente_Grouping"));

    QStringList names;
    for (const CommandDef& d : cat) {
        QVERIFY2(!names.contains(d.name, Qt::CaseInsensitive), qPrintable(d.name));
        names << d.name;
        QVERIFY2(!d.serves.isEmpty(), qPrintable(d.name));
        QCOMPARE(amb1().rs(d.name).command(), &d);
    }

    const CommandDef* tipo = amb1().rs(QStringLiteral("rstipoexamen")).command();
    QCOMPARE(tipo->kind, CommandKind::Table);
    QCOMPARE(tipo->text, QStringLiteral("TipoExamen"));
    QCOMPARE(amb1().rs(QStringLiteral("rsempleado")).command()->kind, CommandKind::Slot);
    QCOMPARE(amb1().rs(QStringLiteral("rsCommand5")).command()->kind, CommandKind::Query);
    QCOMPARE(amb1().rs(QStringLiteral("rsconcli")).command()->lock, LockType::ReadOnly);
    QCOMPARE(amb1().rs(QStringLiteral("rsInsuProv_Grouping")).command()->lock,
             LockType::Optimistic);

    const CommandDef* fact = amb1().rs(QStringLiteral("rsrfact1")).command();
    QCOMPARE(fact->kind, CommandKind::Shaped);
    QCOMPARE(fact->lock, LockType::ReadOnly);
    QCOMPARE(fact->shape->alias, QStringLiteral("rfact1"));
    QCOMPARE(fact->shape->relations.size(), 1);
    QCOMPARE(fact->shape->relations.first().name, QStringLiteral("Command1"));

    // Command2 holds Command3, which holds Command4.
    const Shape& c2 = *amb1().rs(QStringLiteral("rsCommand2")).command()->shape;
    QCOMPARE(c2.relations.first().name, QStringLiteral("Command3"));
    QCOMPARE(c2.relations.first().parentColumn, QStringLiteral("total"));
    QCOMPARE(c2.relations.first().child->relations.first().name, QStringLiteral("Command4"));

    const Shape& com = *amb1().rs(QStringLiteral("rscomision_Grouping")).command()->shape;
    QCOMPARE(com.alias, QStringLiteral("comision"));
    QCOMPARE(com.computeBy, (QStringList{"cod_doctor", "fecha", "nombre", "pagada_doc"}));

    // The name is found without regard to case; an unknown one is a clear error.
    QCOMPARE(&amb1().rs(QStringLiteral("RSFACTURA")), &amb1().rs(QStringLiteral("rsFactura")));
    QVERIFY(appErrorOf([] { amb1().rs(QStringLiteral("rsNoExiste")); })
                .contains(QStringLiteral("rsNoExiste")));
}

void TestAmb1::everyStoredSourceOpensOnAnEmptyStore()
{
    test::TempStore store;
    for (const CommandDef& d : amb1().catalogue()) {
        Recordset& rs = amb1().rs(d.name);
        if (d.kind == CommandKind::Slot) {
            QVERIFY2(!appErrorOf([&] { rs.open(); }).isEmpty(), qPrintable(d.name));
            QCOMPARE(rs.state(), 0);
            continue;
        }
        try {
            rs.open();
        } catch (const DbError& e) {
            QFAIL(qPrintable(d.name + QStringLiteral(": ") + e.detail() + QStringLiteral(" | ")
                             + e.sql()));
        }
        QVERIFY2(rs.isOpen(), qPrintable(d.name));
        QVERIFY2(!rs.fieldNames().isEmpty(), qPrintable(d.name));
    }
    // The first-start row of tarjeta, read through the table command.
    Recordset& tarjeta = amb1().rs(QStringLiteral("rstarjeta"));
    QCOMPARE(tarjeta.recordCount(), 1);
    QVERIFY(tarjeta.hasField(QStringLiteral("TARJETA")));
    // Insurers with no open accounts still stand, with empty children.
    Recordset& cuentas = amb1().rs(QStringLiteral("rsrcuentas"));
    QCOMPARE(cuentas.recordCount(), 1);
    QCOMPARE(cuentas.text(QStringLiteral("Empresa")), QStringLiteral("Sin Seguro"));
    QCOMPARE(cuentas.childNames(), QStringList{QStringLiteral("rcuentasdetalle")});
    const Recordset none = cuentas.child(QStringLiteral("rcuentasdetalle"));
    QVERIFY(none.eof() && none.bof());
}

void TestAmb1::walkingIdiomAndBoundValues()
{
    test::TempStore store;
    const int obrien = addPatient(QStringLiteral("Seán"), QStringLiteral("O'Brien"));
    addPatient(QStringLiteral("María"), QStringLiteral("López"));
    addPatient(QStringLiteral("Ana"), QStringLiteral("Zúniga"));
    QVERIFY(obrien > 0);

    Recordset& rs = amb1().rs(QStringLiteral("rsPacientes"));
    if (rs.state() == 1)
        rs.close();
    rs.open(QStringLiteral("SELECT cod_paciente, nombre_paciente, apellido_paciente FROM "
                           "Pacientes WHERE apellido_paciente = ?"),
            {QStringLiteral("O'Brien")});
    QCOMPARE(rs.recordCount(), 1);
    QCOMPARE(rs.field(QStringLiteral("COD_PACIENTE")).toInt(), obrien);
    QCOMPARE(rs.text(QStringLiteral("Nombre_Paciente")), QStringLiteral("Seán"));
    QVERIFY(appErrorOf([&] { rs.field(QStringLiteral("no_existe")); })
                .contains(QStringLiteral("no_existe")));

    // Walk to the end, then back.
    rs.open(QStringLiteral("SELECT apellido_paciente FROM Pacientes ORDER BY apellido_paciente"));
    QStringList walked;
    rs.moveFirst();
    while (!rs.eof()) {
        walked << rs.text(QStringLiteral("apellido_paciente"));
        rs.moveNext();
    }
    QCOMPARE(walked, (QStringList{"López", "O'Brien", "Zúniga"}));
    rs.moveNext();   // past the end stays at the end
    QVERIFY(rs.eof() && !rs.bof());
    QCOMPARE(rs.position(), -1);
    QVERIFY(appErrorOf([&] { rs.field(QStringLiteral("apellido_paciente")); })
                .startsWith(QStringLiteral("No hay un registro actual")));
    rs.movePrevious();
    QCOMPARE(rs.text(QStringLiteral("apellido_paciente")), QStringLiteral("Zúniga"));
    rs.moveFirst();
    rs.movePrevious();
    QVERIFY(rs.bof() && !rs.eof());
    rs.moveLast();
    QCOMPARE(rs.position(), 2);

    // Nothing found: at both ends at once.
    rs.open(QStringLiteral("SELECT * FROM Pacientes WHERE cod_paciente = ?"), {-5});
    QCOMPARE(rs.recordCount(), 0);
    QVERIFY(rs.eof() && rs.bof());

    // A delete through open leaves the slot closed; the next user reopens it.
    rs.open(QStringLiteral("DELETE FROM Pacientes WHERE apellido_paciente = ?"),
            {QStringLiteral("O'Brien")});
    QCOMPARE(rs.state(), 0);
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM Pacientes")).toInt(), 2);
    QVERIFY(!amb1().scalar(QStringLiteral("SELECT nombre_paciente FROM Pacientes WHERE "
                                          "cod_paciente = ?"),
                           {obrien})
                 .isValid());
    QCOMPARE(amb1().execute(QStringLiteral("UPDATE Pacientes SET correo = ? WHERE "
                                           "nombre_paciente <> ?"),
                            {QStringLiteral("x@y.hn"), QStringLiteral("nadie")}),
             2);

    // A copy keeps its own position and filter.
    rs.open(QStringLiteral("SELECT nombre_paciente FROM Pacientes ORDER BY nombre_paciente"));
    Recordset copy = rs;
    copy.setFilter(QStringLiteral("nombre_paciente = 'María'"));
    QCOMPARE(copy.recordCount(), 1);
    QCOMPARE(rs.recordCount(), 2);

    // A failing statement is a DbError with the driver's text and the SQL.
    try {
        rs.open(QStringLiteral("SELECT * FROM NoHayTabla WHERE x = ?"), {1});
        QFAIL("no error");
    } catch (const DbError& e) {
        QVERIFY(e.message().contains(QStringLiteral("base de datos")));
        QVERIFY(e.detail().contains(QStringLiteral("NoHayTabla")));
        QVERIFY(e.sql().contains(QStringLiteral("NoHayTabla")));
    }
}

void TestAmb1::filterReadsDatesNumbersAndYesNo()
{
    test::TempStore store;
    const int p = addPatient(QStringLiteral("Ana"), QStringLiteral("Reyes"));
    addInvoice({1, QDate(2026, 10, 31), p, 100});
    addInvoice({2, QDate(2026, 11, 1), p, 250.5, true});
    addInvoice({3, QDate(2026, 11, 22), p, 80});
    addInvoice({4, QDate(2026, 11, 30), p, 12.25});
    addInvoice({5, QDate(2026, 12, 1), p, 40});

    Recordset rs;
    rs.open(QStringLiteral("SELECT factura, fecha, total, anulada, faturado FROM Factura "
                           "ORDER BY factura"));
    QCOMPARE(rs.recordCount(), 5);

    struct Case {
        QString filter;
        QStringList facturas;
    };
    const QList<Case> cases = {
        {"fecha = 22/11/2026", {"3"}},
        {"fecha >= '01/11/2026' and fecha <= '30/11/2026'", {"2", "3", "4"}},
        {"fecha > #1/11/2026# AND fecha < 1/12/2026", {"3", "4"}},
        {"fecha >= '1/11/26' and fecha <= '30/11/26'", {"2", "3", "4"}},
        {"anulada =0 and fecha = 22/11/2026", {"3"}},
        {"anulada = true", {"2"}},
        {"anulada = -1", {"2"}},
        {"anulada=1", {"2"}},
        {"anulada = False AND total > 50", {"1", "3"}},
        {"total = 250.50", {"2"}},
        {"total <= 40 or factura = 1", {"1", "4", "5"}},
        {"(factura = 1 or factura = 5) and total < 50", {"5"}},
        {"factura <> 3 and factura<3", {"1", "2"}},
        {"faturado = 'admin' AND factura >= 5", {"5"}},
        {"faturado LIKE 'ad*'", {"1", "2", "3", "4", "5"}},
        {"faturado like '%MIN'", {"1", "2", "3", "4", "5"}},
        {"faturado like 'min*'", {}},
        {"Factura.factura = 4", {"4"}},
    };
    for (const Case& c : cases) {
        rs.setFilter(c.filter);
        QCOMPARE(rs.filter(), c.filter);
        QVERIFY2(column(rs, QStringLiteral("factura")) == c.facturas, qPrintable(c.filter));
        // The cursor stands on the first row that passes.
        QCOMPARE(rs.position(), c.facturas.isEmpty() ? -1 : 0);
        QCOMPARE(rs.eof(), c.facturas.isEmpty());
    }
    rs.setFilter(QString());
    QCOMPARE(rs.recordCount(), 5);

    // Text with a quote inside, and names in a column aliased by the query.
    const int q = addPatient(QStringLiteral("Seán"), QStringLiteral("O'Brien"));
    Recordset pac;
    pac.open(QStringLiteral("SELECT cod_paciente AS CODIGO, nombre_paciente AS NOMBRE, "
                            "apellido_paciente AS APELLIDO FROM Pacientes ORDER BY NOMBRE"));
    pac.setFilter(QStringLiteral("APELLIDO like '*o''b*'"));
    QCOMPARE(column(pac, QStringLiteral("CODIGO")), QStringList{QString::number(q)});
    pac.setFilter(QStringLiteral("codigo = '%1'").arg(p));
    QCOMPARE(column(pac, QStringLiteral("NOMBRE")), QStringList{QStringLiteral("Ana")});
}

void TestAmb1::unreadableFilterIsRefused()
{
    test::TempStore store;
    addInvoice({1, QDate(2026, 11, 22), 1, 10});
    Recordset rs;
    rs.open(QStringLiteral("SELECT factura, fecha FROM Factura"));
    rs.setFilter(QStringLiteral("factura = 1"));

    const QList<QPair<QString, QString>> bad = {
        {"fecha =", "falta el valor"},
        {"fecha = 31/02/2026", "la fecha «31/02/2026» no es válida"},
        {"factura 1", "se esperaba un operador"},
        {"nombre = 'x'", "la columna «nombre» no está"},
        {"factura = 'abc", "falta cerrar la comilla"},
        {"(factura = 1", "falta cerrar un paréntesis"},
        {"factura = 1 and", "falta una condición"},
        {"factura = Juan", "debe ir entre comillas"},
        {"factura = 1 factura", "sobra"},
    };
    for (const auto& [text, why] : bad) {
        const QString msg = appErrorOf([&] { rs.setFilter(text); });
        QVERIFY2(msg.startsWith(QStringLiteral("El filtro «%1» no se puede aplicar").arg(text)),
                 qPrintable(msg));
        QVERIFY2(msg.contains(why), qPrintable(msg));
        // The earlier filter stands.
        QCOMPARE(rs.filter(), QStringLiteral("factura = 1"));
        QCOMPARE(rs.recordCount(), 1);
    }

    // Filtering a closed recordset: clearing is harmless, narrowing is an error.
    Recordset closed;
    closed.setFilter(QString());
    QVERIFY(!appErrorOf([&] { closed.setFilter(QStringLiteral("factura = 1")); }).isEmpty());
}

void TestAmb1::invoiceWithItsLines()
{
    test::TempStore store;
    const int ana = addPatient(QStringLiteral("Ana"), QStringLiteral("O'Brien"));
    const int luis = addPatient(QStringLiteral("Luis"), QStringLiteral("Mejía"));
    const int hemo = addExam(QStringLiteral("Hemograma"), 150);
    const int orina = addExam(QStringLiteral("Examen General de Orina"), 60);
    const int gluc = addExam(QStringLiteral("Glucosa"), 45.5);
    addInvoice({101, QDate(2026, 11, 22), ana, 255.5, false, QVariant(), 100});
    addInvoice({102, QDate(2026, 11, 22), luis, 60});
    addLine(101, hemo, 1, 150);
    addLine(101, orina, 1, 60);
    addLine(102, orina, 1, 60);
    addLine(101, gluc, 1, 45.5);

    Recordset& rs = amb1().rs(QStringLiteral("rsrfact1"));
    rs.open();
    QCOMPARE(rs.recordCount(), 2);
    QCOMPARE(rs.childNames(), QStringList{QStringLiteral("Command1")});

    rs.setFilter(QStringLiteral("factura = 101"));
    QCOMPARE(rs.recordCount(), 1);
    QCOMPARE(rs.text(QStringLiteral("nombre")), QStringLiteral("Ana O'Brien"));
    QCOMPARE(rs.field(QStringLiteral("deuda")).toDouble(), 155.5);
    QCOMPARE(rs.text(QStringLiteral("direccion_paciente")), QStringLiteral("Col. Kennedy"));
    Recordset lines = rs.child(QStringLiteral("Command1"));
    QCOMPARE(lines.recordCount(), 3);
    QCOMPARE(column(lines, QStringLiteral("examen")),
             (QStringList{"Hemograma", "Examen General de Orina", "Glucosa"}));
    QCOMPARE(column(lines, QStringLiteral("EXPR2")), (QStringList{"101", "101", "101"}));
    double sum = 0;
    for (lines.moveFirst(); !lines.eof(); lines.moveNext())
        sum += lines.field(QStringLiteral("subtotal")).toDouble();
    QCOMPARE(sum, 255.5);

    rs.setFilter(QStringLiteral("factura=102"));
    QCOMPARE(column(rs.child(QStringLiteral("command1")), QStringLiteral("examen")),
             QStringList{QStringLiteral("Examen General de Orina")});

    // No current row, no children; an unknown child name is an error.
    rs.setFilter(QStringLiteral("factura = 999"));
    QVERIFY(appErrorOf([&] { rs.child(QStringLiteral("Command1")); })
                .startsWith(QStringLiteral("No hay un registro actual")));
    rs.setFilter(QString());
    QVERIFY(!appErrorOf([&] { rs.child(QStringLiteral("Command9")); }).isEmpty());

    // The totals listing: totals, the invoices of each total, their lines.
    Recordset& c2 = amb1().rs(QStringLiteral("rsCommand2"));
    c2.open();
    c2.setFilter(QStringLiteral("total = 255.5"));
    QCOMPARE(c2.recordCount(), 1);
    Recordset c3 = c2.child(QStringLiteral("Command3"));
    QCOMPARE(column(c3, QStringLiteral("factura")), QStringList{QStringLiteral("101")});
    QCOMPARE(c3.child(QStringLiteral("Command4")).recordCount(), 3);
}

void TestAmb1::shapesRelateLooselyAndTakeTheirOwnValues()
{
    test::TempStore store;
    const int ana = addPatient(QStringLiteral("Ana"), QStringLiteral("Reyes"));
    const int hemo = addExam(QStringLiteral("Hemograma"), 150);
    const int gluc = addExam(QStringLiteral("Glucosa"), 40);
    addInvoice({5, QDate(2026, 11, 22), ana, 190});
    addInvoice({6, QDate(2026, 11, 22), ana, 30});
    addInvoice({7, QDate(2026, 11, 22), ana, 80});
    addLine(5, hemo, 1, 150);
    addLine(5, gluc, 1, 40);
    addLine(7, gluc, 2, 80);
    addLine(7, hemo, 0, 5);

    // The invoice number as 5.0 above and as the text "5.00" below still relates;
    // each query takes its own bound values, the parent's first.
    auto lines = std::make_shared<Shape>();
    lines->alias = QStringLiteral("lineas");
    lines->sql = QStringLiteral("SELECT CAST(factura AS TEXT) || '.00' AS factura, subtotal, "
                                "cod_descripcionexamen FROM FacturaDetalle WHERE subtotal > ? "
                                "ORDER BY subtotal");
    Shape invoices;
    invoices.alias = QStringLiteral("facturas");
    invoices.sql = QStringLiteral("SELECT factura * 1.0 AS factura, total FROM Factura "
                                  "WHERE total >= ? ORDER BY factura");
    invoices.relations.append({QStringLiteral("lineas"), lines, QStringLiteral("factura"),
                               QStringLiteral("FACTURA")});
    Recordset rs;
    rs.openShape(invoices, {50, 10});
    QCOMPARE(rs.recordCount(), 2);
    QCOMPARE(column(rs.child(QStringLiteral("lineas")), QStringLiteral("subtotal")),
             (QStringList{"40", "150"}));
    rs.moveNext();
    QCOMPARE(column(rs.child(QStringLiteral("lineas")), QStringLiteral("subtotal")),
             QStringList{QStringLiteral("80")});

    // A filter on the children of one row leaves the parent alone.
    rs.moveFirst();
    Recordset some = rs.child(QStringLiteral("lineas"));
    some.setFilter(QStringLiteral("subtotal > 100"));
    QCOMPARE(some.recordCount(), 1);
    QCOMPARE(rs.child(QStringLiteral("lineas")).recordCount(), 2);

    // Exams, each with its lines grouped by invoice.
    auto byInvoice = std::make_shared<Shape>();
    byInvoice->alias = QStringLiteral("porFactura");
    byInvoice->sql = QStringLiteral("SELECT cod_descripcionexamen, factura, cantidad FROM "
                                    "FacturaDetalle ORDER BY factura");
    byInvoice->computeBy = {QStringLiteral("cod_descripcionexamen"), QStringLiteral("factura")};
    Shape exams;
    exams.alias = QStringLiteral("examenes");
    exams.sql = QStringLiteral("SELECT cod_descripcionexamen, examen FROM Examenes "
                               "ORDER BY examen");
    exams.relations.append({QStringLiteral("porFactura"), byInvoice,
                            QStringLiteral("cod_descripcionexamen"),
                            QStringLiteral("cod_descripcionexamen")});
    rs.openShape(exams);
    rs.setFilter(QStringLiteral("examen = 'Glucosa'"));
    Recordset groups = rs.child(QStringLiteral("porFactura"));
    QCOMPARE(column(groups, QStringLiteral("factura")), (QStringList{"5", "7"}));
    groups.moveLast();
    QCOMPARE(column(groups.child(QStringLiteral("porFactura")), QStringLiteral("cantidad")),
             QStringList{QStringLiteral("2")});

    // A relation on a column the query doesn't return is refused.
    Shape wrong = invoices;
    wrong.relations.first().childColumn = QStringLiteral("no_existe");
    QVERIFY(appErrorOf([&] { rs.openShape(wrong, {0, 0}); }).contains(QStringLiteral("no_existe")));
}

void TestAmb1::cashCutGroupsByDateAndVoided()
{
    test::TempStore store;
    const int ana = addPatient(QStringLiteral("Ana"), QStringLiteral("Reyes"));
    const int luis = addPatient(QStringLiteral("Luis"), QStringLiteral("Mejía"));
    addInvoice({1, QDate(2026, 11, 21), ana, 100});
    addInvoice({2, QDate(2026, 11, 22), luis, 200});
    addInvoice({3, QDate(2026, 11, 22), ana, 300, true});
    addInvoice({4, QDate(2026, 11, 22), ana, 50});
    addInvoice({5, QDate(2026, 11, 23), luis, 70});

    Recordset& rs = amb1().rs(QStringLiteral("rsrcorte_Grouping"));
    rs.open();
    QCOMPARE(rs.fieldNames(), (QStringList{"fecha", "anulada"}));
    QCOMPARE(rs.childNames(), QStringList{QStringLiteral("rcorte")});
    // Groups in the order of the query: by date, then voided or not.
    QCOMPARE(rs.recordCount(), 4);

    rs.setFilter(QStringLiteral("anulada =0 and fecha = 22/11/2026"));
    QCOMPARE(rs.recordCount(), 1);
    Recordset day = rs.child(QStringLiteral("rcorte"));
    QCOMPARE(column(day, QStringLiteral("factura")), (QStringList{"2", "4"}));
    QCOMPARE(column(day, QStringLiteral("nombre")), (QStringList{"Luis Mejía", "Ana Reyes"}));
    double total = 0;
    for (int i = 0; i < day.recordCount(); ++i)
        total += day.valueAt(i, QStringLiteral("efectivo")).toDouble();
    QCOMPARE(total, 250.0);

    // A range of days, voided left out.
    rs.setFilter(QStringLiteral("anulada =0 and fecha >= '21/11/2026' and fecha <= '22/11/2026'"));
    QCOMPARE(rs.recordCount(), 2);
    QStringList inRange;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        inRange << column(rs.child(QStringLiteral("rcorte")), QStringLiteral("factura"));
    QCOMPARE(inRange, (QStringList{"1", "2", "4"}));

    rs.setFilter(QStringLiteral("anulada = true"));
    QCOMPARE(column(rs.child(QStringLiteral("rcorte")), QStringLiteral("factura")),
             QStringList{QStringLiteral("3")});
}

void TestAmb1::commissionsGroupByDoctorAndDay()
{
    test::TempStore store;
    const int ana = addPatient(QStringLiteral("Ana"), QStringLiteral("Reyes"));
    const int soto = addDoctor(QStringLiteral("Carlos"), QStringLiteral("Soto"), 10);
    const int paz = addDoctor(QStringLiteral("Elena"), QStringLiteral("Paz"), 15);
    addInvoice({1, QDate(2026, 11, 22), ana, 200, false, soto});
    addInvoice({2, QDate(2026, 11, 22), ana, 300, false, soto});
    addInvoice({3, QDate(2026, 11, 23), ana, 150, false, soto, 0, true});
    addInvoice({4, QDate(2026, 11, 22), ana, 80, false, paz});
    addInvoice({5, QDate(2026, 11, 22), ana, 999});                // no doctor
    addInvoice({6, QDate(2026, 11, 22), ana, 500, true, soto});    // voided

    Recordset& rs = amb1().rs(QStringLiteral("rscomision_Grouping"));
    rs.open();
    QCOMPARE(rs.fieldNames(), (QStringList{"cod_doctor", "fecha", "nombre", "pagada_doc"}));
    QCOMPARE(rs.recordCount(), 3);

    QStringList every;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        every << column(rs.child(QStringLiteral("comision")), QStringLiteral("factura"));
    every.sort();
    QCOMPARE(every, (QStringList{"1", "2", "3", "4"}));

    rs.setFilter(QStringLiteral("pagada_doc = 0 and cod_doctor = %1 and fecha >= '22/11/2026' "
                                "and fecha <= '23/11/2026'")
                     .arg(soto));
    QCOMPARE(rs.recordCount(), 1);
    QCOMPARE(rs.text(QStringLiteral("nombre")), QStringLiteral("Carlos Soto"));
    Recordset day = rs.child(QStringLiteral("comision"));
    QCOMPARE(column(day, QStringLiteral("factura")), (QStringList{"1", "2"}));
    QCOMPARE(day.valueAt(0, QStringLiteral("comi")).toDouble(), 20.0);
    QCOMPARE(day.valueAt(1, QStringLiteral("comi")).toDouble(), 30.0);
    QCOMPARE(day.valueAt(1, QStringLiteral("nombrepac")).toString(), QStringLiteral("Ana Reyes"));

    rs.setFilter(QStringLiteral("pagada_doc = 1 and cod_doctor = %1").arg(soto));
    QCOMPARE(column(rs.child(QStringLiteral("comision")), QStringLiteral("comi")),
             QStringList{QStringLiteral("15")});

    rs.setFilter(QStringLiteral("cod_doctor = %1").arg(paz));
    QCOMPARE(rs.child(QStringLiteral("comision")).valueAt(0, QStringLiteral("comi")).toDouble(),
             12.0);
}

void TestAmb1::transactionsRollBackWhatFailed()
{
    test::TempStore store;
    test::ScriptedPrompts prompts;
    auto count = [] {
        return amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM TipoExamen")).toInt();
    };
    const QString insert = QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)");

    {
        Transaction t;
        amb1().execute(insert, {QStringLiteral("Hematologia")});
        t.commit();
    }
    QCOMPARE(count(), 1);
    QVERIFY(!amb1().inTransaction());

    // A failure halfway leaves nothing of the save.
    const bool ok = guarded(QStringLiteral("guardar el tipo de examen"), [&] {
        Transaction t;
        amb1().execute(insert, {QStringLiteral("Quimica")});
        amb1().execute(QStringLiteral("INSERT INTO NoHayTabla VALUES (?)"), {1});
        t.commit();
    });
    QVERIFY(!ok);
    QVERIFY(prompts.lastMessage().startsWith(
        QStringLiteral("No se pudo guardar el tipo de examen.")));
    QCOMPARE(count(), 1);
    QVERIFY(!amb1().inTransaction());

    // An inner save that fails undoes its own rows; the outer one goes on.
    {
        Transaction outer;
        amb1().execute(insert, {QStringLiteral("Uroanalisis")});
        try {
            Transaction inner;
            amb1().execute(insert, {QStringLiteral("Parasitologia")});
            throw AppError(QStringLiteral("rechazado"));
        } catch (const AppError&) {
        }
        QVERIFY(amb1().inTransaction());
        outer.commit();
    }
    QCOMPARE(count(), 2);

    // The error boundary's roll-back of a save left open.
    amb1().begin();
    amb1().execute(insert, {QStringLiteral("Serologia")});
    rollbackOpenTransaction();
    QVERIFY(!amb1().inTransaction());
    QCOMPARE(count(), 2);
    QVERIFY(!appErrorOf([] { amb1().commit(); }).isEmpty());
}

void TestAmb1::storeThatCannotBeOpened()
{
    QTemporaryDir dir;
    // A file stands where the folder should be.
    const QString blocker = QDir(dir.path()).filePath(QStringLiteral("ocupado"));
    {
        QFile f(blocker);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("x");
    }
    try {
        amb1().openStore(blocker + QStringLiteral("/datos/lab.db"));
        QFAIL("opened");
    } catch (const DbError& e) {
        QVERIFY2(e.message().startsWith(QStringLiteral("No se pudo abrir la base de datos")),
                 qPrintable(e.message()));
    }
    QVERIFY(!amb1().isOpen());

    // A file that isn't a store.
    const QString junk = QDir(dir.path()).filePath(QStringLiteral("lab.db"));
    {
        QFile f(junk);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(4096, 'z'));
    }
    try {
        amb1().openStore(junk);
        QFAIL("opened");
    } catch (const DbError& e) {
        QVERIFY2(e.message().startsWith(QStringLiteral("No se pudo abrir la base de datos")),
                 qPrintable(e.message()));
    }
    QVERIFY(!amb1().isOpen());
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("Connection1")));
    QVERIFY(!appErrorOf([] { amb1().scalar(QStringLiteral("SELECT 1")); }).isEmpty());

    // A missing folder is made, and a new store gets its first-start rows;
    // opening it again keeps what it holds.
    const QString fresh = QDir(dir.path()).filePath(QStringLiteral("nueva/carpeta/lab.db"));
    amb1().openStore(fresh);
    QVERIFY(amb1().isOpen());
    QCOMPARE(amb1().storeFile(), QFileInfo(fresh).absoluteFilePath());
    QCOMPARE(amb1().connection().connectionName(), QStringLiteral("Connection1"));
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT Empresa FROM seguros WHERE Cod_Seguro = 0"))
                 .toString(),
             QStringLiteral("Sin Seguro"));
    amb1().execute(QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)"),
                   {QStringLiteral("Hormonas")});
    amb1().rs(QStringLiteral("rstipoexamen")).open();
    amb1().closeStore();
    QCOMPARE(amb1().rs(QStringLiteral("rstipoexamen")).state(), 0);
    amb1().openStore(fresh);
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM seguros")).toInt(), 1);
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM TipoExamen")).toInt(), 1);
    amb1().closeStore();
}

void TestAmb1::largeResultsStayFast()
{
    test::TempStore store;
    // 20,000 invoices with five lines each, written by the store itself.
    amb1().execute(QStringLiteral("INSERT INTO Pacientes (nombre_paciente, apellido_paciente, "
                                  "Cod_seguro) VALUES ('Ana', 'Reyes', 0)"));
    addExam(QStringLiteral("Hemograma"), 150);
    {
        Transaction t;
        amb1().execute(QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
            "INSERT INTO Factura (factura, fecha, cod_paciente, total, Abono, anulada) "
            "SELECT i, date('2026-01-01', '+' || (i % 300) || ' days'), 1, i, 0, i % 7 = 0 "
            "FROM n"));
        amb1().execute(QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 99999) "
            "INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad, subtotal) "
            "SELECT i / 5 + 1, 1, 1, i FROM n"));
        t.commit();
    }

    QElapsedTimer clock;
    clock.start();
    Recordset lines;
    lines.open(QStringLiteral("SELECT * FROM FacturaDetalle"));
    const qint64 openMs = clock.restart();
    QCOMPARE(lines.recordCount(), 100000);
    lines.setFilter(QStringLiteral("factura >= 19000 and subtotal < 99990"));
    const qint64 filterMs = clock.restart();
    QCOMPARE(lines.recordCount(), 4995);

    Recordset& fact = amb1().rs(QStringLiteral("rsrfact1"));
    fact.open();
    const qint64 shapeMs = clock.restart();
    fact.setFilter(QStringLiteral("factura = 12345"));
    QCOMPARE(fact.child(QStringLiteral("Command1")).recordCount(), 5);
    const qint64 childMs = clock.restart();

    Recordset& cut = amb1().rs(QStringLiteral("rsrcorte_Grouping"));
    cut.open();
    cut.setFilter(QStringLiteral("anulada = 0 and fecha = 15/01/2026"));
    QCOMPARE(cut.recordCount(), 1);
    const int perDay = cut.child(QStringLiteral("rcorte")).recordCount();
    QVERIFY(perDay > 50 && perDay < 70);
    const qint64 groupMs = clock.restart();

    qInfo("100000 rows: open %lld ms, filter %lld ms; rsrfact1 with 100000 lines: open %lld ms, "
          "filter and child %lld ms; rsrcorte_Grouping of 20000 invoices: %lld ms",
          openMs, filterMs, shapeMs, childMs, groupMs);
    QVERIFY(openMs + filterMs < 10000);
    QVERIFY(shapeMs + childMs < 15000);
    QVERIFY(groupMs < 10000);
}

QTEST_MAIN(TestAmb1)
#include "test_amb1.moc"
