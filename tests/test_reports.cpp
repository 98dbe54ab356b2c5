// The report engine on paper: three small layouts of the test's own (a flat
// list, a day cut grouped by date, an invoice with its lines) run on a store
// with a few invoices, written to PDF and read back as text, as the person
// holding the sheet reads it.
#include "pdftext.h"
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/engine.h"
#include "foundation/reports/layout.h"
#include "foundation/reports/report.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QRegularExpression>
#include <QtTest>

using namespace tq;
using namespace tq::test;
using tq::report::Align;
using tq::report::Band;
using tq::report::Box;
using tq::report::Format;
using tq::report::Item;
using tq::report::Layout;
using tq::report::Level;

namespace {

Item caption(const QString& name, const QString& text, Box box, double pt = 9, bool bold = false)
{
    return Item{.kind = Item::Kind::Caption, .name = name, .text = text, .box = box, .pt = pt,
                .bold = bold};
}
Item field(const QString& column, Box box, Format f = Format::Text, Align a = Align::Left)
{
    return Item{.kind = Item::Kind::Field, .text = column, .box = box, .align = a, .format = f};
}
Item total(const QString& column, Box box)
{
    return Item{.kind = Item::Kind::Total, .text = column, .box = box, .align = Align::Right,
                .format = Format::Money};
}

// The heading band with the design's placeholders.
Band heading()
{
    Band b;
    b.height = 24;
    b.items << Item{.kind = Item::Kind::Picture, .name = "logo", .text = "logo", .box = {0, 0, 20, 20}}
            << caption("laboratorio", "NOMBRE DEL LABORATORIO", {25, 0, 160, 7}, 12, true)
            << caption("direccion", "DIRECCION DEL LABORATORIO", {25, 8, 170, 5})
            << caption("rtn", "RTN DEL LABORATORIO", {25, 14, 100, 5});
    return b;
}

}  // namespace

// A day cut: a group per date, its totals, and the report's total.
TQ_DECLARE_REPORT(PruebaCorte)
{
    Layout l;
    l.title = "Corte de Prueba";
    l.command = "rsrcorte_Grouping";
    l.encabezado = heading();
    l.pageHeader.height = 7;
    l.pageHeader.items << caption("", "Factura", {0, 0, 20, 6}, 9, true)
                       << caption("", "Nombre Paciente:", {22, 0, 80, 6}, 9, true)
                       << caption("", "Total", {105, 0, 25, 6}, 9, true)
                       << caption("", "Efectivo", {135, 0, 25, 6}, 9, true);
    Level day;
    day.header.height = 6;
    day.header.items << caption("", "Fecha:", {0, 0, 15, 6}) << field("fecha", {16, 0, 30, 6}, Format::Date);
    day.footer.height = 7;
    day.footer.items << caption("", "TOTALES", {22, 0, 40, 6}, 9, true)
                     << total("total", {105, 0, 25, 6}) << total("efectivo", {135, 0, 25, 6});
    Level detail;
    detail.rows = "rcorte";
    detail.header.height = 5;
    detail.header.items << field("factura", {0, 0, 20, 5}, Format::Whole)
                        << field("nombre", {22, 0, 80, 5})
                        << field("total", {105, 0, 25, 5}, Format::Money, Align::Right)
                        << field("efectivo", {135, 0, 25, 5}, Format::Money, Align::Right);
    l.levels << day << detail;
    l.reportFooter.height = 8;
    l.reportFooter.items << caption("", "TOTAL GENERAL:", {22, 1, 50, 6}, 9, true)
                         << total("total", {105, 1, 25, 6});
    return l;
}

