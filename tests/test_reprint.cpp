// Sheets shown again: the reprint list, the correction list with its reason window, and the
// blank hematology format reached from the patient list.
#include "lab_fixture.h"

#include "foundation/base/appstate.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"
#include "lab/corrections.h"
#include "lab/sheets/gridsheet.h"
#include "lab/templates.h"

#include <QApplication>
#include <QDateEdit>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTextEdit>

using namespace tq;
using namespace tq::test;

namespace {

const QString kUnpaid = "La factura aun no ha sido cancelada en su totalidad. decea continuar";
const QString kReasonPrefix = "El usuario modifico el formato de resultado por ";

int g_exam = 0;

// An invoice of a new patient dated 09/03/2026, with one evaluated exam line per format id.
void invoice(std::int32_t factura, const QString& nombre, bool pagada, const QList<int>& formatIds)
{
    if (!g_exam)
        g_exam = amb1().insert("Examenes", {"examen"}, {"Coprologia"}).toInt();
    const QVariant patient = amb1().insert("Pacientes", {"nombre_paciente", "apellido_paciente"},
                                           {nombre, "Flores"});
    amb1().insert("Factura", {"factura", "cod_paciente", "fecha", "pagada", "edad_paciente"},
                  {factura, patient, QDate(2026, 3, 9), pagada, "34 Años 2 meses"});
    for (int id : formatIds)
        amb1().insert("FacturaDetalle",
                      {"factura", "cantidad", "cod_descripcionexamen", "evaluado", "num_impresion",
                       "iduniversalformato", "tecnico"},
                      {factura, 1, g_exam, true, 0, id, "ana"});
}

QStringList printedIds()
{
    return rowsOf("SELECT DISTINCT iduniversalformato FROM FacturaDetalle WHERE num_impresion = 1");
}

// Types an invoice number into a list and picks the row of template `code`.
void chooseSheet(QWidget* list, const QString& factura, int code)
{
    retype(edit(list, "Text1"), factura);
    auto* g = control<FlexGrid>(list, "Grid1");
    const int row = findRow(g, 1, QString::number(code));
    QVERIFY2(row > 0, qPrintable(column(g, 1).join(',')));
    clickGridRow(g, row);
}

// The windows a modal window blocked.
// The windows a modal window blocked, by name, and those it let go.
struct Blocking : QObject {
    QStringList blocked;
    Blocking() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* o, QEvent* e) override
    {
        if (e->type() == QEvent::WindowBlocked)
            blocked << o->objectName();
        else if (e->type() == QEvent::WindowUnblocked)
            blocked.removeAll(o->objectName());
        return false;
    }
};

// Shown again as the program shows it: modal over everything else.
void makeModal(QWidget* w)
{
    w->hide();
    w->setWindowModality(Qt::ApplicationModal);
    w->show();
}

// The screens opened modally, in order, whatever the case did in them.
struct Modals {
    explicit Modals(ScriptedPrompts& sp) : sp(sp)
    {
        sp.everyModal = [this](QWidget* w) { opened << w->objectName(); };
    }
    void on(const QString& name, std::function<void(QWidget*)> handler)
    {
        sp.onModal(name, [this, name, handler](QWidget* w) { opened << name, handler(w); });
    }
    ScriptedPrompts& sp;
    QStringList opened;
};

}  // namespace

class TestReprint : public QObject {
    Q_OBJECT

private slots:
    void init() { g_exam = 0; }   // every case has a store of its own

