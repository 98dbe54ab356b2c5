#pragma once
// Value helpers shared by every screen: money text, the classic reading of
// typed numbers, the checked conversions of codes, dates and ages.
#include <QDate>
#include <QList>
#include <QString>
#include <QVariant>
#include <cstdint>

namespace tq {

// Money as the laboratory has always shown and stored it: two decimals, no
// thousands separator, no leading zero below one (0 -> ".00", 0.5 -> ".50",
// -0.5 -> "-.50").
QString money(double amount);
// Money text of a value read from the store or typed (through Val).
QString money(const QVariant& amount);

// The leading number of a text, as typed numbers were always read: blanks
// anywhere are skipped, reading stops at the first other character.
// "12/5" -> 12, " 3.5kg" -> 3.5, "1 500" -> 1500, "abc" -> 0, "-2" -> -2.
double Val(const QString& text);

// True when the whole text (blanks aside) is a number, as the classic
// IsNumeric understood it for typed values ("12", "-3.5", ".5").
bool isNumeric(const QString& text);

// Codes and numbers of the laboratory's records (patients, exams, insurers,
// doctors, employees, invoices, orders, purchases, format ids, sheet numbers)
// are 32-bit whole numbers, read through this one checked conversion: the
// value is rounded as the classic conversion did, and one that a 32-bit number
// can't hold is an error of the action, never a silent wrap. Throws AppError.
// A null value reads 0; a text is read through Val.
std::int32_t toInt32(double value);
std::int32_t toInt32(const QVariant& value);
std::int32_t toInt32(const QString& text);

// Small program-wide switches (screen number, picker selectors, roles, flags)
// stay 16-bit, with the same checks. Throws AppError.
std::int16_t toInt16(double value);
std::int16_t toInt16(const QVariant& value);
std::int16_t toInt16(const QString& text);

// Calendar-boundary differences: the number of month (or year) boundaries
// crossed going from `from` to `to`, regardless of the day of the month.
int monthsBetween(const QDate& from, const QDate& to);
int yearsBetween(const QDate& from, const QDate& to);

// Age of a patient as the invoice and the patient screen compute it.
struct Age {
    int years = 0;
    int months = 0;
    QString text;   // "<years> Años <months> meses"
};
Age calculoedad(const QDate& birth, const QDate& today = QDate::currentDate());

// "DD/MM/YYYY" on labels, "DD/MM/YY" in date pickers.
QString dateLong(const QDate& d);
QString dateShort(const QDate& d);
// Record numbers as a sentence says them: "12", "12 y 15", "12, 15 y 20"; a
// list longer than `named` names its first ones and counts the rest
// ("1, 2 y 3 más").
QString spokenNumbers(const QList<std::int32_t>& numbers, qsizetype named = 20);
// Reads a typed or filter date: "D/M/YYYY" or "D/M/YY" (a time after it is
// ignored), or ISO "YYYY-MM-DD"; invalid QDate when the text is not a date.
// Two-digit years 00-29 are this century, 30-99 the last one.
QDate parseDate(const QString& text);

// The date of a value read from the store: a QDate, a QDateTime, or the ISO
// text ("YYYY-MM-DD", a time may follow) the embedded store hands back.
// Invalid for anything else.
QDate storedDate(const QVariant& value);

}  // namespace tq
