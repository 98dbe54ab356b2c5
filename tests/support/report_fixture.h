#pragma once
// Set-up the report tests share: the laboratory's heading data, exams and
// patients, invoices as the desk saves them, and a report read back as text,
// as the person holding the sheet reads it.
#include "pdftext.h"
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <optional>

namespace tq::test {

inline const QString kLab = QStringLiteral("Laboratorio Clínico Santa Lucía");
inline const QString kAddress = QStringLiteral("Barrio El Centro, 3 Calle, Comayagüela");
inline const QString kPhone = QStringLiteral("2233-4455");
inline const QString kFax = QStringLiteral("2233-4456");
inline const QString kRtn = QStringLiteral("08011999123456");
inline const QString kMail = QStringLiteral("lab@santalucia.hn");
// The heading's second line as the routine writes it.
inline const QString kAddressLine = kAddress + " telefono: " + kPhone + " fax: " + kFax;

// The laboratory's row of `datos`; returns an exam type to file exams under.
inline int fillLaboratory()
{
    amb1().execute("UPDATE datos SET nombre_lab = ?, direccion_lab = ?, telefono_lab = ?, "
                   "fax_lab = ?, rtn_lab = ?, correo_lab = ?",
                   {kLab, kAddress, kPhone, kFax, kRtn, kMail});
    return amb1().insert("TipoExamen", {"tipo_examen"}, {"Química"}).toInt();
}

inline int addExam(int type, const QString& name, double precio, double valor)
{
    const QStringList columns{"cod_tipo_examen", "examen", "precio", "valor"};
    return amb1().insert("Examenes", columns, {type, name, precio, valor}).toInt();
}

inline int addPatient(const QString& first, const QString& last, int insurer = 0)
{
    const QStringList columns{"nombre_paciente", "apellido_paciente", "direccion_paciente",
                              "Cod_seguro"};
    return amb1().insert("Pacientes", columns, {first, last, "Col. Kennedy", insurer}).toInt();
}

// How an invoice was paid; no cash amount given: all of it in cash.
struct Paid {
    std::optional<double> efectivo;
    double tarjeta = 0, cheque = 0;
};

// An invoice as the desk saves it: its lines at the exam's price, the extra
// ("Descuento" takes it off, anything else adds it), what was paid, and the
// card details when part of it went on a card.
inline void addInvoice(int factura, const QDate& day, int patient,
                       const QList<QPair<int, int>>& lines, Paid paid = {},
                       bool voided = false, const QString& extra = {}, double extraValue = 0,
                       std::optional<double> abono = {})
{
    double sum = 0;
    for (const auto& [exam, qty] : lines) {
        const double price =
            value("SELECT precio FROM Examenes WHERE cod_descripcionexamen = ?", {exam}).toDouble();
        amb1().insert("FacturaDetalle", {"factura", "cod_descripcionexamen", "cantidad", "subtotal"},
                      {factura, exam, qty, qty * price});
        sum += qty * price;
    }
    const double total = extra == QLatin1String("Descuento") ? sum - extraValue : sum + extraValue;
    amb1().insert("Factura",
                  {"factura", "fecha", "cod_paciente", "faturado", "sub_total", "adicional",
                   "valadicional", "total", "efectivo", "tarjeta", "cheque", "Abono", "anulada",
                   "tipo_factura"},
                  {factura, day, patient, "caja", sum, extra.isEmpty() ? QVariant() : extra,
                   extraValue, total, paid.efectivo.value_or(total), paid.tarjeta, paid.cheque,
                   abono.value_or(total), voided, "Contado"});
    if (paid.tarjeta > 0)
        amb1().insert("Datostarjeta", {"factura", "num_autorizacion", "num_tarjeta", "num_identidad"},
                      {factura, 5500 + factura, "Titular " + QString::number(factura),
                       "0801-1990-0" + QString::number(factura)});
}

// Every screen and preview closed; the main window, when open, stays.
inline void closeAll()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() != QLatin1String("MDIForm1"))
            w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The text as a reader reads it: the printer's "fi" and "fl" ligatures as letters.
inline QString asRead(QString text)
{
    return text.replace(QChar(0xFB01), QLatin1String("fi")).replace(QChar(0xFB02), QLatin1String("fl"));
}

// The lines of the text holding `what`, their blanks folded; the first of them.
inline QStringList linesWith(const QString& text, const QString& what)
{
    QStringList out;
    for (const QString& line : text.split('\n'))
        if (line.contains(what))
            out << line.simplified();
    return out;
}
inline QString lineWith(const QString& text, const QString& what)
{
    return linesWith(text, what).value(0);
}

// The report as it would be shown now, through a PDF file, as text.
inline QString reportText(const QString& report, int heading,
                          const QHash<QString, QString>& captions = {})
{
    static int n = 0;
    const QString file = QDir::temp().filePath(
        QString("tq_informe_%1_%2.pdf").arg(QCoreApplication::applicationPid()).arg(++n));
    if (!reportToPdf(report, heading, captions, file))
        return QStringLiteral("<no se escribió %1>").arg(report);
    const QString text = asRead(pdfText(file));
    QFile::remove(file);
    return text;
}

}  // namespace tq::test
