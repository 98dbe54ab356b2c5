// Corrections of saved result sheets: the three grid correction screens, the
// screen of earlier values, and the change-log listing.
#include "lab_fixture.h"
#include "pdftext.h"
#include "report_fixture.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "lab/corrections.h"
#include "lab/results/valoresanteriores.h"
#include "lab/sheets/gridsheet.h"
#include "lab/templates.h"

#include <QDateEdit>
#include <QPointer>

using namespace tq;
using namespace tq::sheets;
using namespace tq::test;

namespace {

// Parameters `prefix`1..n saved as the template's next version.
void makeTemplate(int code, const QString& prefix, int n)
{
    QStringList names;
    for (int i = 1; i <= n; ++i) {
        names << prefix + QString::number(i);
        if (count("SELECT COUNT(*) FROM parametros WHERE parametro = ?", {names.last()}) == 0)
            amb1().insert("parametros", {"cod_parametro", "parametro"},
                          {rowsIn("parametros") + 1, names.last()});
    }
    QVERIFY(saveTemplateVersion(code, names) >= 1);
}

// A sheet as the work table stored it, under format id 40 + number.
void storeSheet(std::int32_t factura, std::int32_t numFormato, int code, std::int32_t version,
                const QList<std::pair<QString, QString>>& cells)
{
    for (const auto& [celda, valor] : cells)
        amb1().insert("resultados", {"num_factura", "NumFormato", "Cod_Plantilla", "celda", "valor",
                                     "version", "iduniversalformato"},
                      {factura, numFormato, code, celda, valor, version, 40 + numFormato});
}

corrections::Target targetOf(std::int32_t factura, std::int32_t numFormato, int code)
{
    return {factura, numFormato, code, sheetTitle(code), "admin", "ana"};
}


// The invoice's result rows: celda=valor=NumFormato=version=format id.
QStringList stored(std::int32_t factura)
{
    return rowsOf("SELECT celda, valor, NumFormato, version, iduniversalformato FROM resultados "
                  "WHERE num_factura = ? ORDER BY diferenciador", {factura});
}

}  // namespace

class TestCorrections : public QObject {
    Q_OBJECT

private slots:
    // Each family's correction screen shows the stored sheet, takes typing by
    // its fill-in screen's rules, and saves it back as sheet 1 in the latest
    // version, the version written on the family's own rows.
    void correctionScreensStoreTheirFamilysRows()
    {
        TempStore store;
        ScriptedPrompts sp;
        struct Case {
            QString screen;
            int code;
            QString second;      // the letter of the second value column
            QString typedB1;     // a click on hematology's first column starts afresh
            QStringList rows;    // celda=valor=NumFormato=version=format id
        };
        const QList<Case> cases = {
            {"mdihematologia", kHematologia, "E", "9.9",
             {"B1=9.9=1=2=", "E1=x=1==", "W=nota=1=2="}},
            {"mdiuroanalisis", kUroanalisis, "D", "old19.9",
             {"B1=old19.9=1=2=", "D1=x=1=2=", "W=nota=1=2="}},
            {"mdiquimica", kQuimica, "E", "old19.9",
             {"B1=old19.9=1=2=", "E1=x=1==", "W=nota=1=="}},
        };
        std::int32_t factura = 700;
        for (const Case& c : cases) {
            ++factura;
            makeTemplate(c.code, "P" + QString::number(c.code) + "_", 3);
            storeSheet(factura, 2, c.code, 1,
                       {{"B1", "old1"}, {"B2", "old2"}, {c.second + "1", "x"}, {"W", "nota"}});
            makeTemplate(c.code, "P" + QString::number(c.code) + "_", 3);   // version 2 now
            QCOMPARE(latestVersion(c.code), 2);

            QString shownB1;
            sp.onModal(c.screen, [&](QWidget* w) {
                auto* sheet = qobject_cast<GridSheet*>(w);
                QVERIFY(sheet);
                FlexGrid* g = sheet->grid();
                shownB1 = g->textMatrix(1, 2);
                clickCell(g, 1, 2);
                typeKeys(g, "9.9");
                clickCell(g, 2, 2);
                for (int i = 0; i < 4; ++i)
                    pressKey(g, Qt::Key_Backspace);
                QCOMPARE(press(w, "guardar", sp), QStringList{corrections::kCorrected});
            });
            const auto saved = correctStoredSheet(readSheet(factura, 2, c.code),
                                                  {"Marta Flores", "01/02/2024", {}},
                                                  targetOf(factura, 2, c.code),
                                                  [] { return QStringLiteral("Error de Prueba"); });
            QVERIFY2(saved, qPrintable(c.screen));
            QCOMPARE(shownB1, QString("old1"));
            QCOMPARE(stored(factura), c.rows);
            QCOMPARE(rowsOf("SELECT Factura, plantilla, usuario, tecnico, descripcion "
                            "FROM historialcambios WHERE Factura = ?", {factura}),
                     QStringList{QString("%1=%2=admin=ana=Error de Prueba").arg(factura).arg(sheetTitle(c.code))});
            QVERIFY2(!visibleWindow(c.screen), qPrintable(c.screen));
        }
    }

