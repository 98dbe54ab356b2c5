// DataReport14: the exam catalogue for doctors, who tick by hand the exams
// they ask for in the column "SELECCIONADO".
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport14) { return examList(QStringLiteral("SELECCIONADO")); }
