#pragma once
// The insurer half of the receivables reports (Form33 and Form35): the combo
// of insurers and the report of the insurer chosen there, or of all of them.
class QComboBox;
class QWidget;

namespace tq {

struct ReportRun;

// ">>>Seleccione una<<<" first, then every insurer as its code, three blanks
// and its company name. Each entry keeps its code, so that a company whose
// name begins with a digit ("3M Salud") is still read by its own code.
void fillInsurerCombo(QComboBox* combo);

// Runs `run` for the insurer chosen in `combo` ("Cod_Seguro =" and its code).
// At the prompt line the user is asked whether he wants the report of every
// insurer; on anything but Yes nothing is shown. Returns whether it ran.
bool runInsurerReport(QComboBox* combo, ReportRun run, QWidget* screen);

}  // namespace tq
