#pragma once
// The normal value printed beside a parameter on a result sheet: one rule,
// asymmetrical on purpose, used wherever a parameter template is laid out.
#include <QDate>
#include <QList>
#include <QString>
#include <cstdint>

namespace tq {

// The two marks of a sheet's patient, worked out once per sheet. Left as
// they are (not a child, sex 0) where a stored sheet is shown again.
struct PatientClass {
    bool esNino = false;
    std::int16_t sexoCodigo = 0;   // 1 man, 2 woman, 0 unknown
};

// A child is under 15 by the difference of the year numbers (the birthday
// doesn't count); the adult flag overrides the age.
PatientClass patientClass(const QString& sexo, const QDate& birth, bool eadulto,
                          const QDate& today = QDate::currentDate());
// The class of the patient of an invoice. Throws DbError.
PatientClass patientClassOfInvoice(std::int32_t factura, const QDate& today = QDate::currentDate());

// One stored normal value: the population (1 man, 2 woman, 3 child, 4 any)
// and the text (range, blank, unit).
struct NormalRow {
    std::int16_t codSexo = 0;
    QString valor;
};

// The rule over a parameter's rows in ascending population order: the text
// to print, or empty. Where it would read past the last row (a child's row
// alone for an adult, a man's row alone for anyone else) the cell is empty.
QString elegirValorNormal(const QList<NormalRow>& rows, PatientClass who);
// The same over the stored rows of a parameter. Throws DbError.
QString elegirValorNormal(std::int32_t codParametro, PatientClass who);

}  // namespace tq