// An invoice per page, with its lines and the caption the print box sets.
TQ_DECLARE_REPORT(PruebaFactura)
{
    Layout l;
    l.title = "Factura de Prueba";
    l.command = "rsrfact1";
    l.encabezado = heading();
    Level invoice;
    invoice.pageBreakBefore = true;
    invoice.header.height = 12;
    invoice.header.items << caption("", "Factura N°", {0, 0, 25, 5}) << field("factura", {26, 0, 20, 5}, Format::Whole)
                         << caption("", "Nombre Paciente", {0, 6, 35, 5}) << field("nombre", {36, 6, 90, 5});
    invoice.footer.height = 12;
    invoice.footer.items << caption("Etiqueta3", "Otros", {0, 0, 30, 5}) << field("valadicional", {31, 0, 20, 5}, Format::Money)
                         << caption("", "Total", {80, 0, 20, 5})
                         << Item{.kind = Item::Kind::Total, .text = "subtotal", .level = "Command1",
                                 .box = {105, 0, 25, 5}, .align = Align::Right, .format = Format::Money}
                         << caption("", "Lineas:", {0, 6, 20, 5})
                         << Item{.kind = Item::Kind::Total, .box = {21, 6, 10, 5}, .countRows = true};
    Level lines;
    lines.rows = "Command1";
    lines.header.height = 5;
    lines.header.items << field("examen", {0, 0, 80, 5}) << field("cantidad", {82, 0, 15, 5}, Format::Whole)
                       << field("subtotal", {105, 0, 25, 5}, Format::Money, Align::Right);
    l.levels << invoice << lines;
    l.reportFooter.height = 6;
    l.reportFooter.items << caption("", "Total facturado:", {0, 0, 40, 5})
                         << Item{.kind = Item::Kind::Total, .text = "total", .level = "",
                                 .box = {105, 0, 25, 5}, .align = Align::Right, .format = Format::Money};
    return l;
}

// A flat list of invoice lines with the profit of each.
TQ_DECLARE_REPORT(PruebaGanancia)
{
    Layout l;
    l.title = "Ganancias de Prueba";
    l.command = "rsRepFacgan";
    l.pageHeader.height = 6;
    l.pageHeader.items << caption("", "Examen", {0, 0, 60, 5}) << caption("", "Ganancia", {100, 0, 30, 5})
                       << Item{.kind = Item::Kind::PrintDate, .text = "'Impreso el' dd/MM/yyyy",
                               .box = {140, 0, 50, 5}};
    l.pageFooter.height = 6;
    l.pageFooter.items << Item{.kind = Item::Kind::PageNumber, .text = "Hoja %1/%2", .box = {0, 0, 30, 5}};
    Level row;
    row.header.height = 5;
    row.header.items << field("examen", {0, 0, 60, 5}) << field("Expr3", {100, 0, 30, 5}, Format::Money, Align::Right);
    l.levels << row;
    l.reportFooter.height = 6;
    l.reportFooter.items << caption("", "Ganancia Total", {0, 0, 60, 5}) << total("Expr3", {100, 0, 30, 5})
                         << Item{.kind = Item::Kind::Total, .level = "", .box = {140, 0, 20, 5}, .countRows = true};
    return l;
}

namespace {

const QDate kDay(2026, 11, 20);

QString d(const QDate& day) { return day.toString("dd/MM/yyyy"); }

struct Store {
    int hemograma = 0, glucosa = 0, tiroides = 0;
    int maria = 0, oneil = 0;
    int next = 1;

    Store()
    {
        const int type = amb1().insert("TipoExamen", {"tipo_examen"}, {"Química"}).toInt();
        auto exam = [&](const QString& name, double precio, double valor) {
            return amb1()
                .insert("Examenes", {"cod_tipo_examen", "examen", "precio", "valor"},
                        {type, name, precio, valor})
                .toInt();
        };
        hemograma = exam("Hemograma", 150, 60);
        glucosa = exam("Glucosa", 80.5, 20);
        tiroides = exam("r.Tiroides", 500, 300);
        auto patient = [](const QString& first, const QString& last) {
            return amb1()
                .insert("Pacientes", {"nombre_paciente", "apellido_paciente", "Cod_seguro"},
                        {first, last, 0})
                .toInt();
        };
        maria = patient("María", "Zelaya");
        oneil = patient("Patrick", "O'Neil");
        amb1().execute("UPDATE datos SET nombre_lab = ?, direccion_lab = ?, telefono_lab = ?, "
                       "fax_lab = ?, correo_lab = ?, rtn_lab = ?",
                       {"Laboratorio Santa Lucía", "Barrio El Centro", "2233-4455", "2233-4456",
                        "lab@santalucia.hn", "08011999123456"});
    }

