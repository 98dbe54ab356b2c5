// DataReport3: the exam catalogue by exam type.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport3) { return examList(); }
