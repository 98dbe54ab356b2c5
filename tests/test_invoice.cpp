// The invoice screen factura3 and its discount box Form10: prices, lines, totals, extras, saves.
#include "billing_fixture.h"
#include "store_faults.h"
#include "testsupport.h"

#include "billing/invoice/payment.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"

#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

struct Lab {
    int urea = 0, glucosa = 0, orina = 0;
};

// A doctor, three exams at catalogue prices, and insurer 7 whose list has only Urea, at 75.50.
Lab fillLab()
{
    amb1().insert("Doctores", {"Nombre_doctor", "Apellido_doctor"}, {"Rosa", "Mejía"});
    const int type = addExamType("Química");
    const Lab lab{addExam(type, "Urea", 120), addExam(type, "Glucosa", 10.5), addExam(type, "Orina O'Neil", 0.5)};
    addInsurer(7, "Palic");
    addListPrice(7, lab.urea, 75.5);
    return lab;
}

FlexGrid* lines(QWidget* w) { return control<FlexGrid>(w, "Factura"); }
QString textOf(QWidget* w, const char* name) { return edit(w, name)->text(); }
QString label(QWidget* w, const char* name) { return control<QLabel>(w, name)->text(); }
QStringList extras(QWidget* w) { return {label(w, "Label10"), textOf(w, "Text1"), textOf(w, "totfact")}; }
bool on(QWidget* w, const char* name) { return control<QWidget>(w, name)->isEnabled(); }

// A new invoice for `who` with the lines keyed (quantity, code) and the doctor entry, totalled.
QWidget* billed(ScriptedPrompts& sp, const QString& who, const QList<QPair<QString, int>>& keyed, int doctor = -1)
{
    return composed(sp, "factura3", who, keyed, doctor);
}

QStringList row(FlexGrid* g, int r)
{
    QStringList out;
    for (int c = 0; c < 5; ++c)
        out << g->textMatrix(r, c);
    return out;
}

void setSwitches(bool thirdAge, double dte, bool askPassword = false)
{
    amb1().execute("UPDATE datos SET terceraedadauto = ?, pidecontrasena = ?", {thirdAge, askPassword});
    amb1().execute("UPDATE DTE SET DTE = ?", {dte});
}

// How the store settled invoice `n`: paid or credit, the amounts, its cxc, creditos and card rows.
QStringList settlement(int n)
{
    Recordset f;
    f.open("SELECT pagada, credito, efectivo, tarjeta, cheque, Abono FROM Factura WHERE factura = ?", {n});
    if (f.recordCount() == 0)
        return {};
    QStringList out{f.field("pagada").toBool() ? "pagada" : "", f.field("credito").toBool() ? "credito" : ""};
    for (const char* c : {"efectivo", "tarjeta", "cheque", "Abono"})
        out << money(f.field(c));
    out << QString("cxc %1").arg(count("SELECT COUNT(*) FROM cxc WHERE factura = ? AND Cod_paciente IS NOT NULL", {n}));
    Recordset c;
    c.open("SELECT numero, abono FROM creditos WHERE factura = ?", {n});
    out << (c.recordCount() ? QString("creditos %1 %2").arg(c.field("numero").toInt()).arg(money(c.field("abono")))
                            : QString("creditos -"));
    return out << QString("tarjeta %1").arg(rowsIn("Datostarjeta"));
}

// Presses "Guardar"; the payment screen, when it opens, hands `pay` at once.
void saveWith(QWidget* w, ScriptedPrompts& sp, const Payment& pay, bool credit)
{
    sp.onModal("Fcobrar", [w, pay, credit](QWidget*) { dynamic_cast<PaymentTarget*>(w)->savePaid(pay, credit); });
    QVERIFY(clickNamed(w, "guardarfact"));
}

const QString kSaved = "La factura se guardo Satisfactoriamente.";
const QString kAskInsurer = "el paciente es ASEGURADO\nDesea cargar la factura a la cuenta del seguro?";

}  // namespace

