// Insurer payments (Fpagarfacturas): the insurer's open invoices, the list to
// settle with its running total, and the settlement, whole or not at all.
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "accounts/receivables/settlement.h"
#include "billing/invoice/invoicesave.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"

#include <QDateEdit>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

const QDate kDay(2026, 2, 14);

int g_exam = 0;

void bill(int numero, int patient, const QString& total, Settlement how = Settlement::Insurer)
{
    PricedDocument doc;
    doc.numero = numero;
    doc.fecha = kDay;
    doc.faturado = "caja";
    doc.codPaciente = patient;
    doc.subtotal = doc.total = total;
    doc.lines << PricedLine{1, g_exam, total, total};
    Payment paid;
    paid.efectivo = how == Settlement::Paid ? Val(total) : 0;
    saveInvoice(doc, how, paid, how == Settlement::Insurer, nullptr);
}

// Insurer 1 owes 3, 7 and 12 (saved in another order); 12 was billed while
// its patient was with insurer 2. Invoice 5 was paid at the desk and 9 was
// settled already. Insurer 3 owes nothing.
void fillLab()
{
    addInsurer(1, "Seguros Atlántida");
    addInsurer(2, "Pan American Life");
    addInsurer(3, "Mapfre");
    g_exam = addExam(addExamType("Química"), "Glucosa", 10);
    const int ana = addPatient("Ana", "Paz", 1), beto = addPatient("Beto", "Lanza", 1),
              carla = addPatient("Carla", "Ríos", 2);
    bill(7, ana, "1500.25");
    bill(12, carla, "99.75");
    bill(3, beto, "250.50");
    bill(5, ana, "40.00", Settlement::Paid);
    bill(9, beto, "60.00");
    settleInsurerInvoices({9}, kDay, "antes");
    amb1().execute("UPDATE Pacientes SET Cod_seguro = 1 WHERE cod_paciente = ?", {carla});
}

FlexGrid* grid(QWidget* w, const char* name) { return control<FlexGrid>(w, name); }

void chooseInsurer(QWidget* w, int code)
{
    auto* combo = control<QComboBox>(w, "Combo1");
    pickEntry(combo, combo->findData(code));
}

QStringList moveInvoice(QWidget* w, ScriptedPrompts& sp, const QString& n)
{
    clickGridRow(grid(w, "Grid1"), findRow(grid(w, "Grid1"), 0, n));
    return press(w, "Command1", sp);
}

// How an invoice's receivable and the invoice itself stand: settled, the
// payment's date and reference, paid.
QStringList settledState(int n)
{
    Recordset rs;
    rs.open("SELECT x.estado, x.fecha_pago, x.referencia, f.pagada FROM cxc x, Factura f "
            "WHERE x.factura = f.factura AND x.factura = ?",
            {n});
    if (rs.recordCount() != 1)
        return {};
    rs.moveFirst();
    const auto yes = [&rs](const char* f) { return QString(rs.field(f).toBool() ? "sí" : "no"); };
    return {yes("estado"), dateLong(storedDate(rs.field("fecha_pago"))), rs.text("referencia"), yes("pagada")};
}

int settledCount() { return count("SELECT COUNT(*) FROM cxc WHERE estado = ?", {true}); }

// The screen closed at the end of each test, before its store goes.
struct Screen {
    QPointer<QWidget> w = openScreen("Fpagarfacturas");
    ~Screen()
    {
        if (w)
            w->close();
    }
};

}  // namespace

class TestInsurerPay : public QObject {
    Q_OBJECT

private slots:
    void runningTotalAfterRemoval_data()
    {
        QTest::addColumn<double>("amount");
        QTest::addColumn<QString>("shown");
        QTest::newRow("nothing") << 0.0 << "00";
        QTest::newRow("one digit") << 5.0 << "05";
        QTest::newRow("cents dropped") << 12.49 << "12";
        QTest::newRow("half rounds up") << 12.5 << "13";
        QTest::newRow("rounds into thousands") << 999.5 << "1,000";
        QTest::newRow("thousands") << 1750.75 << "1,751";
        QTest::newRow("millions") << 1234567.89 << "1,234,568";
        QTest::newRow("negative") << -1234.5 << "-1,235";
        QTest::newRow("noise below zero") << -1e-12 << "00";
    }
    void runningTotalAfterRemoval()
    {
        QFETCH(double, amount);
        QFETCH(QString, shown);
        QCOMPARE(wholeWithThousands(amount), shown);
    }

