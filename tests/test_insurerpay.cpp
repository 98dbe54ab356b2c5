// Insurer payments (Fpagarfacturas): the insurer's open invoices, the list to
// settle with its running total, and the settlement, whole or not at all.
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "accounts/receivables/settlement.h"
#include "billing/invoice/invoicesave.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"

#include <QDateEdit>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

const QDate kDay(2026, 2, 14);
const QStringList kSettled{"Las facturas se cancelaron exitosamente"};

// An invoice to the patient's insurer, open in the receivables.
void bill(int numero, int patient, int exam, const QString& total)
{
    PricedDocument doc;
    doc.numero = numero;
    doc.fecha = kDay;
    doc.faturado = "caja";
    doc.codPaciente = patient;
    doc.subtotal = doc.total = total;
    doc.lines << PricedLine{1, exam, total, total};
    saveInvoice(doc, Settlement::Insurer, Payment{}, true, nullptr);
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

// The receivables settled, the invoices paid, a receivable's reference.
int settledCount() { return count("SELECT COUNT(*) FROM cxc WHERE estado = ?", {true}); }
int paidCount() { return count("SELECT COUNT(*) FROM Factura WHERE pagada = ?", {true}); }
QString reference(int n) { return value("SELECT referencia FROM cxc WHERE factura = ?", {n}).toString(); }

// Insurer 1 owes 3, 7 and 12 (saved in another order); 12 was billed while
// its patient was with insurer 2; 9 was settled already. The screen is open,
// on insurer 1 with `moved` in the list to settle when there are any, and is
// closed before the store goes.
struct Lab {
    TempStore store;
    ScriptedPrompts sp;
    QPointer<QWidget> w;

    explicit Lab(const QStringList& moved = {})
    {
        addInsurer(1, "Seguros Atlántida");
        addInsurer(2, "Pan American Life");
        const int exam = addExam(addExamType("Química"), "Glucosa", 10);
        const int ana = addPatient("Ana", "Paz", 1), beto = addPatient("Beto", "Lanza", 1),
                  carla = addPatient("Carla", "Ríos", 2);
        bill(7, ana, exam, "1500.25");
        bill(12, carla, exam, "99.75");
        bill(3, beto, exam, "250.50");
        bill(9, beto, exam, "60.00");
        settleInsurerInvoices({9}, kDay, "antes");
        amb1().execute("UPDATE Pacientes SET Cod_seguro = 1 WHERE cod_paciente = ?", {carla});

        w = openScreen("Fpagarfacturas");
        if (!moved.isEmpty())
            chooseInsurer(w, 1);
        for (const QString& n : moved)
            QVERIFY(moveInvoice(w, sp, n).isEmpty());
    }
    ~Lab()
    {
        if (w)
            w->close();
    }
};

}  // namespace

class TestInsurerPay : public QObject {
    Q_OBJECT

private slots:
    void runningTotalAfterRemoval()
    {
        const QList<std::pair<double, QString>> cases = {
            {5.0, "05"}, {999.5, "1,000"}, {1234567.89, "1,234,568"}, {-1234.5, "-1,235"}, {-1e-12, "00"}};
        for (const auto& [amount, shown] : cases)
            QCOMPARE(wholeWithThousands(amount), shown);
    }

    // "&Agregar" refuses without an insurer and with nothing moved. The left
    // list holds the insurer's open receivables by number, by the patient's
    // insurer today; the right list refuses a second copy and its total reads
    // "#.00" as it grows and "#,00" after a removal.
    void choosingAndMoving()
    {
        Lab lab;
        QWidget* w = lab.w;
        FlexGrid* all = grid(w, "Grid1");
        FlexGrid* chosen = grid(w, "Grid2");
        QCOMPARE(press(w, "Command3", lab.sp), QStringList{"Debe ingresar un proveedor"});
        QCOMPARE(lab.sp.prompts.first().title, QString("LAB"));

        chooseInsurer(w, 1);
        QCOMPARE(press(w, "Command3", lab.sp), QStringList{"Debe asignar al menos un item al proveedor"});
        QCOMPARE(settledCount(), 1);
        QCOMPARE(column(all, 0), (QStringList{"3", "7", "12"}));
        QCOMPARE(column(all, 1), (QStringList{"Beto Lanza", "Ana Paz", "Carla Ríos"}));
        QCOMPARE(column(all, 2), (QStringList{"250.50", "1500.25", "99.75"}));

        for (const char* n : {"7", "3", "12"})
            QVERIFY(moveInvoice(w, lab.sp, n).isEmpty());
        QCOMPARE(moveInvoice(w, lab.sp, "3"), QStringList{"No puede agregar dos veces el mismo Item"});
        QCOMPARE(all->rows(), 4);   // moved lines stay on the left
        QCOMPARE(edit(w, "txttotal")->text(), QString("3"));
        QCOMPARE(edit(w, "Text1")->text(), QString("1850.50"));

        QCOMPARE(press(w, "Command2", lab.sp), QStringList{"debe seleccionar la factura a eliminar"});
        QCOMPARE(chosen->rows(), 4);
        clickGridRow(chosen, findRow(chosen, 0, "12"));
        QVERIFY(press(w, "Command2", lab.sp).isEmpty());
        QCOMPARE(column(chosen, 0), (QStringList{"7", "3"}));
        QCOMPARE(edit(w, "txttotal")->text(), QString("2"));
        QCOMPARE(edit(w, "Text1")->text(), QString("1,751"));
        // Growing again, the total is the list's sum, in "#.00" once more.
        QVERIFY(moveInvoice(w, lab.sp, "12").isEmpty());
        QCOMPARE(edit(w, "Text1")->text(), QString("1850.50"));
    }

