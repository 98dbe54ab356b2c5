// The invoice screen factura3 and its discount box Form10, driven through
// their controls: the price in force, the lines, the totals and the extras.
#include "testsupport.h"

#include "foundation/base/appstate.h"
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

// A doctor, three exams at catalogue prices, and insurer 7 whose list has
// only Urea (at its own price).
Lab fillLab()
{
    Lab lab;
    amb1().insert("Doctores", {"Nombre_doctor", "Apellido_doctor"}, {"Rosa", "Mejía"});
    const int type = amb1().insert("TipoExamen", {"tipo_examen"}, {"Química"}).toInt();
    auto exam = [&](const QString& name, double price) {
        return amb1().insert("Examenes", {"cod_tipo_examen", "examen", "precio"}, {type, name, price}).toInt();
    };
    lab.urea = exam("Urea", 120);
    lab.glucosa = exam("Glucosa", 10.5);
    lab.orina = exam("Orina O'Neil", 0.5);
    amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa) VALUES (7, 'Palic')");
    amb1().execute("INSERT INTO RelSeguroPrecios (cod_seguro, Cod_descripcionexamen, precio) VALUES (7, ?, 75.5)",
                   {lab.urea});
    return lab;
}

void addPatient(const QString& name, int insurer, const QDate& birth)
{
    amb1().insert("Pacientes",
                  {"nombre_paciente", "apellido_paciente", "fecha_nacimiento", "direccion_paciente",
                   "asegurado", "Cod_seguro"},
                  {name, "Paz", birth, "Col. Palmira", insurer != 0, insurer});
}

FlexGrid* lines(QWidget* w) { return control<FlexGrid>(w, "Factura"); }
QString textOf(QWidget* w, const char* name) { return edit(w, name)->text(); }
QStringList extras(QWidget* w)
{
    return {control<QLabel>(w, "Label10")->text(), textOf(w, "Text1"), textOf(w, "totfact")};
}
bool on(QWidget* w, const char* name) { return control<QWidget>(w, name)->isEnabled(); }

// Enter on the patient's name, choosing `name` in the picker.
void pickPatient(QWidget* w, ScriptedPrompts& sp, const QString& name)
{
    sp.onModal("FBuscarCliente", [name](QWidget* p) {
        auto* g = control<FlexGrid>(p, "Grid1");
        clickGridRow(g, findRow(g, 1, name));
    });
    pressKey(edit(w, "clinom"), Qt::Key_Return);
}

// Types a line on the blank row: quantity, then code and Enter.
void keyLine(QWidget* w, const QString& quantity, int code)
{
    FlexGrid* g = lines(w);
    g->setRow(g->rows() - 1);
    g->setCol(0);
    typeKeys(g, quantity);
    g->setCol(1);
    typeKeys(g, QString::number(code));
    pressKey(g, Qt::Key_Return);
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

}  // namespace

class TestInvoice : public QObject {
    Q_OBJECT

private slots:
    // The price in force is fixed by the patient's insurer: the insurer's
    // list, or the catalogue; an exam missing from the list is refused even
    // though it has a catalogue price. A code keyed twice makes one line.
    void priceDecisionAndMerge()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        addPatient("Asegurada", 7, QDate(1990, 1, 1));
        addPatient("Particular", 0, QDate(1990, 1, 1));
        QPointer<QWidget> w = openScreen("factura3");

        pickPatient(w, sp, "Asegurada");
        QCOMPARE(control<QLabel>(w, "Label12")->text(), QString("Precios de: Palic"));
        FlexGrid* g = lines(w);
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
        QVERIFY(on(w, "generar") && on(w, "agregar") && on(w, "eliminar") && !on(w, "guardarfact"));
        keyLine(w, "3", lab.urea);
        QCOMPARE(column(g, 0), (QStringList{"5", ""}));
        QCOMPARE(row(g, 1).at(4), QString("377.50"));

        // Another patient starts afresh at catalogue prices.
        pickPatient(w, sp, "Particular");
        QCOMPARE(control<QLabel>(w, "Label12")->text(), QString("Precios Normales"));
        keyLine(w, "1", lab.glucosa);
        keyLine(w, "1", lab.orina);
        keyLine(w, "2", lab.orina);
        QCOMPARE(row(g, 2), (QStringList{"3", QString::number(lab.orina), "Orina O'Neil", ".50", "1.50"}));
        QCOMPARE(g->rows(), 4);
    }

    // The third-age discount: from 60 years by calendar months, with the
    // switch on, DTE a plain factor; the box's extra replaces it; 99% is the
    // most the box takes.
    void totalsAndExtras()
    {
        TempStore store;
        ScriptedPrompts sp;
        const Lab lab = fillLab();
        const QDate today = QDate::currentDate();
        addPatient("Sesenta", 0, today.addYears(-60));
        addPatient("Casi", 0, today.addYears(-60).addMonths(1));
        setSwitches(true, 0.10);
        QPointer<QWidget> w = openScreen("factura3");

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
    }

    // Load, the number proposed, the screen number, the grid's keys before a
    // patient, "-" on the clicked row, and "Guardar" writing nothing yet.
    void statesAndLifecycle()
    {
        TempStore store;
        ScriptedPrompts sp;
        QPointer<QWidget> w = openScreen("factura3");
        QCOMPARE(sp.messages(), QStringList{"no hay familias creadas"});
        w->close();

        const Lab lab = fillLab();
        addPatient("Ana", 0, QDate(1990, 1, 1));
        amb1().execute("INSERT INTO Factura (factura, fecha) VALUES (41, ?)", {QDate::currentDate()});
        sp.clear();
        w = openScreen("factura3");
        QCOMPARE(control<QLabel>(w, "Txt_numfact")->text(), QString("42"));
        QCOMPARE(state().screenNumber, std::int16_t(10));
        for (const char* b : {"agregar", "eliminar", "Command1", "generar", "guardarfact", "imprimir", "Otrafact"})
            QVERIFY2(!on(w, b), b);

        typeKeys(lines(w), "1");
        QCOMPARE(sp.messages(), QStringList{"Debe ingresar el nombre."});

        pickPatient(w, sp, "Ana");
        keyLine(w, "1", lab.urea);
        keyLine(w, "2", lab.glucosa);
        keyLine(w, "1", lab.orina);
        FlexGrid* g = lines(w);
        clickGridRow(g, 2);
        QVERIFY(clickNamed(w, "eliminar"));
        QCOMPARE(column(g, 2), (QStringList{"Urea", "Orina O'Neil", ""}));
        QVERIFY(clickNamed(w, "eliminar"));   // no new click: nothing goes

        QVERIFY(clickNamed(w, "generar"));
        QCOMPARE(textOf(w, "totfact"), QString("120.50"));
        QVERIFY(clickNamed(w, "guardarfact"));
        QVERIFY(sp.lastMessage().contains("próxima versión"));
        QVERIFY(rowsIn("Factura") == 1 && rowsIn("FacturaDetalle") == 0);

        QVERIFY(clickNamed(w, "limpiar"));
        QVERIFY(g->rows() == 2 && textOf(w, "clinom").isEmpty() && g->isEnabled() && !on(w, "generar"));

        w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(state().screenNumber, std::int16_t(0));
    }
};

QTEST_MAIN(TestInvoice)
#include "test_invoice.moc"
