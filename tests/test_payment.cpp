// The payment screen Fcobrar, its card box FdatosTarjeta and the chooser Form13, with a
// stand-in invoice that records what it was handed.
#include "billing_fixture.h"
#include "random_user.h"
#include "testsupport.h"

#include "billing/invoice/payment.h"
#include "billing/payment/Fcobrar.h"
#include "foundation/base/apperror.h"
#include "foundation/base/appstate.h"
#include "frame/MDIForm1.h"
#include "foundation/ui/errors.h"

#include <QCheckBox>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

struct Handed {
    Payment payment;
    bool credit = false;
    CardDetails card;   // as the save found them
};

class FakeInvoice : public PaymentTarget {
public:
    QString total = QStringLiteral("100");
    QList<Handed> saved;
    int failures = 0;   // saves that fail before this one succeeds

    QString totalText() const override { return total; }
    void savePaid(const Payment& payment, bool credit) override
    {
        if (failures > 0) {
            --failures;
            throw AppError(QStringLiteral("La base de datos no respondió."));
        }
        saved.append({payment, credit, cardDetails()});
    }
};

QPointer<Fcobrar> openPayment(FakeInvoice* invoice)
{
    auto* w = qobject_cast<Fcobrar*>(openScreen("Fcobrar"));
    w->setTarget(invoice);
    return w;
}

// Fills the three amount boxes (blank for an empty text).
void amounts(QWidget* w, const QString& cash, const QString& card, const QString& cheque)
{
    retype(edit(w, "Text2"), cash);
    retype(edit(w, "Text3"), card);
    retype(edit(w, "Text4"), cheque);
}

void fillCard(QWidget* box, const QString& cargo, const QString& name, const QString& identity)
{
    typeKeys(edit(box, "Text1"), cargo);
    typeKeys(edit(box, "Text2"), name);
    edit(box, "MasK1")->setFocus();
    edit(box, "MasK1")->home(false);
    typeKeys(edit(box, "MasK1"), identity);
}

// What the last save was handed: the amounts, credit or not, the card details when entered.
QString lastHanded(const FakeInvoice& invoice)
{
    const Handed& h = invoice.saved.last();
    QStringList out;
    for (double amount : {h.payment.efectivo, h.payment.tarjeta, h.payment.cheque, h.payment.pagado})
        out << QString::number(amount);
    out << (h.credit ? "credito" : "contado");
    if (h.card.entered)
        out << QString::number(h.card.cargo) << h.card.nombre << h.card.identidad;
    return out.join('|');
}

}  // namespace

