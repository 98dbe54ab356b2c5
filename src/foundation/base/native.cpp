#include "foundation/base/native.h"

#include "foundation/base/modules.h"

#include <QString>

namespace tq::native {

namespace {

const QString kModule = QStringLiteral("libtarvenquil_native.so");

template <typename Api>
const Api* entryOf(const char* name)
{
    using Entry = const Api* (*)();
    const auto entry = reinterpret_cast<Entry>(moduleEntry(kModule, name));
    return entry ? entry() : nullptr;
}

}  // namespace

const Sqlite* sqlite()
{
    static const Sqlite* const api = entryOf<Sqlite>("tarvenquil_sqlite");
    return api;
}

const Sodium* sodium()
{
    static const Sodium* const api = entryOf<Sodium>("tarvenquil_sodium");
    return api;
}

QString moduleMissing()
{
    return QStringLiteral("no se encontró el módulo %1 junto al programa").arg(kModule);
}

}  // namespace tq::native
