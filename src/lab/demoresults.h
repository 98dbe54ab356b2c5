#pragma once
// The demo laboratory's results: a few of its waiting exams already filled,
// through the sheets' own saves, so that a new user finds sheets to print
// ("Impresion de Resultados"), to print again and to correct.
namespace tq {

// Fills the hematology of the first demo invoice and the chemistry of the
// second (on credit: the list asks before printing it) and marks the first
// printed. Nothing happens on a store that already has results, or whose
// demo invoices are not there. Throws DbError, each sheet whole or not at all.
void addDemoResults();

}  // namespace tq
