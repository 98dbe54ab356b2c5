#pragma once
#include <QSqlDatabase>

namespace tq {

// Fills a store that has only its first-start rows with a small, realistic
// laboratory: insurers with price lists, doctors, exam types and exams (a few
// referred ones named "r. ..."), patients of both sexes, children and adults,
// insured and not. Throws AppError when the store already holds patients or
// exams, so real data is never mixed with the demo. Throws DbError on failure.
void fillDemo(const QSqlDatabase& db);

}  // namespace tq