    // Without a reason nothing is stored and the screen stays for one to be
    // chosen; leaving it then changes nothing either.
    void correctionWithoutReasonRefused()
    {
        TempStore store;
        ScriptedPrompts sp;
        makeTemplate(kQuimica, "Q", 2);
        storeSheet(800, 1, kQuimica, 1, {{"B1", "5.0"}, {"W", ""}});
        const QStringList before = stored(800);

        bool stillOpen = false;
        sp.onModal("mdiquimica", [&](QWidget* w) {
            auto* g = qobject_cast<GridSheet*>(w)->grid();
            clickCell(g, 1, 2);
            typeKeys(g, "1");
            QCOMPARE(press(w, "guardar", sp), QStringList{corrections::kNoReason});
            stillOpen = w->isVisible();
            press(w, "salir", sp);
        });
        const auto saved = correctStoredSheet(readSheet(800, 1, kQuimica), {}, targetOf(800, 1, kQuimica),
                                              [] { return QString(); });
        QVERIFY(!saved);
        QVERIFY(stillOpen);
        QCOMPARE(stored(800), before);
        QCOMPARE(rowsIn("historialcambios"), 0);
        QCOMPARE(rowsIn("celdasanteriores"), 0);
    }

    // Two corrections of a hematology sheet: three versions side by side,
    // each change marked where it happened, and the same on paper.
    void earlierValuesSideBySide()
    {
        TempStore store;
        ScriptedPrompts sp;
        makeTemplate(kHematologia, "H", 2);
        storeSheet(900, 1, kHematologia, 1, {{"B1", "12"}, {"B2", "40"}, {"W", ""}});
        corrections::saveGrid(targetOf(900, 1, kHematologia), "Error en Digitación",
                              {{"B1", "13"}, {"B2", "40"}}, "");
        corrections::saveGrid(targetOf(900, 1, kHematologia), "Error de Prueba",
                              {{"B1", "13"}, {"B2", "41"}}, "revisado");
        // Another template of the invoice is listed too and shown on its own.
        storeSheet(900, 2, kParasitologia, 0, {{"1", "café"}});
        corrections::saveParasitology(targetOf(900, 2, kParasitologia), "Error de Prueba",
                                      {"amarillo"});

        QPointer<QWidget> w = openScreen("valoresanteriores");
        QVERIFY(w);
        retype(edit(w, "Text1"), "901");
        QCOMPARE(press(w, "Command1", sp),
                 QStringList{"La factura 901 no tiene cambios registrados en sus resultados."});
        retype(edit(w, "Text1"), "900");
        QCOMPARE(press(w, "Command1", sp), QStringList{});
        auto* changes = control<FlexGrid>(w, "Grid1");
        QCOMPARE(column(changes, 5), (QStringList{"Error en Digitación", "Error de Prueba",
                                                  "Error de Prueba"}));
        auto* versions = control<FlexGrid>(w, "Grid2");
        // The latest correction is shown first: parasitology, before and now.
        QCOMPARE(versions->cols(), 4);
        QCOMPARE(column(versions, 3), QStringList{"amarillo"});

        clickGridRow(changes, 1);
        QCOMPARE(versions->cols(), 5);
        QVERIFY(versions->textMatrix(0, 2).startsWith("Antes del cambio 1 ("));
        QVERIFY(versions->textMatrix(0, 3).startsWith("Antes del cambio 2 ("));
        QCOMPARE(versions->textMatrix(0, 4), QString("Actual"));
        QCOMPARE(column(versions, 0), (QStringList{"B1", "B2", "W"}));
        QCOMPARE(column(versions, 1), (QStringList{"H1", "H2", "Comentario"}));
        const int b1 = 1, b2 = 2, comment = 3;
        for (const auto& [row, col, marked] : QList<std::tuple<int, int, bool>>{
                 {b1, 2, false}, {b1, 3, true}, {b1, 4, false},
                 {b2, 3, false}, {b2, 4, true}, {comment, 4, true}}) {
            const QString where = QString("%1,%2").arg(row).arg(col);
            QVERIFY2(versions->cellFontBold(row, col) == marked, qPrintable(where));
            QVERIFY2((versions->cellBackColor(row, col) == valoresanteriores::changedColour())
                         == marked,
                     qPrintable(where));
            // ...and said in words to a screen reader.
            const QModelIndex cell = versions->model()->index(row - 1, col);
            QVERIFY2(cell.data(Qt::AccessibleDescriptionRole).toString().isEmpty() != marked,
                     qPrintable(where));
        }
        QCOMPARE(versions->textMatrix(b2, 4), QString("41"));

        sp.clear();
        sp.printers.push_back(true);
        QVERIFY(clickNamed(w, "Command2"));
        QCOMPARE(sp.printed.size(), 1);
        const QString paper = pdfTextOf(sp.printed.first());
        for (const char* seen : {"Antes del cambio 2", "Actual", "revisado", "Error en Digitación"})
            QVERIFY2(paper.contains(seen), qPrintable(QString(seen) + "\n" + paper));
        QCOMPARE(rowsIn("historialcambios"), 3);   // read-only: nothing written
        w->close();
    }

