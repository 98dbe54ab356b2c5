#pragma once
// The large store the benchmark runs on: a laboratory after two busy years.
// Made once through the program's own schema and reused by later runs; the
// same seed always gives the same store.
#include <QDate>
#include <QString>
#include "bare.h"


namespace bench {

// How much of each register the fill writes.
struct Sizes {
    int patients = 100000;
    int doctors = 40;
    int employees = 50;
    int invoices = 200000;
    int lines = 1000000;     // invoice lines in all
    int waiting = 10000;     // units of exams still on the work table
    int sheets = 50000;      // saved result sheets
    int supplies = 500;
    int suppliers = 25;
    int purchases = 1500;
    int orders = 20000;      // quotations, a quarter of them still pending

    // A hundredth of the large store, for checking the fill itself.
    static Sizes small();
};

// Invoices run from the first to the last day; Sundays the laboratory is closed.
inline const QDate kFirstDay{2024, 1, 2};
inline const QDate kLastDay{2025, 12, 31};

// An employee with a right to enter, whose password the sign-on path types.
inline const QString kSignOnUser = QStringLiteral("kcastro");
inline const QString kSignOnPassword = QStringLiteral("Hemograma-2024");

// The invoice in the middle of the store: the one printed, and whose day is cut.
int probeInvoice(const Sizes& sizes);
// The day of an invoice, as stored.
QDate invoiceDay(Connection* db, int invoice);

// Fills a store that the program has just created (schema and first-start
// rows only) in one transaction. Throws StoreError.
void fillStore(const QString& path, const Sizes& sizes);

// The large store in `benchDir`: reused when an earlier run completed it,
// otherwise made anew (a half-made one is thrown away).
struct LargeStore {
    QString key;               // the fill's version and the schema's fingerprint
    QString folder;            // the data folder, with lab.db inside
    QString path;              // lab.db
    qint64 bytes = 0;
    double fillSeconds = -1;   // -1 when it was made by an earlier run
};
LargeStore largeStore(const QString& benchDir, bool rebuild);

}  // namespace bench
