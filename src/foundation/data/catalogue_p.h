#pragma once
// The named commands of amb1, in the order the data environment has always
// listed them. Private to the data environment.
#include "foundation/data/amb1.h"

namespace tq::detail {

const QList<CommandDef>& commandCatalogue();

}  // namespace tq::detail
