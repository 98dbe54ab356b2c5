#pragma once
// Records the billing and register tests fill, and the walk through a save's refusals.
#include "testsupport.h"

#include <QCoreApplication>
#include <QDate>
#include <QPointer>
#include <optional>

namespace tq::test {

void addInsurer(int code, const QString& company);
int addExamType(const QString& name);
// An exam of `type` at its catalogue price and its price for the insured.
int addExam(int type, const QString& name, double price, double insured = 0);
// `exam` on the insurer's price list.
void addListPrice(int insurer, int exam, double price);
// A patient, insured when `insurer` is not 0.
int addPatient(const QString& name, const QString& surname, int insurer = 0,
               const QDate& birth = QDate(1990, 5, 20), const QString& sex = "Femenino");

// The screen has closed and is gone, as every screen goes on closing.
template <typename T>
bool gone(const QPointer<T>& w)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return !w;
}

// The first row of a query as a grid shows it, null as "NULL".
QStringList row(const QString& sql, const QVariantList& binds = {});

// A save's refusal: its message, the control focused, what is then entered (or picked) there.
struct Refusal {
    QString message, field, value;
};
// Presses `button` once per refusal: its message alone, the focus on its field, `table`
// unchanged and the icon when given. Returns the first mismatch.
QString refusals(QWidget* w, ScriptedPrompts& sp, const QString& button, const QList<Refusal>& steps,
                 const QString& table, std::optional<Icon> icon = {});

// On the invoice or the order screen: Enter on the patient's name, choosing `name` in the picker.
void pickPatient(QWidget* w, ScriptedPrompts& sp, const QString& name);
// Types a line on the blank row: quantity, then code and Enter.
void keyLine(QWidget* w, const QString& quantity, int code);
// A new document on `screen` for `who` with the lines keyed (quantity, code) and the doctor
// entry chosen (-1 none), totalled.
QWidget* composed(ScriptedPrompts& sp, const QString& screen, const QString& who,
                  const QList<QPair<QString, int>>& keyed, int doctor = -1);

}  // namespace tq::test