    // The listing takes the log of both days given, and refuses a period
    // given the wrong way round.
    void changeLogListing()
    {
        TempStore store;
        ScriptedPrompts sp;
        fillLaboratory();
        const QDate today = QDate::currentDate();
        for (const auto& [factura, day] : QList<std::pair<int, QDate>>{
                 {10, today.addDays(-1)}, {11, today}, {12, today}, {13, today.addDays(1)}})
            amb1().insert("historialcambios",
                          {"Factura", "plantilla", "usuario", "fecha", "descripcion"},
                          {factura, "HEMATOLOGIA", "admin", day, "motivo " + QString::number(factura)});

        QPointer<QWidget> w = openScreen("historial");
        QVERIFY(w);
        press(w, "Command1", sp);
        QVERIFY(!w || !w->isVisible());   // the screen gives way to the report
        const QString text = reportText("DataReport22", 22);
        QVERIFY2(text.contains(kLab), qPrintable(text));
        for (int factura : {10, 11, 12, 13})
            QVERIFY2(text.contains("motivo " + QString::number(factura)) == (factura == 11 || factura == 12),
                     qPrintable(text));
        closeAll();

        w = openScreen("historial");
        control<QDateEdit>(w, "DT1")->setDate(today.addDays(1));
        QCOMPARE(press(w, "Command1", sp),
                 QStringList{"Laprimera fecha no puede ser mayor que la segunda"});
        QVERIFY(w && w->isVisible());
        w->close();
    }
};

QTEST_MAIN(TestCorrections)
#include "test_corrections.moc"