    // Form25 lists an invoice's sheets and shows the one chosen as stored; its print marks
    // only what the pending list opened last; an unpaid invoice asks first.
    void reprintList()
    {
        TempStore store;
        ScriptedPrompts sp;
        Modals modals(sp);
        invoice(701, "Marta", true, {40, 41});
        addResult(701, 1, 1, 40, "1", "Prueba de embarazo: NEGATIVO");
        for (const auto& [celda, valor] :
             {std::pair{"1", "Café"}, {"3", "Blanda"}, {"10", "Quistes"}})
            addResult(701, 2, 5, 41, celda, valor);
        invoice(702, "Elena", false, {42});
        addResult(702, 1, 5, 42, "1", "Amarilla");

        QPointer<QWidget> list = openScreen("Form25");
        auto* g = control<FlexGrid>(list, "Grid1");
        retype(edit(list, "Text1"), "701");
        QCOMPARE(column(g, 1), (QStringList{"1", "5"}));
        QCOMPARE(column(g, 2), (QStringList{"Formato en Blanco", "Parasitologia"}));
        QCOMPARE(column(g, 3), (QStringList{"1", "2"}));   // the sheet number, out of sight
        QVERIFY(g->isColumnHidden(3));
        // Texts that name no invoice list nothing, quietly.
        for (const char* typed : {"701.5", "abc", "99999999999", ""}) {
            retype(edit(list, "Text1"), typed);
            QVERIFY2(g->rows() == 1, typed);
        }
        QCOMPARE(sp.messages(), QStringList());

        // Straight after start nothing was opened elsewhere: the print marks nothing.
        modals.on("Form23", [&](QWidget* w) {
            QStringList shown;
            for (const char* name : {"Text1", "Text2", "Text3", "Text10"})
                shown << edit(w, name)->text();
            for (const char* name : {"lblPaciente", "lblFecha"})
                shown << control<QLabel>(w, name)->text();
            QCOMPARE(shown,
                     (QStringList{"Café", "", "Blanda", "Quistes", "Marta Flores", "09/03/2026"}));
            trigger(w, "imprimir", sp);
        });
        chooseSheet(list, "701", 5);
        QCOMPARE(sp.printed.size(), 1);
        QCOMPARE(printedIds(), QStringList());
        QCOMPARE(state().idFormatoActual, 0);
        // The blank page carries the age recorded on the invoice.
        modals.on("Form19", [](QWidget* w) {
            QCOMPARE(control<QTextEdit>(w, "Rich1")->toPlainText(),
                     QString("Prueba de embarazo: NEGATIVO"));
            QCOMPARE(control<QLabel>(w, "lblEdad")->text(), QString("34 Años 2 meses"));
        });
        chooseSheet(list, "701", 1);
        QCOMPARE(modals.opened, (QStringList{"Form23", "Form19"}));
        modals.opened.clear();

        // The pending list opens sheet 42; a print from the reprint list then marks 42, not 41.
        QPointer<QWidget> pending = openScreen("FImpresionResult");
        auto* pg = control<FlexGrid>(pending, "Grid1");
        clickGridRow(pg, findRow(pg, 8, "42"));   // unpaid: answered Yes
        QCOMPARE(state().idFormatoActual, 42);
        pending->close();
        modals.on("Form23", [&](QWidget* w) { trigger(w, "imprimir", sp); });
        chooseSheet(list, "701", 5);
        QCOMPARE(printedIds(), QStringList{"42"});

        // An unpaid invoice asks, with this screen's spelling; No opens nothing.
        sp.clear();
        modals.opened.clear();
        sp.answers = {Answer::No};
        chooseSheet(list, "702", 5);
        QCOMPARE(sp.messages(), QStringList{kUnpaid});
        QCOMPARE(sp.prompts.first().buttons, Buttons::YesNo);
        QCOMPARE(modals.opened, QStringList());
        list->close();
    }

