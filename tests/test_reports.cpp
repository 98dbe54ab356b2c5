// The report engine on paper: the day's cut, a long list, and two small
// layouts of the test's own for what the laboratory's reports do not use (an
// invoice with totals by level and counts, a list with page numbers and dates
// in its own forms), run on a store with a few invoices, written to PDF and
// read back as text, as the person holding the sheet reads it.
#include "report_fixture.h"

#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/engine.h"
#include "foundation/reports/layout.h"
#include "reports/parts.h"

#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QtTest>

using namespace tq;
using namespace tq::report;
using namespace tq::report::parts;

// An invoice per page with its lines, the caption the print box sets, the
// total and the count of its lines; the invoices' own totals at the end.
TQ_DECLARE_REPORT(PruebaFactura)
{
    Layout l = layoutOn(Paper::Letter, "rsrfact1", "Factura de Prueba");
    Level invoice;
    invoice.pageBreakBefore = true;
    invoice.header = band(pair("Factura N°", "factura", 0, 0, 25, 20, Format::Whole)
                          + pair("Nombre Paciente", "nombre", 0, 6, 35, 90));
    Item count{.kind = Item::Kind::Total, .box = {21, 6, 10, 5}, .countRows = true};
    invoice.footer = band(QList<Item>{label("Etiqueta3", "Otros", {0, 0, 30, 5}),
                                      field("valadicional", {31, 0, 20, 5}, Format::Money)}
                          + captionedTotal("Total", "subtotal", 75, 0, 25, 25, "Command1")
                          + QList<Item>{caption("Lineas:", {0, 6, 20, 5}), count});
    const Table lines({{"Examen", "examen", 80},
                       {"Cantidad", "cantidad", 20, Format::Whole},
                       {"Subtotal", "subtotal", 25, Format::Money}});
    l.levels = {invoice, rowsOf("Command1", lines)};
    l.reportFooter = band(captionedTotal("Total facturado:", "total", 0, 0, 40, 25, ""));
    return l;
}

// A flat list of invoice lines with the profit of each, with page numbers and
// the date of the run in forms of its own.
TQ_DECLARE_REPORT(PruebaGanancia)
{
    Layout l;
    l.title = "Ganancias de Prueba";
    l.command = "rsRepFacgan";
    listOf(l, Table({{"Examen", "examen", 100}, {"Ganancia", "Expr3", 30, Format::Money}}));
    l.pageHeader.items << Item{.kind = Item::Kind::PrintDate, .text = "'Impreso el' dd/MM/yyyy",
                               .box = {140, 0, 50, 5}};
    l.pageFooter =
        band({Item{.kind = Item::Kind::PageNumber, .text = "Hoja %1/%2", .box = {0, 0, 30, 5}}});
    Item count{.kind = Item::Kind::Total, .level = "", .box = {140, 0, 20, 5}, .countRows = true};
    l.reportFooter = band(captionedTotal("Ganancia Total", "Expr3", 0, 0, 100, 30) << count);
    return l;
}

using namespace tq::test;

namespace {

const QDate kDay(2026, 11, 20);

QString d(const QDate& day) { return day.toString("dd/MM/yyyy"); }

ReportRun cut(const QString& filter)
{
    return ReportRun{.report = "DataReport2", .command = "rsrcorte_Grouping", .filter = filter,
                     .heading = 2};
}

}  // namespace

class TestReports : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TempStore> temp;
    std::unique_ptr<ScriptedPrompts> sp;
    int hemograma = 0, glucosa = 0, tiroides = 0, maria = 0, oneil = 0;

