#include "foundation/base/appstate.h"

namespace tq {

static AppState g_state;

AppState& state() { return g_state; }

void resetState() { g_state = AppState{}; }

}  // namespace tq