    // An invoice paid in cash, with lines of (exam, quantity) at the exam's price.
    int invoice(const QDate& day, int patient, const QList<QPair<int, int>>& lines,
                bool voided = false, const QString& extra = {}, double extraValue = 0)
    {
        const int number = next++;
        double sum = 0;
        for (const auto& [exam, qty] : lines) {
            const double price = amb1().scalar("SELECT precio FROM Examenes WHERE "
                                               "cod_descripcionexamen = ?", {exam}).toDouble();
            amb1().insert("FacturaDetalle", {"factura", "cod_descripcionexamen", "cantidad", "subtotal"},
                          {number, exam, qty, qty * price});
            sum += qty * price;
        }
        amb1().insert("Factura",
                      {"factura", "fecha", "cod_paciente", "faturado", "sub_total", "total",
                       "efectivo", "tarjeta", "cheque", "Abono", "anulada", "adicional",
                       "valadicional", "tipo_factura"},
                      {number, day, patient, "admin", sum, sum + extraValue, sum + extraValue, 0, 0,
                       sum + extraValue, voided, nullIfEmpty(extra), extraValue, "Contado"});
        return number;
    }
};

ReportRun cut(const QString& filter, int heading = 2)
{
    ReportRun r;
    r.report = "PruebaCorte";
    r.command = "rsrcorte_Grouping";
    r.filter = filter;
    r.heading = heading;
    return r;
}

QString between(const QDate& a, const QDate& b)
{
    return QString("anulada =0 and fecha >= '%1' and fecha <= '%2'").arg(d(a), d(b));
}

// The text of the report as it would be shown now.
QString paper(const QString& report, int heading, const QHash<QString, QString>& captions = {})
{
    static int n = 0;
    const QString file = QDir::temp().filePath(QString("tq_informe_%1_%2.pdf")
                                                   .arg(QCoreApplication::applicationPid())
                                                   .arg(++n));
    if (!reportToPdf(report, heading, captions, file))
        return "<no se escribió>";
    const QString text = pdfText(file);
    QFile::remove(file);
    return text;
}

// The line of the text holding `what`, its blanks folded.
QString lineWith(const QString& text, const QString& what)
{
    for (const QString& line : text.split('\n'))
        if (line.contains(what))
            return line.simplified();
    return {};
}

QList<ReportPreview*> previews(const QString& name)
{
    QList<ReportPreview*> out;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<ReportPreview*>(w); p && p->objectName() == name && p->isVisible())
            out << p;
    return out;
}

}  // namespace

class TestReports : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TempStore> temp;
    std::unique_ptr<ScriptedPrompts> sp;
    std::unique_ptr<Store> s;