private slots:
    void init()
    {
        temp = std::make_unique<TempStore>();
        sp = std::make_unique<ScriptedPrompts>();
        const int type = fillLaboratory();
        hemograma = addExam(type, "Hemograma", 150, 60);
        glucosa = addExam(type, "Glucosa", 80.5, 20);
        tiroides = addExam(type, "r.Tiroides", 500, 300);
        maria = addPatient("María", "Zelaya");
        oneil = addPatient("Patrick", "O'Neil");
    }

    void cleanup()
    {
        closeAll();
        sp.reset();
        temp.reset();
    }

    // The heading rules the laboratory's own reports do not show: 0 keeps the
    // design's texts and no logo, 19 leaves an rtn label as designed, a fax
    // left out (26) or its caption kept (2) when there is none, a caption set
    // by the caller, and no laboratory row.
    void headingRules()
    {
        QString text = reportText("DataReport2", 0);
        QVERIFY2(text.contains("Nombre del laboratorio"), qPrintable(text));
        QVERIFY(text.contains("Direccion del laboratorio") && !text.contains("Santa Lucía"));
        text = reportText("DataReport2", 19);
        QVERIFY(text.contains("RTN del laboratorio") && !text.contains(kRtn));

        // The logo of the data folder goes on the heading; without it the
        // report still prints, with no picture; the design has none.
        const QString file = QDir(temp->folder()).filePath("informe.pdf");
        QVERIFY(reportToPdf("DataReport2", 2, {}, file));
        QVERIFY(!bytesOf(file).contains("/Subtype /Image"));
        QImage img(40, 30, QImage::Format_RGB32);
        img.fill(Qt::darkBlue);
        QVERIFY(img.save(QDir(temp->folder()).filePath("logo.jpg"), "JPG"));
        for (int heading : {2, 0}) {
            QVERIFY(reportToPdf("DataReport2", heading, {}, file));
            QCOMPARE(bytesOf(file).contains("/Subtype /Image"), heading == 2);
        }

        amb1().execute("UPDATE datos SET fax_lab = ?", {QString()});
        text = reportText("DataReport2", 26).simplified();
        QVERIFY2(text.contains(kAddress + " telefono: " + kPhone + " email: " + kMail),
                 qPrintable(text));
        text = reportText("DataReport2", 2).simplified();
        QVERIFY(text.contains(kAddress + " telefono: " + kPhone + " fax:") && !text.contains("email"));

        QVERIFY(reportText("DataReport2", 2, {{"rtn", "RTN en trámite"}}).contains("RTN en trámite"));
        amb1().execute("DELETE FROM datos");
        text = reportText("DataReport2", 2);
        QVERIFY(text.contains("Nombre del laboratorio") && text.contains("RTN del laboratorio"));
    }

    // An invoice with its lines, a page each, the caption set by name, the
    // total of its lines and their count; filtered by number, only its own.
    void invoicePages()
    {
        // A negative extra prints with its sign; its cents (.29 is not exact in
        // binary) must be rounded, not cut, before the invoices are added up.
        addInvoice(1, kDay, maria, {{hemograma, 1}, {glucosa, 2}}, {}, false, "Otros", -10.29);
        addInvoice(2, kDay, oneil, {{tiroides, 1}});
        ReportRun r{.report = "PruebaFactura", .command = "rsrfact1", .heading = 1,
                    .captions = {{"Etiqueta3", "Descuento"}}};
        runReport(r);
        QStringList pages = reportText("PruebaFactura", 1, r.captions).split('\f');
        pages.removeIf([](const QString& p) { return p.trimmed().isEmpty(); });
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[0].contains("María Zelaya") && !pages[0].contains("O'Neil"));
        QVERIFY(pages[1].contains("Patrick O'Neil") && pages[1].contains("r.Tiroides"));
        QVERIFY(pages[0].contains(kLab) && !pages[1].contains(kLab));   // the heading, once
        QCOMPARE(lineWith(pages[0], "Descuento"), QString("Descuento -10.29 Total 311.00"));
        QCOMPARE(lineWith(pages[0], "Lineas:"), QString("Lineas: 2"));
        QCOMPARE(lineWith(pages[1], "Total"), QString("Descuento .00 Total 500.00"));
        // The invoices' own totals, extra included, added over the invoices.
        QCOMPARE(lineWith(pages[1], "Total facturado:"), QString("Total facturado: 800.71"));

        r.filter = "factura = 2";
        runReport(r);
        const QString text = reportText("PruebaFactura", 1);
        QVERIFY(text.contains("r.Tiroides") && !text.contains("Hemograma"));
        QVERIFY(!text.contains("María Zelaya"));
        QVERIFY(text.contains("Otros"));   // no caption set: the design's
    }

    // A list over a slot its caller opened with its own text, filtered as it
    // stands and shown modally through the prompt service: the total and the
    // count of its rows, its own page number and date forms.
    void flatList()
    {
        amb1().rs("rsmultiusos").open("SELECT examen, precio - valor AS Expr3 FROM Examenes");
        const ReportRun r{.report = "PruebaGanancia", .command = "rsmultiusos", .filter = "Expr3 > 100",
                          .show = ReportRun::Show::Modal};
        QString seen;
        sp->onModal("PruebaGanancia", [&](QWidget* w) {
            seen = control<QLabel>(w, "Hoja")->accessibleDescription();
        });
        QCOMPARE(runReport(r), nullptr);
        QCOMPARE(sp->prompts.last().kind, Prompt::Modal);
        QVERIFY2(seen.contains("r.Tiroides") && !seen.contains("Glucosa"), qPrintable(seen));
        QVERIFY(seen.contains("Ganancia Total  200.00  1"));
        // On screen and on paper alike.
        for (const QString& page : {seen, reportText("PruebaGanancia", 0)}) {
            QVERIFY2(page.contains("Hoja 1/1") && !page.contains("Página"), qPrintable(page));
            QVERIFY(page.contains("Impreso el " + d(QDate::currentDate())));
        }
    }

    // No rows: the list still opens, on one page, with its total, and nothing
    // is said. Two hundred rows and a voided one left out: pages break, the
    // page header and number on every page, the heading once, every row once,
    // the total whole; PageDown and PageUp move through the preview's pages.
    void emptyAndLong()
    {
        const ReportRun run{.report = "DataReport10", .command = "rsRepFacgan", .filter = "anulada=0",
                            .heading = 10};
        auto* p = qobject_cast<ReportPreview*>(runReport(run));
        QVERIFY(p && QTest::qWaitForWindowExposed(p));
        QCOMPARE(p->document().pageCount(), 1);
        QCOMPARE(lineWith(reportText("DataReport10", 10), "Ganancia Total"), QString("Ganancia Total .00"));
        QVERIFY(sp->messages().isEmpty());
        {
            Transaction t;
            for (int i = 1; i <= 200; ++i)
                addInvoice(i, kDay, i % 2 ? maria : oneil, {{glucosa, 1}});
            addInvoice(201, kDay, oneil, {{tiroides, 1}}, {}, true);
            t.commit();
        }
        QCOMPARE(runReport(run), static_cast<QWidget*>(p));   // the same preview, its rows read again
        QCOMPARE(p->document().detailRows(), 200);
        const QString text = reportText("DataReport10", 10);
        QStringList pages = text.split('\f');
        pages.removeIf([](const QString& page) { return page.trimmed().isEmpty(); });
        QVERIFY(pages.size() >= 4);
        for (int i = 0; i < pages.size(); ++i) {
            QVERIFY(pages[i].contains("Cantidad"));
            QVERIFY(pages[i].contains(QString("Página %1 de %2").arg(i + 1).arg(pages.size())));
        }
        QCOMPARE(text.count(kLab), 1);
        QCOMPARE(text.count("Glucosa"), 200);
        QVERIFY(!text.contains("r.Tiroides"));   // voided
        QCOMPARE(lineWith(text, "Ganancia Total"), QString("Ganancia Total 12100.00"));

        QCOMPARE(p->currentPage(), 0);
        pressKey(p, Qt::Key_PageDown);
        QCOMPARE(p->currentPage(), 1);
        QCOMPARE(control<QLabel>(p, "Pagina")->text(),
                 QString("Página 2 de %1").arg(p->document().pageCount()));
        pressKey(p, Qt::Key_PageUp);
        pressKey(p, Qt::Key_PageUp);
        QCOMPARE(p->currentPage(), 0);
    }

    // The preview: its rows kept when the shared recordset is filtered again,
    // refreshed (not doubled) by a second run, "Guardar PDF", "Imprimir",
    // Escape; a run straight to the printer opens none.
    void preview()
    {
        addInvoice(1, kDay, maria, {{hemograma, 1}});
        addInvoice(2, kDay.addDays(1), oneil, {{glucosa, 1}});
        QPointer<QWidget> w = runReport(cut(QString("anulada =0 and fecha >= '%1' and fecha <= '%2'")
                                                .arg(d(kDay), d(kDay.addDays(1)))));
        auto* p = qobject_cast<ReportPreview*>(w.data());
        QVERIFY(p && QTest::qWaitForWindowExposed(p));
        QCOMPARE(p->document().detailRows(), 2);
        amb1().rs("rsrcorte_Grouping").setFilter("anulada =0 and fecha = " + d(kDay));
        QCOMPARE(p->document().detailRows(), 2);   // a snapshot of its run
        auto* page = control<QLabel>(p, "Hoja");
        QVERIFY(page->accessibleDescription().contains("Patrick O'Neil"));

        QCOMPARE(runReport(cut("anulada =0 and fecha = " + d(kDay))), w.data());
        int shown = 0;   // refreshed, not doubled
        for (QWidget* other : QApplication::topLevelWidgets())
            shown += other->objectName() == "DataReport2" && other->isVisible();
        QCOMPARE(shown, 1);
        QCOMPARE(p->document().detailRows(), 1);
        QVERIFY(!page->accessibleDescription().contains("Patrick O'Neil"));

        // Guardar PDF: a good name; a folder that does not exist.
        const QString good = QDir(temp->folder()).filePath("corte");
        sp->files.push_back(good);
        QVERIFY(clickNamed(p, "GuardarPDF"));
        QVERIFY(sp->messages().isEmpty());
        QVERIFY(pdfText(good + ".pdf").contains("María Zelaya"));
        const QString bad = QDir(temp->folder()).filePath("no/existe.pdf");
        sp->files.push_back(bad);
        QVERIFY(clickNamed(p, "GuardarPDF"));
        QCOMPARE(sp->lastMessage(),
                 QString("No se pudo guardar el informe en el archivo \"%1\": la carpeta o el "
                         "archivo no existe.")
                     .arg(QDir::toNativeSeparators(bad)));
        QVERIFY(QDir(temp->folder()).entryList({"*.pdf"}, QDir::Files).size() == 1);

        // Imprimir, by the button and by Ctrl+P; a cancelled dialog prints nothing.
        sp->printers = {true, false, true};
        QVERIFY(clickNamed(p, "Imprimir"));
        QVERIFY(clickNamed(p, "Imprimir"));
        pressKey(p, Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(sp->printed.size(), 2);
        QVERIFY(pdfTextOf(sp->printed[0]).contains("TOTAL GENERAL:"));
        QCOMPARE(sp->prompts.last().text, QString("Corte de Ventas Diarias"));
        pressKey(p, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(w.isNull());

        ReportRun r = cut("");
        r.show = ReportRun::Show::Printer;
        sp->printers = {true};
        QCOMPARE(runReport(r), nullptr);
        QCOMPARE(sp->printed.size(), 3);
        QCOMPARE(lineWith(pdfTextOf(sp->printed.last()), "TOTAL GENERAL:"),
                 QString("TOTAL GENERAL: 230.50"));
        QVERIFY(!visibleWindow("DataReport2"));
    }
};

QTEST_MAIN(TestReports)
#include "test_reports.moc"