    // A settlement closes every receivable of the list with the date and the
    // reference, marks each invoice paid, and leaves the others alone; the
    // screen starts over, and the settled invoices are off the insurer's list.
    void settlingSeveralInvoices()
    {
        Lab lab({"12", "7"});
        QWidget* w = lab.w;
        control<QDateEdit>(w, "DT")->setDate(QDate(2026, 3, 2));
        retype(edit(w, "Text2"), "Cheque 4411");

        QCOMPARE(press(w, "Command3", lab.sp), kSettled);
        QCOMPARE(count("SELECT COUNT(*) FROM cxc x, Factura f WHERE x.factura = f.factura AND x.factura IN (7, 12) "
                       "AND x.estado = ? AND x.fecha_pago = ? AND x.referencia = ? AND f.pagada = ?",
                       {true, QDate(2026, 3, 2), "Cheque 4411", true}), 2);
        QCOMPARE(settledCount(), 3);   // 3 left open
        QCOMPARE(paidCount(), 3);

        QCOMPARE(grid(w, "Grid2")->rows(), 1);
        QCOMPARE(control<QComboBox>(w, "Combo1")->currentIndex(), -1);
        chooseInsurer(w, 1);
        QCOMPARE(column(grid(w, "Grid1"), 0), QStringList{"3"});
    }

    // The store failing anywhere in the save settles none of the invoices,
    // and the list is still there to try again.
    void storeFailureSettlesNone()
    {
        for (const int writes : {1, 4}) {   // among the receivables, among the invoices
            Lab lab({"3", "7", "12"});
            StoreFaults faults;
            faults.failAfter(writes);
            const QStringList shown = press(lab.w, "Command3", lab.sp);
            faults.heal();
            QVERIFY2(shown.size() == 1 && shown.first().startsWith("No se pudo registrar el pago de las facturas."),
                     qPrintable(shown.join('|')));
            QCOMPARE(settledCount(), 1);
            QCOMPARE(paidCount(), 1);
            QCOMPARE(amb1().transactionDepth(), 0);
            QCOMPARE(column(grid(lab.w, "Grid2"), 0), (QStringList{"3", "7", "12"}));

            QCOMPARE(press(lab.w, "Command3", lab.sp), kSettled);
            QCOMPARE(settledCount(), 4);
        }
    }

    // Another station settles one of the list meanwhile: the press writes
    // nothing, names it, drops it from both lists, and the rest settle next.
    void anotherStationSettledOneMeanwhile()
    {
        Lab lab({"3", "7", "12"});
        QWidget* w = lab.w;
        retype(edit(w, "Text2"), "aquí");
        settleInsurerInvoices({7}, kDay, "allá");

        QCOMPARE(press(w, "Command3", lab.sp),
                 QStringList{"La factura 7 ya fue cancelada en otra estación. No se registró ningún pago. "
                             "Se quitó de la lista: registre de nuevo el pago de las demás."});
        QCOMPARE(settledCount(), 2);   // 9 and the other station's 7
        QCOMPARE(column(grid(w, "Grid2"), 0), (QStringList{"3", "12"}));
        QCOMPARE(column(grid(w, "Grid1"), 0), (QStringList{"3", "12"}));
        QCOMPARE(edit(w, "Text1")->text(), QString("350.25"));

        QCOMPARE(press(w, "Command3", lab.sp), kSettled);
        QCOMPARE(settledCount(), 4);
        QCOMPARE(reference(12), QString("aquí"));
        QCOMPARE(reference(7), QString("allá"));

        // Named plainly however many there are.
        try {
            settleInsurerInvoices({3, 7, 12}, kDay, "otra vez");
            QFAIL("a settled invoice was settled again");
        } catch (const InvoicesAlreadySettled& e) {
            QCOMPARE(e.message(), QString("Las facturas 3, 7 y 12 ya fueron canceladas en otra estación. "
                                          "No se registró ningún pago."));
        }
    }
};

QTEST_MAIN(TestInsurerPay)
#include "test_insurerpay.moc"
