#include "foundation/base/modules.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>

namespace tq {

QFunctionPointer moduleEntry(const QString& file, const char* entry)
{
    const QStringList places = {QCoreApplication::applicationDirPath(),
                                QStringLiteral(TARVENQUIL_BUILD_DIR)};
    for (const QString& place : places) {
        // A loaded module stays loaded when its QLibrary goes.
        QLibrary module(QDir(place).filePath(file));
        if (!module.load())
            continue;
        if (const QFunctionPointer f = module.resolve(entry))
            return f;
    }
    return nullptr;
}

}  // namespace tq
