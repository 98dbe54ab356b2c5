#pragma once
// The laboratory's records as the billing and register tests fill a store
// with them, and the walk through a save's refusals that their screens share.
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

// One refusal of a save: the message shown alone, the control that gets the
// focus, and what is then entered there (a combo picks the entry of that text).
struct Refusal {
    QString message, field, value;
};
// Presses `button` once per refusal: each must show its message alone, with
// the focus on its field, `table` (when named) unchanged and, when given, the icon. Returns
// the first mismatch, empty when every refusal held.
QString refusals(QWidget* w, ScriptedPrompts& sp, const QString& button, const QList<Refusal>& steps,
                 const QString& table, std::optional<Icon> icon = {});

}  // namespace tq::test