class TestInvoice : public QObject {
    Q_OBJECT

private slots:
    // The price in force (an exam off the insurer's list refused); one line per code; "-", a payment
    // left unpaid, "Limpiar"; totals and extras; each form of payment.
    void linesPricesAndPayments()
    {
        TempStore store;
        ScriptedPrompts sp;
        QPointer<QWidget> w = openScreen("factura3");
        QCOMPARE(sp.messages(), QStringList{"no hay familias creadas"});
        w->close();

        const Lab lab = fillLab();
        const QDate today = QDate::currentDate();
        const QDate birth = today.addYears(-30).addMonths(-2);
        addPatient("Asegurada", "Paz", 7, birth);
        const int particular = addPatient("Particular", "Paz", 0, birth);
        addPatient("Sesenta", "Paz", 0, today.addYears(-60));
        addPatient("Casi", "Paz", 0, today.addYears(-60).addMonths(1));
        amb1().execute("INSERT INTO Factura (factura, fecha) VALUES (41, ?)", {today});
        sp.clear();
        w = openScreen("factura3");
        QCOMPARE(label(w, "Txt_numfact"), QString("42"));
        QCOMPARE(state().screenNumber, std::int16_t(10));
        FlexGrid* g = lines(w);
        typeKeys(g, "1");
        QCOMPARE(sp.messages(), QStringList{"Debe ingresar el nombre."});

        pickPatient(w, sp, "Asegurada");
        QCOMPARE(label(w, "Label12"), QString("Precios de: Palic"));
        sp.clear();
        keyLine(w, "1", lab.glucosa);
        QCOMPARE(sp.messages(), QStringList{"el examen no tiene pecio asignado"});
        QCOMPARE(row(g, 1), (QStringList{"1", "", "", "", ""}));
        QVERIFY(g->col() == 0 && !on(w, "generar"));
        pressKey(g, Qt::Key_Backspace);

        // Enter on a quantity opens the exam picker on the insurer's list.
        QStringList offered;
        sp.onModal("FBuscarArticulo", [&](QWidget* p) {
            auto* list = control<FlexGrid>(p, "Grid1");
            offered = column(list, 1);
            clickGridRow(list, 1);
        });
        typeKeys(g, "2");
        pressKey(g, Qt::Key_Return);
        QCOMPARE(offered, QStringList{"Urea"});
        pressKey(g, Qt::Key_Return);
        QCOMPARE(row(g, 1), (QStringList{"2", QString::number(lab.urea), "Urea", "75.50", "151.00"}));
        keyLine(w, "3", lab.urea);
        QCOMPARE(column(g, 0), (QStringList{"5", ""}));
        QCOMPARE(row(g, 1).at(4), QString("377.50"));

        // Another patient starts afresh at catalogue prices.
        pickPatient(w, sp, "Particular");
        QCOMPARE(label(w, "Label12"), QString("Precios Normales"));
        keyLine(w, "1", lab.glucosa);
        keyLine(w, "1", lab.orina);
        keyLine(w, "2", lab.orina);
        QCOMPARE(row(g, 2), (QStringList{"3", QString::number(lab.orina), "Orina O'Neil", ".50", "1.50"}));

        // "-" takes the clicked row, and only once.
        clickGridRow(g, 1);
        QVERIFY(clickNamed(w, "eliminar"));
        QCOMPARE(column(g, 2), (QStringList{"Orina O'Neil", ""}));
        QVERIFY(clickNamed(w, "eliminar"));
        QVERIFY(clickNamed(w, "generar"));
        QCOMPARE(textOf(w, "totfact"), QString("1.50"));
        // The payment screen left by "Salir" saves nothing.
        QVERIFY(clickNamed(w, "guardarfact"));
        QVERIFY(rowsIn("Factura") == 1 && rowsIn("FacturaDetalle") == 0);

        QVERIFY(clickNamed(w, "limpiar"));
        QVERIFY(g->rows() == 2 && textOf(w, "clinom").isEmpty() && g->isEnabled() && !on(w, "generar"));

        // The third-age discount from 60 by calendar months, switch on, DTE a plain factor.
        setSwitches(true, 0.10);
        auto total = [&](const QString& who) {
            pickPatient(w, sp, who);
            keyLine(w, "3", lab.glucosa);
            keyLine(w, "1", lab.orina);
            clickNamed(w, "generar");
            return QStringList{textOf(w, "subtfact"), textOf(w, "impfact")} + extras(w);
        };
        QCOMPARE(total("Sesenta"), (QStringList{"32.00", ".00", "Descuento:", "3.20", "28.80"}));
        QVERIFY(on(w, "guardarfact") && on(w, "Command1") && !on(w, "generar") && !lines(w)->isEnabled());
        QCOMPARE(total("Casi"), (QStringList{"32.00", ".00", "Extras:", "", "32.00"}));
        setSwitches(false, 0.10);
        QCOMPARE(total("Sesenta"), (QStringList{"32.00", ".00", "Extras:", "", "32.00"}));

        // "Descuento" 10 over the third-age discount replaces it; 99.5 is refused.
        setSwitches(true, 0.125);
        QCOMPARE(total("Sesenta").at(3), QString("4.00"));
        sp.clear();
        sp.onModal("Form10", [](QWidget* box) {
            retype(edit(box, "Text1"), "99.5");
            clickNamed(box, "Command1");
            retype(edit(box, "Text1"), "10");
            clickNamed(box, "Command1");
        });
        clickNamed(w, "Command1");
        QCOMPARE(sp.messages(), QStringList{"El descuento o recargo no puede ser mayor que le 99%"});
        QCOMPARE(extras(w), (QStringList{"Descuento:", "3.20", "28.80"}));

        // With the password switch an administrator signs first, then the box opens.
        setSwitches(true, 0.10, true);
        addEmployee("jefa", "clave", 1);
        sp.onModal("Form11", [](QWidget* admin) {
            pickEntry(control<QComboBox>(admin, "Combo1"), "jefa");
            typeKeys(edit(admin, "Text1"), "clave");
            clickNamed(admin, "Command1");
        });
        sp.onModal("Form10", [](QWidget* box) {
            tick(control<QRadioButton>(box, "Option2"));
            typeKeys(edit(box, "Text1"), "9x9");   // the letter never reaches the box
            pressKey(edit(box, "Text1"), Qt::Key_Return);
        });
        clickNamed(w, "Command1");
        QCOMPARE(extras(w), (QStringList{"Recargo:", "31.68", "63.68"}));

        // "+" reopens the document; totals and the extra are gone.
        QVERIFY(clickNamed(w, "agregar"));
        QVERIFY(lines(w)->isEnabled() && on(w, "generar") && !on(w, "guardarfact") && !on(w, "Command1"));
        QCOMPARE(extras(w), (QStringList{"Extras:", "", ""}));

        // Saved, the extra goes with its kind.
        clickNamed(w, "generar");
        saveWith(w, sp, Payment{28.8}, false);
        QCOMPARE(row("SELECT adicional, valadicional FROM Factura WHERE factura = 42"),
                 (QStringList{"Descuento", "3.2"}));
        w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(state().screenNumber, std::int16_t(0));

        // Each form of payment as the store keeps it, with the invoice row, its lines and one
        // work-table row per unit; the card amount through the real payment screen and card box.
        setSwitches(false, 0.10);

        // Bills `who` and saves it as `settle` does; returns the invoice's number.
        auto bill = [&](const QString& who, const std::function<void(QWidget*)>& settle) {
            QPointer<QWidget> w = who == "Particular" ? billed(sp, who, {{"2", lab.urea}, {"1", lab.glucosa}}, 0)
                                                      : billed(sp, who, {{"2", lab.urea}});
            const int n = label(w, "Txt_numfact").toInt();
            sp.clear();
            settle(w);
            w->close();
            return n;
        };

        // Paid in full in cash.
        int n = bill("Particular", [&](QWidget* w) { saveWith(w, sp, Payment{250.5}, false); });
        QCOMPARE(sp.messages(), (QStringList{"Desea Guardar la factura. ", kSaved}));
        QCOMPARE(settlement(n), (QStringList{"pagada", "", "250.50", ".00", ".00", "250.50", "cxc 0", "creditos -", "tarjeta 0"}));
        QCOMPARE(storedDate(value("SELECT fecha FROM Factura WHERE factura = ?", {n})), QDate::currentDate());
        QCOMPARE(row("SELECT faturado, cod_paciente, edad_paciente, Cod_doctor, adicional, sub_total, total, "
                     "valadicional FROM Factura WHERE factura = ?", {n}),
                 (QStringList{state().currentUser, QString::number(particular), "30 Años 2 meses",
                              value("SELECT MIN(Cod_doctor) FROM Doctores").toString(), "NULL",
                              "250.5", "250.5", "0"}));
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE factura = ? AND cod_descripcionexamen = ? "
                       "AND cantidad = 2 AND subtotal = 240", {n, lab.urea}), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE factura = ?", {n}), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura = ? AND cod_descripcionexamen = ? "
                       "AND examen = 'Urea'", {n, lab.urea}), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura = ?", {n}), 3);

        // With a card amount, as the desk does it.
        n = bill("Particular", [&](QWidget* w) {
            sp.onModal("Fcobrar", [&sp](QWidget* cobro) {
                QCOMPARE(edit(cobro, "Text1")->text(), QString("250.50"));
                typeKeys(edit(cobro, "Text2"), "50.5");
                typeKeys(edit(cobro, "Text3"), "200");
                sp.onModal("FdatosTarjeta", [](QWidget* card) {
                    typeKeys(edit(card, "Text1"), "123456");
                    typeKeys(edit(card, "Text2"), "Rosa O'Neil");
                    typeKeys(edit(card, "MasK1"), "0801");
                    clickNamed(card, "Command1");
                });
                clickNamed(cobro, "guardar");
            });
            QVERIFY(clickNamed(w, "guardarfact"));
        });
        QCOMPARE(sp.messages(), (QStringList{"esta seguro de los datos ", "Desea Guardar la factura. ", kSaved}));
        QCOMPARE(settlement(n), (QStringList{"pagada", "", "50.50", "200.00", ".00", "250.50", "cxc 0", "creditos -", "tarjeta 1"}));
        QCOMPARE(value("SELECT num_autorizacion || '|' || num_tarjeta || '|' || num_identidad FROM Datostarjeta "
                       "WHERE factura = ?", {n}).toString(),
                 QString("123456|Rosa O'Neil|0801-____-_____"));
        QVERIFY(!cardDetails().entered);

        // Part paid, the rest in instalments; a cheque leaves only its amount.
        n = bill("Particular", [&](QWidget* w) { saveWith(w, sp, Payment{20, 0, 30, 50}, true); });
        QCOMPARE(settlement(n), (QStringList{"", "credito", "20.00", ".00", "30.00", "50.00", "cxc 0", "creditos 1 50.00", "tarjeta 1"}));

        // The insured patient pays himself.
        n = bill("Asegurada", [&](QWidget* w) {
            sp.answers = {Answer::No, Answer::Yes};
            saveWith(w, sp, Payment{151}, false);
        });
        QCOMPARE(settlement(n), (QStringList{"pagada", "", "151.00", ".00", ".00", "151.00", "cxc 0", "creditos -", "tarjeta 1"}));

        // Charged to the insurer: no payment screen, no question but the first.
        cardDetails() = {true, 9, "No", "____-____-_____"};
        n = bill("Asegurada", [&](QWidget* w) {
            sp.answers = {Answer::Yes};
            QVERIFY(clickNamed(w, "guardarfact"));
            QVERIFY(!on(w, "guardarfact") && on(w, "imprimir") && on(w, "Otrafact") && !lines(w)->isEnabled());
            QCOMPARE(edit(w, "totfact")->palette().color(QPalette::Text), QColor(255, 0, 0));
        });
        QCOMPARE(sp.messages(), (QStringList{kAskInsurer, kSaved}));
        QCOMPARE(settlement(n), (QStringList{"", "credito", ".00", ".00", ".00", ".00", "cxc 1", "creditos 1 .00", "tarjeta 1"}));
        QCOMPARE(sp.prompts.last().text, QString("semaforo"));
    }

    // A zero total paid at the desk, a No, a store failing half-way write nothing; the insurer takes
    // a zero total; a number taken meanwhile moves on.
    void refusalsFailuresAndNumbers()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        addPatient("Particular", "Paz");
        addPatient("Asegurada", "Paz", 7);
        amb1().execute("UPDATE RelSeguroPrecios SET precio = 0");
        amb1().execute("UPDATE Examenes SET precio = 0 WHERE cod_descripcionexamen = ?", {lab.orina});
        auto written = [] {
            int rows = 0;
            for (const char* t : {"Factura", "FacturaDetalle", "cxc", "creditos", "Datostarjeta",
                                  "EvaluadoTemporal"})
                rows += rowsIn(t);
            return rows;
        };

        QPointer<QWidget> w = billed(sp, "Particular", {{"1", lab.orina}});
        sp.clear();
        saveWith(w, sp, Payment{}, false);
        QCOMPARE(sp.messages(), QStringList{"La factura no puede ser Cero (0)"});
        QCOMPARE(written(), 0);

        // No to the confirmation: "-" and "+/-" stay off.
        QVERIFY(clickNamed(w, "agregar"));
        keyLine(w, "1", lab.urea);
        clickNamed(w, "generar");
        sp.clear();
        sp.answers = {Answer::No};
        saveWith(w, sp, Payment{120}, false);
        QCOMPARE(sp.messages(), QStringList{"Desea Guardar la factura. "});
        QVERIFY(!on(w, "eliminar") && !on(w, "Command1") && on(w, "guardarfact"));
        QCOMPARE(written(), 0);

        // The store fails after the invoice and one line: nothing stays, the next press saves it whole.
        StoreFaults faults;
        faults.failAfter(2);
        sp.clear();
        saveWith(w, sp, Payment{120}, false);
        QCOMPARE(sp.messages().size(), 2);
        QVERIFY(sp.lastMessage().startsWith("La factura no se guardó y no quedó escrita ninguna parte de ella"));
        QCOMPARE(written(), 0);
        QVERIFY(on(w, "guardarfact") && edit(w, "totfact")->text() == "120.00");
        faults.heal();
        saveWith(w, sp, Payment{120}, false);
        QCOMPARE(sp.lastMessage(), kSaved);
        QCOMPARE(rowsIn("FacturaDetalle"), 2);
        w->close();

        // A zero total charged to the insurer is saved.
        w = billed(sp, "Asegurada", {{"1", lab.urea}});
        sp.answers = {Answer::Yes};
        QVERIFY(clickNamed(w, "guardarfact"));
        QCOMPARE(settlement(label(w, "Txt_numfact").toInt()).mid(0, 7),
                 (QStringList{"", "credito", ".00", ".00", ".00", ".00", "cxc 1"}));
        w->close();

        // Two workstations propose the same number; the second save takes the next.
        const QList<QPointer<QWidget>> desks{billed(sp, "Asegurada", {{"1", lab.urea}}),
                                             billed(sp, "Asegurada", {{"1", lab.urea}})};
        for (QWidget* w : desks) {
            QCOMPARE(label(w, "Txt_numfact"), QString("3"));
            sp.clear();
            sp.answers = {Answer::Yes};
            QVERIFY(clickNamed(w, "guardarfact"));
        }
        QCOMPARE(sp.messages().mid(1, 2),
                 (QStringList{"El numero de factura 3 ya fue usado en otra estacion; la factura se guardo con el numero 4.",
                              kSaved}));
        QCOMPARE(label(desks[1], "Txt_numfact"), QString("4"));
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura IN (3, 4)"), 2);
        QCOMPARE(count("SELECT COUNT(DISTINCT factura) FROM FacturaDetalle WHERE factura IN (3, 4)"), 2);
    }
};

QTEST_MAIN(TestInvoice)
#include "test_invoice.moc"
