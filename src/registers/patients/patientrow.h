#pragma once
// One patient read anew by code, as both patient pickers hand it back.
#include "registers/pickers.h"

namespace tq {

// The stored patient, or nothing when the row is gone (another desk removed it).
std::optional<ChosenPatient> readPatient(std::int32_t code, bool withSex);

}  // namespace tq