    // Form342 -> Form37 -> reason window beside the sheet -> correction: refused without a
    // reason, saved with one, logged under the administrator; then the whole chain closes.
    void correctionChain()
    {
        TempStore store;
        ScriptedPrompts sp;
        Modals modals(sp);
        addEmployee("jefa", "clave", 1);
        state().currentUser = "ana";
        invoice(801, "Rosa", true, {50, 51});
        addResult(801, 1, 1, 50, "1", "Sin cambios");
        for (const auto& [celda, valor] : {std::pair{"1", "Café"}, {"2", "Pastosa"}})
            addResult(801, 2, 5, 51, celda, valor);
        const auto cells = [] {
            return rowsOf("SELECT NumFormato, Cod_Plantilla, celda, valor FROM resultados "
                          "WHERE num_factura = 801 ORDER BY NumFormato, Cod_Plantilla, celda",
                          {}, "|");
        };
        const QStringList before = cells();

        QPointer<QWidget> gate, list, reason;
        modals.on("Form342", [&](QWidget* w) {
            gate = w;
            pickEntry(control<QComboBox>(w, "Combo1"), "jefa");
            retype(edit(w, "Text1"), "clave");
            click(control<QPushButton>(w, "Command1"));
        });
        Blocking blocking;
        modals.on("Form37", [&](QWidget* w) {
            list = w;
            makeModal(w);
            chooseSheet(w, "801", 5);
        });
        modals.on("Form23", [&](QWidget* w) {
            reason = visibleWindow("menucambio");
            QVERIFY(reason);
            QCOMPARE(reason->parentWidget(), w);   // stands on the modal sheet, goes with it
            const AppState& kept = state();
            QCOMPARE((QList<int>{kept.facturaCambio, kept.numformatoCambio, kept.plantillaCambio}),
                     (QList<int>{801, 2, 5}));
            QCOMPARE(edit(w, "Text1")->text(), QString("Café"));
            retype(edit(w, "Text2"), "Líquida");

            QCOMPARE(trigger(w, "guardar", sp), QStringList{corrections::kNoReason});
            QCOMPARE(cells(), before);

            // The description comes only from the list: keys typed are thrown away.
            auto* text = control<QPlainTextEdit>(reason, "Text1");
            auto* combo = control<QComboBox>(reason, "Combo1");
            text->setFocus();
            typeKeys(text, "a mano");
            QCOMPARE(text->toPlainText(), QString());

            // The sheet is modal: it blocks the list behind it, never the reason window.
            makeModal(w);
            QVERIFY(blocking.blocked.contains("Form37"));
            QVERIFY(!blocking.blocked.contains("menucambio"));

            // The reason comes first for the keyboard; F6 goes back and forth.
            QTRY_COMPARE(QApplication::focusWidget(), combo);
            QTest::keyClick(combo, Qt::Key_F6);
            QTRY_VERIFY(w->isActiveWindow());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
            QTRY_COMPARE(QApplication::focusWidget(), combo);

            pickEntry(combo, "Error de Prueba");
            QCOMPARE(text->toPlainText(), kReasonPrefix + "Error de Prueba");
            QCOMPARE(trigger(w, "guardar", sp), QStringList{corrections::kCorrected});
        });
        openModal("Form342");

        QCOMPARE(modals.opened, (QStringList{"Form342", "Form37", "Form23"}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!gate && !list && !reason);
        // Sheet 2 comes back as sheet 1; the blank sheet is untouched.
        QCOMPARE(cells(), (QStringList{"1|1|1|Sin cambios", "1|5|1|Café", "1|5|2|Líquida"}));
        QCOMPARE(rowsOf("SELECT Factura, plantilla, usuario, tecnico, descripcion "
                        "FROM historialcambios", {}, "|"),
                 QStringList{"801|Parasitologia|jefa|ana|" + kReasonPrefix + "Error de Prueba"});
    }

    // A grid sheet goes to its correction screen laid out with its stored values. Left, the
    // chain closes and nothing is logged; saved, the cell typed over is what the sheet holds.
    void gridCorrection()
    {
        TempStore store;
        ScriptedPrompts sp;
        Modals modals(sp);
        const QStringList names{"Hemoglobina", "Hematocrito"};
        for (const QString& name : names)
            amb1().insert("parametros", {"cod_parametro", "parametro"},
                          {rowsIn("parametros") + 1, name});
        const std::int32_t version = saveTemplateVersion(kHematologia, names);
        invoice(803, "Luis", true, {53});
        for (const auto& [celda, valor] : {std::pair{"B1", "13.5"}, {"B2", "40"}, {"W", "Normal"}})
            amb1().insert("resultados",
                          {"num_factura", "NumFormato", "Cod_Plantilla", "celda", "valor", "version",
                           "iduniversalformato"},
                          {803, 1, kHematologia, celda, valor, version, 53});

        QPointer<QWidget> list = openScreen("Form37");
        modals.on("mdihematologia", [&](QWidget* w) {
            FlexGrid* g = qobject_cast<sheets::GridSheet*>(w)->grid();
            QCOMPARE(g->textMatrix(2, 1) + "=" + g->textMatrix(2, 2), QString("Hematocrito=40"));
            trigger(w, "salir", sp);
        });
        chooseSheet(list, "803", kHematologia);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!list && !visibleWindow("menucambio"));
        QCOMPARE(rowsIn("historialcambios"), 0);

        list = openScreen("Form37");
        modals.on("mdihematologia", [&](QWidget* w) {
            FlexGrid* g = qobject_cast<sheets::GridSheet*>(w)->grid();
            QTest::mouseClick(g->viewport(), Qt::LeftButton, {},
                              g->visualRect(g->model()->index(0, 2)).center());
            typeKeys(g, "14");
            pickEntry(control<QComboBox>(visibleWindow("menucambio"), "Combo1"),
                      "Error en Digitación");
            QCOMPARE(press(w, "guardar", sp), QStringList{corrections::kCorrected});
        });
        chooseSheet(list, "803", kHematologia);
        QCOMPARE(modals.opened, (QStringList{"mdihematologia", "mdihematologia"}));
        QCOMPARE(rowsOf("SELECT celda, valor FROM resultados WHERE num_factura = 803 "
                        "ORDER BY celda"),
                 (QStringList{"B1=14", "B2=40", "W=Normal"}));
        QCOMPARE(value("SELECT descripcion FROM historialcambios").toString(),
                 kReasonPrefix + "Error en Digitación");
    }