    // The left list holds the insurer's open receivables by number, by the
    // patient's insurer today; the right list refuses a second copy and its
    // total reads "#.00" as it grows and "#,00" after a removal.
    void choosingAndMoving()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        Screen s;
        QWidget* w = s.w;
        FlexGrid* all = grid(w, "Grid1");
        FlexGrid* chosen = grid(w, "Grid2");
        QCOMPARE(all->textMatrix(0, 1), QString("PACIENTE                "));

        chooseInsurer(w, 2);   // owes nothing now that its patient moved
        QCOMPARE(all->rows(), 1);
        QCOMPARE(sp.messages(), QStringList());
        chooseInsurer(w, 1);
        QCOMPARE(column(all, 0), (QStringList{"3", "7", "12"}));
        QCOMPARE(column(all, 1), (QStringList{"Beto Lanza", "Ana Paz", "Carla Ríos"}));
        QCOMPARE(column(all, 2), (QStringList{"250.50", "1500.25", "99.75"}));
        QCOMPARE(all->textMatrix(1, 3), QString("14/02/2026"));

        for (const char* n : {"7", "3", "12"})
            QVERIFY(moveInvoice(w, sp, n).isEmpty());
        QCOMPARE(moveInvoice(w, sp, "3"), QStringList{"No puede agregar dos veces el mismo Item"});
        QCOMPARE(all->rows(), 4);   // moved lines stay on the left
        QCOMPARE(edit(w, "txttotal")->text(), QString("3"));
        QCOMPARE(edit(w, "Text1")->text(), QString("1850.50"));

