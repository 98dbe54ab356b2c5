#pragma once
// How a screen asks the user for a patient or an exam. The caller names
// itself (the picker behaves as that caller needs), the picker opens modally
// through the prompt service, and the choice comes back as a value; nothing is
// written into the caller's controls behind its back. Closing the picker
// without choosing gives nothing.
//
//     if (const auto p = tq::choosePatient(tq::PatientCaller::Invoice)) {
//         nameBox->setText(p->name);   // "Nombre, Apellido"
//         insurer = p->insurer;
//     }
//
// The pickers are FBuscarCliente and listaclientes (patients, in
// registers/patients) and FBuscarArticulo (exams, in registers/exams). The
// selector they serve is also kept in the program state (clientPicker,
// articlePicker) while they are open, as the laboratory's procedures read it.
#include <QDate>
#include <QString>
#include <cstdint>
#include <optional>

namespace tq {

// Who asks for a patient: the picker's selector.
enum class PatientCaller : std::int16_t {
    Invoice = 1,          // factura3
    Order = 2,            // FOrden
    ResultPrinting = 3,   // FImpresionResult: also wants the sex
    Receivables = 4,      // Form33
};

struct ChosenPatient {
    std::int32_t code = 0;   // cod_paciente
    QString name;            // nombre_paciente + ", " + apellido_paciente
    QString address;         // direccion_paciente
    QDate birth;             // fecha_nacimiento (null when the row has none)
    std::int32_t insurer = 0;   // cod_seguro; 0 for a patient without insurer
    QString sex;             // sexo, filled only for ResultPrinting
};

// FBuscarCliente, modal, for the caller.
std::optional<ChosenPatient> choosePatient(PatientCaller caller);

// listaclientes, modal: every patient by name; its choice carries code and name.
std::optional<ChosenPatient> choosePatientFromList();

// Who asks for an exam: the picker's selector.
enum class ExamCaller : std::int16_t {
    Invoice = 1,   // factura3
    Order = 2,     // FOrden
};

struct ChosenExam {
    std::int32_t code = 0;   // cod_descripcionexamen
    QString name;            // examen
    double price = 0;        // the insurer's price, or Examenes.precio
};

// FBuscarArticulo, modal, for the caller whose patient has `insurer` (0 for
// none): an insured patient is offered only his insurer's list, at its prices.
// `title`, when given, heads the list ("PRECIOS NORMALES", the insurer's name).
std::optional<ChosenExam> chooseExam(ExamCaller caller, std::int32_t insurer,
                                     const QString& title = {});

}  // namespace tq
