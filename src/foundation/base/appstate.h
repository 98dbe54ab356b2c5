#pragma once
// Program-wide values shared by the screens of one workstation.
#include <QDate>
#include <QString>
#include <cstdint>

namespace tq {

struct AppState {
    // Sign-on name of the current user, shown on the start panel (Form4.Label2).
    // "Ussname" at rest, before anyone signs on.
    QString currentUser = QStringLiteral("Ussname");
    // Working date, "DD/MM/YYYY" of the day the start panel opened (Form4.Label4).
    QString workingDate;
    // Which panel screen is open: 1 Form1, 5 Form5, 6 Form6, 10 factura3;
    // 7 while sign-on is loaded, 0 after.
    std::int16_t screenNumber = 0;
    // Who called the patient picker (1 factura3, 2 FOrden, 3 FImpresionResult,
    // 4 Form33), the supply picker (1, 2) and whom Form10 serves (1, 2).
    std::int16_t clientPicker = 0;
    std::int16_t articlePicker = 0;
    std::int16_t discountBoxFor = 0;
    // Card percentage read from `tarjeta` when the main window loads.
    std::int16_t cardPercentage = 0;
    // Administrator chosen in Form342, kept for the change log.
    QString authorisingAdmin;

    // Values of the laboratory flow (work table, result screens, corrections).
    bool enMesa = false;
    // Format ids, invoice and sheet numbers are 32-bit, as every code of a record.
    std::int32_t idFormatoActual = 0;
    std::int32_t idFormatoImpresion = 0;
    bool resultadoGuardado = false;
    std::int32_t facturaCambio = 0;
    std::int32_t numformatoCambio = 0;
    std::int16_t plantillaCambio = 0;   // template code 1 to 6
    // An insured patient pays this invoice himself (billing).
    std::int16_t pagoPacienteAsegurado = 0;
    // The kind of payment chosen in Form13 ("efectivo", "Credito", "Cheque"),
    // which only colours the invoice's caption; empty when nothing chose one.
    QString tipoPago;
};

AppState& state();
// Back to the values of a fresh start (used between sign-ons and by tests).
void resetState();

}  // namespace tq
