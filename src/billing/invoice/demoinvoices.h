#pragma once
// The demo laboratory's invoices: a few patients billed today, paid and on
// credit, whose exams wait on the work table, so that a new user finds the
// bench with work on it; and two quotations waiting to be billed.
namespace tq {

// Bills the demo invoices through the invoice save and saves the demo
// orders through the order save, on a demo store that has
// no invoice yet (nothing happens on one that has). Throws DbError or
// AppError, having written nothing of the invoice it was saving.
void addDemoInvoices();

}  // namespace tq
