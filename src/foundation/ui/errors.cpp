#include "foundation/ui/errors.h"

#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/prompt.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTextStream>

namespace tq {

void logLine(const QString& line)
{
    const QString folder = dataFolder();
    if (folder.isEmpty())
        return;
    QFile f(QDir(folder).filePath(QStringLiteral("tarvenquil.log")));
    if (!f.open(QIODevice::Append | QIODevice::Text))
        return;
    QTextStream out(&f);
    out << QDateTime::currentDateTime().toString(Qt::ISODate) << ' ' << line << '\n';
}

static void report(int depth, const QString& what, const QString& userText,
                   const QString& logText)
{
    rollbackOpenTransaction(depth);
    logLine(QStringLiteral("Error al %1: %2").arg(what, logText));
    prompts().message(QStringLiteral("No se pudo %1.\n\n%2").arg(what, userText), Icon::Critical);
}

bool guarded(const QString& what, const std::function<void()>& fn)
{
    // An action run inside another (a modal screen opened by a save) undoes
    // only its own work; the outer action's transaction stays its own.
    const int depth = amb1().transactionDepth();
    try {
        fn();
        return true;
    } catch (const DbError& e) {
        report(depth, what, e.message(),
               e.message() + QStringLiteral(" | ") + e.detail()
                   + (e.sql().isEmpty() ? QString() : QStringLiteral(" | ") + e.sql()));
    } catch (const AppError& e) {
        report(depth, what, e.message(), e.message());
    } catch (const std::exception& e) {
        const QString t = QString::fromLocal8Bit(e.what());
        report(depth, what, QStringLiteral("Error inesperado: %1").arg(t), t);
    } catch (...) {
        report(depth, what, QStringLiteral("Error inesperado."), QStringLiteral("excepción desconocida"));
    }
    return false;
}

void onClick(QAbstractButton* button, const QString& what, std::function<void()> fn)
{
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [what, fn = std::move(fn)] { guarded(what, fn); });
}

}  // namespace tq
