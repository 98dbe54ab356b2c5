#pragma once
// The referring doctors as every list of them reads: "code - name surname",
// by code.
#include <QString>
#include <cstdint>

class QComboBox;

namespace tq {

QString doctorEntry(std::int32_t code, const QString& nombre, const QString& apellido);

// Replaces the combo's entries with the doctors (each entry's data its
// code), after a blank entry when `blankFirst`; nothing is chosen. Returns
// how many doctors there are.
int fillDoctors(QComboBox* combo, bool blankFirst = false);

}  // namespace tq
