#pragma once
// Simple drawn pictures for the splash and the start panel.
#include <QPixmap>

namespace tq::pictures {

QPixmap flask(int size);      // the program's logo
QPixmap patients(int size);   // Pacientes
QPixmap exams(int size);      // Examenes
QPixmap employees(int size);  // Empleados
QPixmap invoice(int size);    // Facturación
QPixmap results(int size);    // Resultados
QPixmap exitDoor(int size);   // leave the system
QPixmap light(int size);      // the pause's lamp

}  // namespace tq::pictures
