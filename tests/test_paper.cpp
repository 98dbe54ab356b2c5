// The laboratory's own reports on paper: run through the screens and menu
// entries that run them, saved as PDF from their preview or printed, and read
// back as text, as the person holding the sheet reads it: the laboratory's
// heading, a day's cut adding up, the card sales with what the card company
// keeps, the paid invoices of an insurer, an invoice printed with its extra,
// a voided invoice shown and never printed, and the voided copy after voiding.
#include "report_fixture.h"

#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/engine.h"
#include "frame/MDIForm1.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QPointer>
#include <QRadioButton>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QtTest>

using namespace tq;
using namespace tq::test;

namespace {

struct Lab {
    int ana = 0, oneil = 0, carla = 0, luis = 0;
    int hemograma = 0, glucosa = 0, urea = 0;
};

// The laboratory with three exams, patients (Luis insured by Palic), two
// insurers and the card company's rate.
Lab fillLab()
{
    const int type = fillLaboratory();
    amb1().execute("UPDATE IST SET IST = ?", {0.06});
    amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa, Contacto, Tel, Banco, Cuenta) "
                   "VALUES (?, ?, ?, ?, ?, ?), (?, ?, ?, ?, ?, ?)",
                   {3, "Palic", "Marta Pineda", "2222-1111", "Banco Atlántida", "01-223-5",
                    5, "Seguros Crefisa", "Juan Ríos", "2222-9999", "Ficohsa", "77-001"});
    return Lab{addPatient("Ana", "Zelaya"), addPatient("Patrick", "O'Neil"),
               addPatient("Carla", "Anulada"), addPatient("Luis", "Reyes", 3),
               addExam(type, "Hemograma", 150, 75), addExam(type, "Glucosa", 80, 40),
               addExam(type, "Urea", 120, 60)};
}

// Where each word of the first page stands, in points from the page's left
// edge, and the page's width.
struct Word {
    QString text;
    double left = 0, right = 0, top = 0, bottom = 0;
};
QList<Word> wordsOf(const QByteArray& pdf, double* pageWidth)
{
    QTemporaryFile f(QDir::temp().filePath("tq_palabras_XXXXXX.pdf"));
    if (!f.open() || f.write(pdf) != pdf.size())
        return {};
    f.flush();
    QProcess p;
    p.start("pdftotext", {"-bbox", "-f", "1", "-l", "1", f.fileName(), "-"});
    if (!p.waitForFinished(30000))
        return {};
    const QString html = QString::fromUtf8(p.readAllStandardOutput());
    const QRegularExpression page(R"re(<page width="([\d.]+)")re");
    *pageWidth = page.match(html).captured(1).toDouble();
    QList<Word> out;
    const QRegularExpression word(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re");
    for (auto it = word.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        out << Word{m.captured(5), m.captured(1).toDouble(), m.captured(3).toDouble(),
                    m.captured(2).toDouble(), m.captured(4).toDouble()};
    }
    return out;
}

// Words of one line of the first page printed over each other, or beyond
// the paper's edge.
QStringList overprintedOn(const QByteArray& pdf)
{
    double pageWidth = 0;
    const QList<Word> words = wordsOf(pdf, &pageWidth);
    QStringList out;
    for (int i = 0; i < words.size(); ++i) {
        const Word& a = words.at(i);
        if (a.left < 0 || a.right > pageWidth)
            out << a.text + " (fuera del papel)";
        for (int j = i + 1; j < words.size(); ++j) {
            const Word& b = words.at(j);
            const bool sameLine = qAbs(a.top - b.top) < 2;
            if (sameLine && a.left < b.right - 0.5 && b.left < a.right - 0.5)
                out << a.text + " / " + b.text;
        }
    }
    return out;
}

// What the open preview of `report` saves through its "Guardar PDF", as read
// from the file the user named.
QString savedFromPreview(const QString& report, ScriptedPrompts& sp, const QString& folder)
{
    static int n = 0;
    const QString file = QDir(folder).filePath(QStringLiteral("%1_%2.pdf").arg(report).arg(++n));
    sp.files.push_back(file);
    ReportPreview* preview = ReportPreview::find(report);
    if (!preview || !clickNamed(preview, "GuardarPDF"))
        return QStringLiteral("<sin vista previa de %1 o sin Guardar PDF>").arg(report);
    return asRead(pdfText(file));
}

}  // namespace