private slots:
    void init()
    {
        temp = std::make_unique<TempStore>();
        sp = std::make_unique<ScriptedPrompts>();
        s = std::make_unique<Store>();
    }

    void cleanup()
    {
        QList<QPointer<QWidget>> open;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (qobject_cast<ReportPreview*>(w))
                open << w;
        qDeleteAll(open);
        s.reset();
        sp.reset();
        temp.reset();
    }

    // Heading numbers: the design's texts with 0, the letterhead (19) without
    // rtn, the commissions (26) with the mail and "RTN: ", a fax left out
    // when there is none, and no laboratory row at all.
    void headingRules()
    {
        s->invoice(kDay, s->maria, {{s->hemograma, 1}});
        runReport(cut(""));

        QString text = paper("PruebaCorte", 0);
        QVERIFY(text.contains("NOMBRE DEL LABORATORIO"));
        QVERIFY(text.contains("DIRECCION DEL LABORATORIO"));
        QVERIFY(!text.contains("Santa Lucía"));

        text = paper("PruebaCorte", 19);
        QVERIFY(text.contains("Laboratorio Santa Lucía"));
        QVERIFY(text.contains("Barrio El Centro telefono: 2233-4455 fax: 2233-4456"));
        QVERIFY(text.contains("RTN DEL LABORATORIO"));
        QVERIFY(!text.contains("08011999123456"));

        text = paper("PruebaCorte", 26);
        QVERIFY(text.contains("Barrio El Centro telefono: 2233-4455 fax: 2233-4456 email: "
                              "lab@santalucia.hn"));
        QVERIFY(text.contains("RTN: 08011999123456"));
        amb1().execute("UPDATE datos SET fax_lab = ?", {QString()});
        text = paper("PruebaCorte", 26);
        QVERIFY(text.contains("Barrio El Centro telefono: 2233-4455 email: lab@santalucia.hn"));
        text = paper("PruebaCorte", 2);
        QVERIFY(text.contains("Barrio El Centro telefono: 2233-4455 fax:"));
        QVERIFY(!text.contains("email"));

        // An address longer than its line is printed whole, in a smaller
        // letter, on the half-letter invoice's narrow heading.
        amb1().execute("UPDATE datos SET direccion_lab = ?",
                       {"Colonia Palmira, Avenida República de Chile, frente al Hospital Viera"});
        ReportRun invoice;
        invoice.report = "DataReport1";
        invoice.command = "rsrfact1";
        invoice.heading = 1;
        runReport(invoice);
        text = paper("DataReport1", 1).simplified();
        QVERIFY2(text.contains("Colonia Palmira, Avenida República de Chile, frente al Hospital Viera "
                               "telefono: 2233-4455 fax:"), qPrintable(text.left(300)));
        amb1().execute("UPDATE datos SET direccion_lab = 'Barrio El Centro'");

        // A caption set by the caller wins over the heading's.
        text = paper("PruebaCorte", 2, {{"rtn", "RTN en trámite"}});
        QVERIFY(text.contains("RTN en trámite"));

        amb1().execute("DELETE FROM datos");
        text = paper("PruebaCorte", 2);
        QVERIFY(text.contains("NOMBRE DEL LABORATORIO"));
        QVERIFY(text.contains("RTN DEL LABORATORIO"));
    }

    // The logo of the data folder goes on the heading; without it the report
    // still prints, with no picture.
    void logo()
    {
        runReport(cut(""));
        const QString file = QDir(temp->folder()).filePath("sin.pdf");
        QVERIFY(reportToPdf("PruebaCorte", 2, {}, file));
        QVERIFY(!bytesOf(file).contains("/Subtype /Image"));
        QImage img(40, 30, QImage::Format_RGB32);
        img.fill(Qt::darkBlue);
        QVERIFY(img.save(QDir(temp->folder()).filePath("logo.jpg"), "JPG"));
        QVERIFY(reportToPdf("PruebaCorte", 2, {}, file));
        QVERIFY(bytesOf(file).contains("/Subtype /Image"));
        QVERIFY(reportToPdf("PruebaCorte", 0, {}, file));   // the design has no logo
        QVERIFY(!bytesOf(file).contains("/Subtype /Image"));
    }

    // An invoice with its lines, a page each, the caption set by name, the
    // total of its lines and their count; filtered by number, only its own.
    void invoicePages()
    {
        const int a = s->invoice(kDay, s->maria, {{s->hemograma, 1}, {s->glucosa, 2}}, false,
                                 "Descuento", -10);
        const int b = s->invoice(kDay, s->oneil, {{s->tiroides, 1}});
        ReportRun r;
        r.report = "PruebaFactura";
        r.command = "rsrfact1";
        r.heading = 1;
        r.captions = {{"Etiqueta3", "Descuento"}};
        runReport(r);
        QString text = paper("PruebaFactura", 1, r.captions);
        QStringList pages = text.split('\f', Qt::SkipEmptyParts);
        pages.removeIf([](const QString& p) { return p.trimmed().isEmpty(); });
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[0].contains("María Zelaya") && !pages[0].contains("O'Neil"));
        QVERIFY(pages[1].contains("Patrick O'Neil") && pages[1].contains("r.Tiroides"));
        QVERIFY(pages[0].contains("Laboratorio Santa Lucía"));   // the heading, once
        QVERIFY(!pages[1].contains("Laboratorio Santa Lucía"));
        QCOMPARE(lineWith(pages[0], "Descuento"), QString("Descuento -10.00 Total 311.00"));
        QCOMPARE(lineWith(pages[0], "Lineas:"), QString("Lineas: 2"));
        QCOMPARE(lineWith(pages[1], "Total"), QString("Descuento .00 Total 500.00"));
        // The invoices' own totals, extra included, added over the invoices.
        QCOMPARE(lineWith(pages[1], "Total facturado:"), QString("Total facturado: 801.00"));

        r.filter = QString("factura = %1").arg(b);
        runReport(r);
        text = paper("PruebaFactura", 1);
        QVERIFY(text.contains("r.Tiroides") && !text.contains("Hemograma"));
        QVERIFY(text.contains("Otros"));   // no caption set: the design's
        QVERIFY(!text.contains(QString("Factura N° %1").arg(a)));
    }

    // A flat list: the profit of the lines not voided, their total and count.
    void flatList()
    {
        s->invoice(kDay, s->maria, {{s->hemograma, 2}});   // 2 * (150 - 60) = 180
        s->invoice(kDay, s->oneil, {{s->glucosa, 1}});     // 60.50
        s->invoice(kDay, s->oneil, {{s->tiroides, 1}}, true);
        Recordset& rs = amb1().rs("rsRepFacgan");
        if (rs.isOpen())
            rs.close();
        rs.open();
        rs.setFilter("anulada=0");
        const QString text = paper("PruebaGanancia", 0);
        QVERIFY2(text.contains("Hemograma"), qPrintable(text));
        QVERIFY(!text.contains("r.Tiroides"));
        QCOMPARE(lineWith(text, "Ganancia Total"), QString("Ganancia Total 240.50 2"));
        // Its own page number and the date of the run, in the forms it declares.
        QVERIFY(text.contains("Hoja 1/1") && !text.contains("Página"));
        QVERIFY(text.contains("Impreso el " + d(QDate::currentDate())));

        // Over a slot its caller opened with its own text: filtered as it stands.
        amb1().rs("rsmultiusos").open("SELECT examen, precio - valor AS Expr3 FROM Examenes");
        ReportRun r;
        r.report = "PruebaGanancia";
        r.command = "rsmultiusos";
        r.filter = "Expr3 > 100";
        r.show = ReportRun::Show::Modal;
        QString seen;
        sp->onModal("PruebaGanancia", [&](QWidget* w) {
            seen = control<QLabel>(w, "Hoja")->accessibleDescription();
        });
        runReport(r);
        QVERIFY2(seen.contains("r.Tiroides") && !seen.contains("Glucosa"), qPrintable(seen));
        QVERIFY(seen.contains("Ganancia Total  200.00  1"));
    }

    // No rows: the report still opens, with its heading, headers and footers.
    // Two hundred: pages break, the page header on every page, the total whole.
    void emptyAndLong()
    {
        QWidget* w = runReport(cut(between(kDay, kDay)));
        QVERIFY(w);
        auto* preview = qobject_cast<ReportPreview*>(w);
        QVERIFY(preview);
        QCOMPARE(preview->document().pageCount(), 1);
        QVERIFY(sp->messages().isEmpty());
        QString text = paper("PruebaCorte", 2);
        QVERIFY(text.contains("Laboratorio Santa Lucía"));
        QVERIFY(text.contains("Nombre Paciente:"));
        QCOMPARE(lineWith(text, "TOTAL GENERAL:"), QString("TOTAL GENERAL: .00"));

        {
            Transaction t;
            for (int i = 0; i < 200; ++i)
                s->invoice(kDay, i % 2 ? s->maria : s->oneil, {{s->glucosa, 1}});
            t.commit();
        }
        runReport(cut(between(kDay, kDay)));
        QCOMPARE(preview->document().detailRows(), 200);
        text = paper("PruebaCorte", 2);
        QStringList pages = text.split('\f');
        pages.removeIf([](const QString& p) { return p.trimmed().isEmpty(); });
        QVERIFY(pages.size() >= 4);
        for (int i = 0; i < pages.size(); ++i) {
            QVERIFY(pages[i].contains("Nombre Paciente:"));
            QVERIFY(pages[i].contains(QString("Página %1 de %2").arg(i + 1).arg(pages.size())));
        }
        QCOMPARE(text.count("Laboratorio Santa Lucía"), 1);
        QCOMPARE(text.count("O'Neil"), 100);
        QCOMPARE(lineWith(text, "TOTAL GENERAL:"), QString("TOTAL GENERAL: 16100.00"));
    }

    // The preview: its rows kept when the shared recordset is filtered again,
    // refreshed (not doubled) by a second run, pages by keys, "Guardar PDF",
    // "Imprimir", Escape.
    void preview()
    {
        s->invoice(kDay, s->maria, {{s->hemograma, 1}});
        s->invoice(kDay.addDays(1), s->oneil, {{s->glucosa, 1}});
        QPointer<QWidget> w = runReport(cut(between(kDay, kDay.addDays(1))));
        auto* p = qobject_cast<ReportPreview*>(w.data());
        QVERIFY(p);
        QVERIFY(QTest::qWaitForWindowExposed(p));
        QCOMPARE(p->document().detailRows(), 2);
        amb1().rs("rsrcorte_Grouping").setFilter("anulada =0 and fecha = " + d(kDay));
        QCOMPARE(p->document().detailRows(), 2);   // a snapshot of its run
        auto* page = control<QLabel>(p, "Hoja");
        QVERIFY(page->accessibleDescription().contains("Patrick O'Neil"));

        QCOMPARE(runReport(cut("anulada =0 and fecha = " + d(kDay))), w.data());
        QCOMPARE(previews("PruebaCorte").size(), 1);
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
        QVERIFY(!QFile::exists(bad));

        // Imprimir, by the button and by Ctrl+P; a cancelled dialog prints nothing.
        sp->printers = {true, false, true};
        QVERIFY(clickNamed(p, "Imprimir"));
        QVERIFY(clickNamed(p, "Imprimir"));
        pressKey(p, Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(sp->printed.size(), 2);
        QVERIFY(pdfTextOf(sp->printed[0]).contains("TOTAL GENERAL:"));
        QCOMPARE(sp->prompts.last().text, QString("Corte de Prueba"));

        // PageDown and PageUp move through the pages of a long run.
        {
            Transaction t;
            for (int i = 0; i < 120; ++i)
                s->invoice(kDay, s->oneil, {{s->glucosa, 1}});
            t.commit();
        }
        runReport(cut("anulada =0 and fecha = " + d(kDay)));
        QVERIFY(p->document().pageCount() > 1);
        QCOMPARE(p->currentPage(), 0);
        pressKey(p, Qt::Key_PageDown);
        QCOMPARE(p->currentPage(), 1);
        QCOMPARE(control<QLabel>(p, "Pagina")->text(),
                 QString("Página 2 de %1").arg(p->document().pageCount()));
        pressKey(p, Qt::Key_PageUp);
        pressKey(p, Qt::Key_PageUp);
        QCOMPARE(p->currentPage(), 0);

        pressKey(p, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(w.isNull());
    }

    // Modal: the preview through the prompt service; Printer: straight to it.
    void modalAndPrinter()
    {
        s->invoice(kDay, s->maria, {{s->hemograma, 1}});
        ReportRun r = cut("");
        r.show = ReportRun::Show::Modal;
        QString seen;
        sp->onModal("PruebaCorte", [&](QWidget* w) {
            seen = control<QLabel>(w, "Hoja")->accessibleDescription();
        });
        QCOMPARE(runReport(r), nullptr);
        QCOMPARE(sp->prompts.last().kind, Prompt::Modal);
        QVERIFY(seen.contains("Laboratorio Santa Lucía") && seen.contains("María Zelaya"));

        r.show = ReportRun::Show::Printer;
        sp->printers = {true};
        QCOMPARE(runReport(r), nullptr);
        QCOMPARE(sp->printed.size(), 1);
        QCOMPARE(lineWith(pdfTextOf(sp->printed[0]), "TOTAL GENERAL:"), QString("TOTAL GENERAL: 150.00"));
        QVERIFY(previews("PruebaCorte").isEmpty());
    }
};

QTEST_MAIN(TestReports)
#include "test_reports.moc"