    // The patient list opened on its own leads to the blank format with the name; its print
    // replaces Tempo's one row, shows the report and closes.
    void blankHematologyFormat()
    {
        TempStore store;
        ScriptedPrompts sp;
        Modals modals(sp);
        amb1().insert("Pacientes", {"nombre_paciente", "apellido_paciente"}, {"Carla", "Pérez"});

        QString report;
        modals.on("DataReport16", [&](QWidget* w) {
            report = control<QLabel>(w, "Hoja")->accessibleDescription();
            QCOMPARE(rowsOf("SELECT nombre, edad, sexo, fecha FROM Tempo", {}, "|").size(), 1);
        });
        modals.on("datosimprimir", [&](QWidget* w) {
            QCOMPARE(edit(w, "Text1")->text(), QString("Carla, Pérez"));
            retype(edit(w, "Text2"), "30");
            pickEntry(control<QComboBox>(w, "Combo1"), "Femenino");
            control<QDateEdit>(w, "DTP")->setDate(QDate(2026, 3, 9));
            QCOMPARE(press(w, "Command1", sp), QStringList{"Imprimiendo Formato"});
            QVERIFY(!w->isVisible());   // gone once the report is dismissed
        });
        QPointer<QWidget> patients = openScreen("listaclientes");
        auto* names = control<QListWidget>(patients, "List1");
        names->setCurrentRow(0);
        pressKey(names, Qt::Key_Return);
        QCOMPARE(modals.opened, (QStringList{"datosimprimir", "DataReport16"}));
        QVERIFY(!patients || !patients->isVisible());
        QVERIFY(report.contains("Carla, Pérez") && report.contains("09/03/2026"));

        // A second print: still one row, the new one.
        QPointer<QWidget> again = openScreen("datosimprimir");
        retype(edit(again, "Text1"), "Luis Mejía");
        modals.on("DataReport16", [](QWidget*) {});
        press(again, "Command1", sp);
        QCOMPARE(rowsOf("SELECT nombre, edad, sexo FROM Tempo", {}, "|"),
                 QStringList{"Luis Mejía||"});
    }
};

QTEST_MAIN(TestReprint)
#include "test_reprint.moc"