class TestPaper : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TempStore> temp;
    std::unique_ptr<ScriptedPrompts> sp;
    Lab lab;

private slots:
    void init()
    {
        temp = std::make_unique<TempStore>();
        sp = std::make_unique<ScriptedPrompts>();
        lab = fillLab();
    }

    void cleanup()
    {
        closeAll();
        delete MDIForm1::instance();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        sp.reset();
        temp.reset();
    }

    // The heading by report number: the name, the address with phone and fax,
    // and the rtn bare; the letterhead without the rtn; the commissions with the
    // mail and "RTN: ".
    void headingOfTheLaboratory()
    {
        MDIForm1* main = MDIForm1::showMain();
        QVERIFY(main);
        main->findChild<QAction*>("cortedia")->trigger();
        QString text = savedFromPreview("DataReport2", *sp, temp->folder());
        QVERIFY2(text.contains(kLab), qPrintable(text));
        QCOMPARE(lineWith(text, "telefono:"), kAddressLine);
        QCOMPARE(lineWith(text, kRtn), kRtn);
        QVERIFY(text.contains("Corte de Ventas Diarias"));
        QVERIFY(!text.contains("email") && !text.contains("RTN"));
        QVERIFY(!text.contains("del laboratorio"));   // no design placeholder left

        main->findChild<QAction*>("membre")->trigger();
        text = savedFromPreview("DataReport19", *sp, temp->folder());
        QVERIFY2(text.contains(kLab), qPrintable(text));
        QCOMPARE(lineWith(text, "telefono:"), kAddressLine);
        QVERIFY(!text.contains(kRtn) && !text.contains("RTN"));

        // The commissions, as their screen runs them: one doctor's unpaid invoices.
        const int doctor = amb1()
                               .insert("Doctores", {"Nombre_doctor", "Apellido_doctor", "porsentaje"},
                                       {"Carlos", "Mejía", 10})
                               .toInt();
        addInvoice(40, QDate(2026, 5, 4), lab.ana, {{lab.hemograma, 2}}, {300});
        amb1().execute("UPDATE Factura SET Cod_doctor = ? WHERE factura = 40", {doctor});
        const ReportRun run{.report = "ReporComision", .command = "rscomision_Grouping",
                            .filter = QString("pagada_doc = 0 and cod_doctor = %1").arg(doctor),
                            .heading = 26};
        QVERIFY(runReport(run));
        text = savedFromPreview("ReporComision", *sp, temp->folder());
        QVERIFY2(text.contains(kLab), qPrintable(text));
        // The longer line of 26 wraps within its two lines.
        QVERIFY2(text.simplified().contains(kAddressLine + " email: " + kMail), qPrintable(text));
        QCOMPARE(lineWith(text, kRtn), "RTN: " + kRtn);
        QCOMPARE(lineWith(text, "TOTAL COMISION:"), QString("TOTAL COMISION: 30.00"));

        // A laboratory whose address takes the room the settings give it: the
        // heading's lines still stand whole on the paper.
        const QString longAddress =
            "Colonia Villa Universitaria, Bloque 12, Casa 1503, frente al Hospital Escuela, "
            "Tegucigalpa";
        amb1().execute("UPDATE datos SET direccion_lab = ?", {longAddress});
        QVERIFY(runReport(run));
        text = savedFromPreview("ReporComision", *sp, temp->folder());
        QVERIFY2(text.simplified().contains(longAddress + " telefono: " + kPhone + " fax: " + kFax
                                            + " email: " + kMail),
                 qPrintable(text));
    }

    // The day's cut from the menu, and Form8 over the same day and the one
    // before: the voided invoice and the other day's stay out, each day's totals
    // and the general total add up to that day's invoices. A day with no
    // invoices opens an empty cut, without a word.
    void daysCutAddsUpTheDaysInvoices()
    {
        const QDate today = QDate::currentDate();
        const QDate yesterday = today.addDays(-1);
        addInvoice(1, today, lab.ana, {{lab.hemograma, 1}}, {150});
        addInvoice(2, today, lab.oneil, {{lab.glucosa, 1}, {lab.hemograma, 1}}, {30, 200, 0});
        addInvoice(3, today, lab.carla, {{lab.urea, 4}}, {480}, true);
        addInvoice(4, yesterday, lab.luis, {{lab.glucosa, 1}}, {80});
        addInvoice(5, today, lab.ana, {{lab.urea, 1}}, {0, 0, 100.25}, false, "Descuento", 19.75);
        addInvoice(6, yesterday, lab.oneil, {{lab.glucosa, 2}}, {160}, true);
        // Today: 150 + 230 + 100.25 = 480.25; cash 180, card 200, cheque 100.25.
        const QString todays = "TOTALES 480.25 180.00 200.00 100.25";

        MDIForm1* main = MDIForm1::showMain();
        main->findChild<QAction*>("cortedia")->trigger();
        QString text = savedFromPreview("DataReport2", *sp, temp->folder());
        QVERIFY2(text.contains("Ana Zelaya") && text.contains("Patrick O'Neil"), qPrintable(text));
        QVERIFY(!text.contains("Carla Anulada"));   // voided
        QVERIFY(!text.contains("Luis Reyes"));      // yesterday
        QCOMPARE(linesWith(text, "TOTALES"), QStringList{todays});
        QCOMPARE(lineWith(text, "TOTAL GENERAL:"), QString("TOTAL GENERAL: 480.25"));
        QCOMPARE(lineWith(text, "Patrick O'Neil"), QString("2 Patrick O'Neil caja 230.00 30.00 200.00 .00"));
        QVERIFY(sp->messages().isEmpty());
        closeAll();

        // Form8 over yesterday and today: a group a day, the voided ones still out.
        QPointer<QWidget> w = openScreen("Form8");
        control<QDateEdit>(w, "DT1")->setDate(yesterday);
        control<QDateEdit>(w, "DT2")->setDate(today);
        QVERIFY(clickNamed(w, "Command1"));
        text = savedFromPreview("DataReport2", *sp, temp->folder());
        QCOMPARE(linesWith(text, "TOTALES"), (QStringList{"TOTALES 80.00 80.00 .00 .00", todays}));
        QCOMPARE(lineWith(text, "TOTAL GENERAL:"), QString("TOTAL GENERAL: 560.25"));
        // Yesterday's group, its invoice and its totals come before today's.
        const QString folded = text.simplified();
        QVERIFY(folded.indexOf(yesterday.toString("dd/MM/yyyy")) < folded.indexOf("Luis Reyes"));
        QVERIFY(folded.indexOf("Luis Reyes") < folded.indexOf("TOTALES 80.00"));
        QVERIFY(folded.indexOf(today.toString("dd/MM/yyyy")) > folded.indexOf("TOTALES 80.00"));
        QVERIFY(!text.contains("Carla Anulada") && !text.contains("160.00"));
        closeAll();

        // A day with no invoices: the cut opens, empty, and nothing is said.
        w = openScreen("Form8");
        control<QDateEdit>(w, "DT1")->setDate(today.addDays(-30));
        control<QDateEdit>(w, "DT2")->setDate(today.addDays(-30));
        QVERIFY(clickNamed(w, "Command1"));
        QVERIFY(visibleWindow("DataReport2"));
        QCOMPARE(ReportPreview::find("DataReport2")->document().pageCount(), 1);
        text = savedFromPreview("DataReport2", *sp, temp->folder());
        QVERIFY2(text.contains(kLab) && text.contains("Corte de Ventas Diarias"), qPrintable(text));
        QVERIFY(!text.contains("TOTALES") && !text.contains("Zelaya"));
        QCOMPARE(lineWith(text, "TOTAL GENERAL:"), QString("TOTAL GENERAL: .00"));
        QVERIFY2(sp->messages().isEmpty(), qPrintable(sp->messages().join('|')));
    }

    // The card sales of a period with what the card company keeps at the rate in
    // IST and the net; the invoices an insurer has paid, under the pending list's
    // own title and footer.
    void cardSalesAndPaidInvoicesOfAnInsurer()
    {
        const QDate day(2026, 5, 4);
        addInvoice(1, day, lab.ana, {{lab.hemograma, 1}}, {0, 150});
        addInvoice(2, day, lab.oneil, {{lab.glucosa, 1}, {lab.urea, 1}}, {50, 150});
        addInvoice(3, day, lab.carla, {{lab.urea, 1}}, {120});                // cash only
        addInvoice(4, day.addDays(1), lab.ana, {{lab.glucosa, 1}}, {0, 80});
        addInvoice(5, day.addDays(5), lab.ana, {{lab.urea, 1}}, {0, 120});    // out of the period

        QPointer<QWidget> w = openScreen("Fcorteventastarjeta");
        control<QDateEdit>(w, "DT1")->setDate(day);
        control<QDateEdit>(w, "DT2")->setDate(day.addDays(1));
        QVERIFY(clickNamed(w, "Command1"));
        QString text = savedFromPreview("ReporVentasTarjeta", *sp, temp->folder());
        // Card 150 at 6 %: 9.00 kept, 141.00 net.
        QCOMPARE(lineWith(text, "Titular 1"), QString("1 5501 150.00 9.00 141.00 Titular 1 0801-1990-01"));
        QCOMPARE(lineWith(text, "Titular 2"), QString("2 5502 150.00 9.00 141.00 Titular 2 0801-1990-02"));
        QVERIFY2(!text.contains("Titular 3") && !text.contains("Titular 5"), qPrintable(text));
        // A day's sums, then the next day's, then the period's.
        QCOMPARE(linesWith(text, "Sub Total:"),
                 (QStringList{"Sub Total: 300.00", "Sub Total: 80.00", "Sub Total: 380.00"}));
        QCOMPARE(linesWith(text, "Porcentaje:"),
                 (QStringList{"Porcentaje: 18.00", "Porcentaje: 4.80", "Porcentaje: 22.80"}));
        QCOMPARE(linesWith(text, "Total:").filter(QRegularExpression("^Total:")),
                 (QStringList{"Total: 282.00", "Total: 75.20", "Total: 357.20"}));
        QVERIFY(text.contains(kLab) && text.contains(kRtn));
        closeAll();

        // Luis (Palic) has two invoices settled and one still owed; Ana's cash
        // invoice paid by nobody's insurer is not Palic's.
        addInvoice(10, day, lab.luis, {{lab.hemograma, 1}}, {0});
        addInvoice(11, day, lab.luis, {{lab.urea, 1}, {lab.glucosa, 1}}, {0});
        addInvoice(12, day, lab.luis, {{lab.glucosa, 1}}, {0});
        for (const auto& [factura, estado] : {std::pair{10, true}, {11, true}, {11, true}, {12, false}})
            amb1().insert("cxc", {"factura", "Cod_paciente", "estado"}, {factura, lab.luis, estado});
        w = openScreen("Form35");
        pickEntry(control<QComboBox>(w, "Combo1"), "3   Palic");
        QVERIFY(clickNamed(w, "Command1"));
        text = savedFromPreview("DataReport18", *sp, temp->folder());
        QVERIFY2(text.contains("DETALLE DE FACTURAS PENDIENTES"), qPrintable(text));
        QVERIFY(text.contains("Palic") && text.contains("Marta Pineda") && text.contains("01-223-5"));
        QVERIFY(!text.contains("Seguros Crefisa"));
        QCOMPARE(text.count("Luis Reyes"), 2);   // an invoice with two settled rows stands once
        QCOMPARE(lineWith(text, "TOTAL ADEUDADO"), QString("TOTAL ADEUDADO 350.00"));
        QVERIFY(!text.contains("80.00"));        // the one still owed
    }

    // The print box prints the half-letter invoice and the ticket with "Otros",
    // "Descuento" or "Recargo" in front of the extra, the lines and the totals.
    void invoicePrintedWithItsExtra()
    {
        const QDate day(2026, 5, 4);
        addInvoice(1, day, lab.ana, {{lab.hemograma, 1}, {lab.glucosa, 2}}, {310});
        addInvoice(2, day, lab.oneil, {{lab.urea, 1}}, {108}, false, "Descuento", 12.0, 50.0);
        addInvoice(3, day, lab.ana, {{lab.glucosa, 1}}, {95.5}, false, "Recargo", 15.5);

        auto print = [&](int factura, const char* option) {
            QPointer<QWidget> w = openScreen("FImpresion");
            tick(control<QRadioButton>(w, option));
            retype(edit(w, "Text1"), QString::number(factura));
            sp->printers.push_back(true);
            const int before = int(sp->printed.size());
            clickNamed(w, "Command1");
            return sp->printed.size() == before + 1 ? asRead(pdfTextOf(sp->printed.last()))
                                                    : QString("<no se imprimió>");
        };

        // Half letter: the heading, the patient, the lines and the total.
        QString text = print(1, "Option2");
        QVERIFY2(text.contains(kLab) && text.contains(kRtn), qPrintable(text));
        QVERIFY(text.contains("Factura N° 1") && text.contains("Ana Zelaya"));
        QCOMPARE(lineWith(text, "Glucosa"), QString("%1 Glucosa 2 160.00").arg(lab.glucosa));
        QCOMPARE(lineWith(text, "Total"), QString("Total 310.00"));
        QVERIFY(text.simplified().contains("NO SE ACEPTAN CAMBIOS NI DEVOLUCIONES"));
        // The ticket, with what was paid and what is owed.
        text = print(2, "Option1");
        QVERIFY2(text.contains(kLab) && text.contains("Patrick O'Neil"), qPrintable(text));
        QCOMPARE(lineWith(text, "Sub Total"), QString("Sub Total 120.00"));
        QCOMPARE(lineWith(text, "Impuesto"), QString("Impuesto 0.00"));
        QCOMPARE(lineWith(text, "Pago"), QString("Pago 50.00"));
        QCOMPARE(lineWith(text, "Saldo"), QString("Saldo 58.00"));
        QVERIFY(text.contains("La factura es beneficio de todos EXIJALA!!!"));

        // The extra under its own word on both papers, on the half letter at
        // the end of the biller's line, with nothing printed over anything.
        const QList<QPair<int, QString>> extras = {
            {1, "Otros .00"}, {2, "Descuento 12.00"}, {3, "Recargo 15.50"}};
        for (const auto& [factura, line] : extras) {
            text = print(factura, "Option2");
            QVERIFY2(lineWith(text, "Facturado por:").endsWith(line), qPrintable(text));
            QCOMPARE(overprintedOn(sp->printed.last()), QStringList());
            QCOMPARE(lineWith(print(factura, "Option1"), line.section(' ', 0, 0)), line);
            QCOMPARE(overprintedOn(sp->printed.last()), QStringList());
        }

        // An exam whose name takes the room the catalogue gives it: the name
        // keeps off the quantity and the price, on both papers.
        amb1().execute("UPDATE Examenes SET examen = ? WHERE cod_descripcionexamen = ?",
                       {"Anticuerpos antinucleares (ANA) por inmunofluorescencia", lab.glucosa});
        for (const char* option : {"Option1", "Option2"}) {
            text = print(3, option);
            QVERIFY2(text.contains("Anticuerpos"), qPrintable(text));
            const QStringList over = overprintedOn(sp->printed.last());
            QVERIFY2(over.isEmpty(), qPrintable(option + QString(": ") + over.join(", ")));
        }

        // With the laboratory's logo in its folder and an address longer than
        // its line, the heading's address line is printed whole, in a smaller
        // letter, clear of the logo and inside the paper.
        const QString address = "Colonia Palmira, Avenida República de Chile, frente al Hospital Viera";
        const QString addressLine = address + " telefono: " + kPhone + " fax: " + kFax;
        amb1().execute("UPDATE datos SET direccion_lab = ?", {address});
        QImage logo(120, 90, QImage::Format_RGB32);
        logo.fill(Qt::darkBlue);
        QVERIFY(logo.save(QDir(temp->folder()).filePath("logo.jpg"), "JPG"));
        QVERIFY2(print(1, "Option2").simplified().contains(addressLine), qPrintable(addressLine));
        double width = 0;
        const QList<Word> words = wordsOf(sp->printed.last(), &width);
        QVERIFY(width > 0 && !words.isEmpty());
        const double mm = 72 / 25.4;
        const double margin = 8 * mm, logoRight = margin + 28 * mm, logoBottom = margin + 22 * mm;
        QStringList clashing;
        for (const Word& word : words)
            if (addressLine.contains(word.text) && word.top < logoBottom
                && (word.left < logoRight || word.right > width - margin))
                clashing << word.text;
        QVERIFY(sp->printed.last().contains("/Subtype /Image"));   // the logo is on it
        QVERIFY2(clashing.isEmpty(), qPrintable(clashing.join(' ')));
        QVERIFY(sp->messages().isEmpty());
    }

    // A voided invoice in the print box is shown with its banner and nothing is
    // printed; voiding through the number box leaves two of three exams on the
    // work table and the copy on screen reads voided.
    void voidedInvoiceIsShownNotPrinted()
    {
        const QDate day(2026, 5, 4);
        addInvoice(7, day, lab.carla, {{lab.urea, 1}}, {120}, true);
        QPointer<QWidget> w = openScreen("FImpresion");
        retype(edit(w, "Text1"), "7");
        sp->printers.push_back(true);
        QVERIFY(clickNamed(w, "Command1"));
        QVERIFY(sp->printed.isEmpty());   // the printer was ready: nothing was sent
        QWidget* box = visibleWindow("Form31");
        QVERIFY(box && !control<QWidget>(box, "Command1")->isEnabled());
        QString text = savedFromPreview("DataReport15", *sp, temp->folder());
        QVERIFY2(text.contains("FACTURA ANULADA"), qPrintable(text));
        QVERIFY(text.contains("Carla Anulada") && text.contains("Factura N° 7"));
        QVERIFY(text.contains(kLab));
        closeAll();

        // Three exams waiting on the work table for invoice 8.
        addInvoice(8, day, lab.oneil, {{lab.hemograma, 1}, {lab.glucosa, 1}, {lab.urea, 1}}, {350});
        for (int exam : {lab.hemograma, lab.glucosa, lab.urea})
            amb1().insert("EvaluadoTemporal", {"factura", "cod_descripcionexamen", "examen"},
                          {8, exam, value("SELECT examen FROM Examenes WHERE cod_descripcionexamen = ?",
                                          {exam})});
        w = openScreen("Form32");
        retype(edit(w, "Text1"), "8");
        QVERIFY(clickNamed(w, "Command1"));
        box = visibleWindow("Form31");
        QVERIFY(box);
        text = savedFromPreview("DataReport13", *sp, temp->folder());
        QVERIFY2(lineWith(text, "Faturado por:").startsWith("Faturado por: caja"), qPrintable(text));
        QVERIFY(!text.contains("FACTURA ANULADA"));
        QVERIFY(lineWith(text, "Total").endsWith("Total 350.00"));

        sp->answers.push_back(Answer::Yes);
        sp->inputs.push_back(QString("Error de digitación"));
        QVERIFY(clickNamed(box, "Command1"));
        QCOMPARE(count("SELECT COUNT(*) FROM EvaluadoTemporal WHERE factura = 8"), 2);
        QVERIFY(value("SELECT anulada FROM Factura WHERE factura = 8").toBool());
        QVERIFY(!ReportPreview::find("DataReport13") || !visibleWindow("DataReport13"));
        text = savedFromPreview("DataReport15", *sp, temp->folder());
        QVERIFY2(text.contains("FACTURA ANULADA"), qPrintable(text));
        QVERIFY(text.contains("Factura N° 8") && text.contains("Patrick O'Neil"));
        QCOMPARE(lineWith(text, "Hemograma"), QString("%1 Hemograma 1 150.00").arg(lab.hemograma));
        // The voided copy is what the paper says now, not the earlier run's rows.
        QCOMPARE(reportText("DataReport15", 15).count("FACTURA ANULADA"), 1);
    }
};

QTEST_MAIN(TestPaper)
#include "test_paper.moc"