class TestPayment : public QObject {
    Q_OBJECT

private slots:
    // Paid in full the sum is the total to the cent, the card box first; in instalments something
    // stays owing; no invoice, no payment; pasted amounts; the card box; the chooser.
    void payment()
    {
        TempStore store;
        ScriptedPrompts sp;
        FakeInvoice invoice;
        QPointer<Fcobrar> w = openPayment(&invoice);
        QCOMPARE(edit(w, "Text1")->text(), QString("100.00"));

        amounts(w, "60", "30", "");
        QCOMPARE(press(w, "guardar", sp), QStringList{"no coinciden los datos"});
        amounts(w, "60", "40", "");
        QCOMPARE(press(w, "guardar", sp, Answer::No), QStringList{"esta seguro de los datos "});
        QVERIFY(w && w->isVisible() && invoice.saved.isEmpty());

        // The card box filled but closed by its window: paid without its details.
        sp.onModal("FdatosTarjeta", [](QWidget* box) {
            fillCard(box, "4411", "Rosa Mejía", "0801199012345");
            box->close();
        });
        QCOMPARE(press(w, "guardar", sp, Answer::Yes), QStringList{"esta seguro de los datos "});
        QVERIFY(gone(w));
        QCOMPARE(invoice.saved.size(), 1);
        QCOMPARE(lastHanded(invoice), QString("60|40|0|0|contado"));

        // Two-decimal amounts add up exactly; no card amount, no card box.
        invoice.total = ".30";
        w = openPayment(&invoice);
        amounts(w, ".10", "", ".2");
        sp.clear();
        clickNamed(w, "guardar");
        QCOMPARE(sp.messages(), QStringList{"esta seguro de los datos "});
        QCOMPARE(lastHanded(invoice), QString("0.1|0|0.2|0|contado"));

        // In instalments what is paid now is the sum, and less than the total.
        invoice.total = "100";
        w = openPayment(&invoice);
        tick(control<QCheckBox>(w, "Check1"));
        amounts(w, "100", "", "");
        QCOMPARE(press(w, "guardar", sp), QStringList{"el total no puede ser mayor"});
        QCOMPARE(invoice.saved.size(), 2);

        // Leaving a box shows it as money ("/" ends the number), a blank box stays blank.
        w->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w));
        clickNamed(w, "cancelar");
        QCOMPARE(edit(w, "Text2")->text() + edit(w, "Text3")->text() + edit(w, "Text4")->text(), QString());
        edit(w, "Text2")->setFocus();
        typeKeys(edit(w, "Text2"), "1a2/5");
        pressKey(edit(w, "Text2"), Qt::Key_Tab);
        pressKey(edit(w, "Text3"), Qt::Key_Tab);
        QCOMPARE(edit(w, "Text2")->text(), QString("12.00"));
        QCOMPARE(edit(w, "Text3")->text(), QString());

        retype(edit(w, "Text4"), "8");
        QCOMPARE(press(w, "guardar", sp, Answer::Yes), QStringList{"esta seguro de los datos "});
        QCOMPARE(lastHanded(invoice), QString("12|0|8|20|credito"));

        // Nothing paid today is allowed in instalments.
        w = openPayment(&invoice);
        tick(control<QCheckBox>(w, "Check1"));
        QCOMPARE(press(w, "guardar", sp, Answer::Yes), QStringList{"esta seguro de los datos "});
        QCOMPARE(lastHanded(invoice), QString("0|0|0|0|credito"));

        // "Salir" hands nothing; with no invoice "Guardar" says so and closes.
        w = openPayment(&invoice);
        amounts(w, "100", "", "");
        clickNamed(w, "Command3");
        QVERIFY(gone(w));
        QCOMPARE(invoice.saved.size(), 4);
        w = qobject_cast<Fcobrar*>(openScreen("Fcobrar"));
        QCOMPARE(press(w, "guardar", sp),
                 QStringList{"No hay ninguna factura que cobrar: el cobro se hace desde la factura, al guardarla."});
        QVERIFY(gone(w));

        // Whatever is pasted into an amount box is read as money or refused in plain words.
        FakeInvoice pasted;
        const int failuresBefore = boundaryRecord().shown;
        for (const QString& text : nastyTexts() + QStringList{"1e999", "-0.004"}) {
            w = openPayment(&pasted);
            w->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(w));
            tick(control<QCheckBox>(w, "Check1"));
            edit(w, "Text2")->setFocus();
            edit(w, "Text2")->setText(text);
            pressKey(edit(w, "Text2"), Qt::Key_Tab);
            const int handed = int(pasted.saved.size());
            const QStringList shown = press(w, "guardar", sp, Answer::Yes);
            if (pasted.saved.size() > handed) {
                const double cash = pasted.saved.last().payment.efectivo;
                QVERIFY2(cash >= 0 && cash < 100, qPrintable(text));
            } else {
                QVERIFY2(shown.size() == 1 && shown.first().startsWith("El monto en efectivo")
                             && w->focusWidget() == edit(w, "Text2"),
                         qPrintable(text + ": " + shown.join('|')));
                w->close();
            }
        }
        QCOMPARE(boundaryRecord().shown, failuresBefore);
        // Refused: "-1", "99999999999", "1e308" and "1e999".
        QCOMPARE(pasted.saved.size(), nastyTexts().size() + 2 - 4);

        // The card box refuses a missing field in order; only its "ok" marks the details entered,
        // and details filled for a press that did not save never reach a later save.
        cardDetails().entered = true;
        QPointer<QWidget> box = openScreen("FdatosTarjeta");
        QVERIFY(!cardDetails().entered);
        QCOMPARE(refusals(box, sp, "Command1",
                          {{"Debe ingresar el numero de Cargo", "Text1", "9999999999"},
                           {"Debe ingresar el Nombre de la persona", "Text2", "O'Neil"},
                           {"Debe ingresar el numero de Identidad", "MasK1", "080119901234"}},
                          {}),
                 QString());
        // A charge number no record number can hold is refused whole.
        QStringList shown = press(box, "Command1", sp);
        QVERIFY2(shown.size() == 1 && shown.first().contains("2147483647"), qPrintable(shown.join('|')));
        QVERIFY(box && !cardDetails().entered);
        retype(edit(box, "Text1"), "77");
        QVERIFY(press(box, "Command1", sp).isEmpty());
        QVERIFY(gone(box));
        const CardDetails d = cardDetails();
        QVERIFY(d.entered);
        QCOMPARE(QString("%1|%2|%3").arg(d.cargo).arg(d.nombre, d.identidad),
                 QString("77|O'Neil|0801-1990-1234_"));

        FakeInvoice failing;
        failing.failures = 1;
        w = openPayment(&failing);
        amounts(w, "", "100", "");
        sp.onModal("FdatosTarjeta", [](QWidget* b) {
            fillCard(b, "5", "Ana", "0801");
            clickNamed(b, "Command1");
        });
        shown = press(w, "guardar", sp, Answer::Yes);
        QVERIFY(w && failing.saved.isEmpty() && cardDetails().entered);
        QCOMPARE(shown.size(), 2);
        QVERIFY(shown.last().startsWith("No se pudo cobrar la factura."));
        amounts(w, "100", "", "");
        press(w, "guardar", sp, Answer::Yes);
        QVERIFY(gone(w));
        QCOMPARE(failing.saved.size(), 1);
        QCOMPARE(lastHanded(failing), QString("100|0|0|0|contado"));

        // The chooser records the kind and opens the invoice, alone or inside the main window.
        QPointer<QWidget> chooser = openScreen("Form13");
        clickNamed(chooser, "Command1");
        QVERIFY(gone(chooser));
        QCOMPARE(state().tipoPago, QString("efectivo"));
        QWidget* alone = visibleWindow("factura3");
        QVERIFY(alone);
        alone->close();

        state().currentUser = "admin";
        MDIForm1* main = MDIForm1::showMain();
        chooser = openScreen("Form13");
        clickNamed(chooser, "Command3");
        QCOMPARE(state().tipoPago, QString("Cheque"));
        QVERIFY(main->panelScreen("factura3"));
        delete main;
    }
};

QTEST_MAIN(TestPayment)
#include "test_payment.moc"