        QCOMPARE(press(w, "Command2", sp), QStringList{"debe seleccionar la factura a eliminar"});
        QCOMPARE(chosen->rows(), 4);
        clickGridRow(chosen, findRow(chosen, 0, "12"));
        QVERIFY(press(w, "Command2", sp).isEmpty());
        QCOMPARE(column(chosen, 0), (QStringList{"7", "3"}));
        QCOMPARE(edit(w, "txttotal")->text(), QString("2"));
        QCOMPARE(edit(w, "Text1")->text(), QString("1,751"));
        // Growing again, the total is the list's sum, in "#.00" once more.
        QVERIFY(moveInvoice(w, sp, "12").isEmpty());
        QCOMPARE(edit(w, "Text1")->text(), QString("1850.50"));
    }

    // "&Agregar" refuses without an insurer and without an invoice to settle.
    void agregarRefusals()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        Screen s;
        const QList<std::pair<int, QString>> cases = {
            {-1, "Debe ingresar un proveedor"},
            {3, "Debe asignar al menos un item al proveedor"},   // an insurer owing nothing
            {1, "Debe asignar al menos un item al proveedor"},   // invoices listed, none moved
        };
        for (const auto& [insurer, message] : cases) {
            if (insurer >= 0)
                chooseInsurer(s.w, insurer);
            QCOMPARE(press(s.w, "Command3", sp), QStringList{message});
            QCOMPARE(sp.prompts.first().title, QString("LAB"));
            QCOMPARE(settledCount(), 1);
        }
    }

    // A settlement closes every receivable of the list with the date and the
    // reference, marks each invoice paid, and leaves the others alone; the
    // screen starts over, and the settled invoices are off the insurer's list.
    void settlingSeveralInvoices()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        Screen s;
        QWidget* w = s.w;
        chooseInsurer(w, 1);
        for (const char* n : {"12", "7"})
            QVERIFY(moveInvoice(w, sp, n).isEmpty());
        control<QDateEdit>(w, "DT")->setDate(QDate(2026, 3, 2));
        retype(edit(w, "Text2"), "Cheque 4411");

        QCOMPARE(press(w, "Command3", sp), QStringList{"Las facturas se cancelaron exitosamente"});
        QCOMPARE(sp.prompts.first().title, QString("LAB"));
        for (const int n : {7, 12})
            QCOMPARE(settledState(n), (QStringList{"sí", "02/03/2026", "Cheque 4411", "sí"}));
        QCOMPARE(settledState(3).first(), QString("no"));
        QCOMPARE(value("SELECT pagada FROM Factura WHERE factura = 3").toBool(), false);
        QCOMPARE(settledState(9).at(2), QString("antes"));
        // Nothing paid is recorded as an amount.
        QCOMPARE(value("SELECT Abono FROM Factura WHERE factura = 7").toDouble(), 0.0);
        QCOMPARE(rowsIn("creditos"), 4);

        QCOMPARE(grid(w, "Grid1")->rows(), 1);
        QCOMPARE(grid(w, "Grid2")->rows(), 1);
        QCOMPARE(control<QComboBox>(w, "Combo1")->currentIndex(), -1);
        QVERIFY(edit(w, "txttotal")->text().isEmpty());
        QVERIFY(edit(w, "Text1")->text().isEmpty());
        chooseInsurer(w, 1);
        QCOMPARE(column(grid(w, "Grid1"), 0), QStringList{"3"});
    }

    // The store failing anywhere in the save settles none of the invoices,
    // and the list is still there to try again.
    void storeFailureSettlesNone_data()
    {
        QTest::addColumn<int>("writes");
        QTest::newRow("among the receivables") << 1;
        QTest::newRow("among the invoices") << 4;
    }
    void storeFailureSettlesNone()
    {
        QFETCH(int, writes);
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        Screen s;
        QWidget* w = s.w;
        chooseInsurer(w, 1);
        for (const char* n : {"3", "7", "12"})
            QVERIFY(moveInvoice(w, sp, n).isEmpty());
        StoreFaults faults;
        faults.failAfter(writes);
        const QStringList shown = press(w, "Command3", sp);
        faults.heal();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown.first().startsWith("No se pudo registrar el pago de las facturas."),
                 qPrintable(shown.first()));
        QCOMPARE(settledCount(), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM Factura WHERE pagada = ?", {true}), 2);   // 5 and 9
        QCOMPARE(amb1().transactionDepth(), 0);
        QCOMPARE(column(grid(w, "Grid2"), 0), (QStringList{"3", "7", "12"}));

        QCOMPARE(press(w, "Command3", sp), QStringList{"Las facturas se cancelaron exitosamente"});
        QCOMPARE(settledCount(), 4);
    }

    // Another station settles one of the list meanwhile: the press writes
    // nothing, names it, drops it from both lists, and the rest settle next.
    void anotherStationSettledOneMeanwhile()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLab();
        Screen s;
        QWidget* w = s.w;
        chooseInsurer(w, 1);
        for (const char* n : {"3", "7", "12"})
            QVERIFY(moveInvoice(w, sp, n).isEmpty());
        retype(edit(w, "Text2"), "aquí");
        settleInsurerInvoices({7}, kDay, "allá");

        QCOMPARE(press(w, "Command3", sp),
                 QStringList{"La factura 7 ya fue cancelada en otra estación. No se registró ningún pago. "
                             "Se quitó de la lista: registre de nuevo el pago de las demás."});
        QCOMPARE(settledState(3).first(), QString("no"));
        QCOMPARE(settledState(12).first(), QString("no"));
        QCOMPARE(settledState(7).at(2), QString("allá"));
        QCOMPARE(column(grid(w, "Grid2"), 0), (QStringList{"3", "12"}));
        QCOMPARE(column(grid(w, "Grid1"), 0), (QStringList{"3", "12"}));
        QCOMPARE(edit(w, "txttotal")->text(), QString("2"));
        QCOMPARE(edit(w, "Text1")->text(), QString("350.25"));

        QCOMPARE(press(w, "Command3", sp), QStringList{"Las facturas se cancelaron exitosamente"});
        QCOMPARE(settledState(12).at(2), QString("aquí"));
        QCOMPARE(settledState(7).at(2), QString("allá"));

        // Named plainly however many there are.
        try {
            settleInsurerInvoices({3, 7, 12}, kDay, "otra vez");
            QFAIL("a settled invoice was settled again");
        } catch (const InvoicesAlreadySettled& e) {
            QCOMPARE(e.invoices(), (QList<std::int32_t>{3, 7, 12}));
            QCOMPARE(e.message(), QString("Las facturas 3, 7 y 12 ya fueron canceladas en otra estación. "
                                          "No se registró ningún pago."));
        }
    }
};

QTEST_MAIN(TestInsurerPay)
#include "test_insurerpay.moc"
