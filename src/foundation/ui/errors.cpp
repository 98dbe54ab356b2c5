#include "foundation/ui/errors.h"

#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/prompt.h"

#include <QAbstractButton>
#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTextStream>
#include <cerrno>
#include <new>

namespace tq {

namespace {

BoundaryRecord g_record;

// Told instead of the program's own (English) text of an unforeseen failure;
// that text goes to the log.
const char* const kUnexpected = "Ocurrió un error inesperado. El detalle quedó anotado en el "
                                "archivo tarvenquil.log de la carpeta de datos.";

void report(int depth, const QString& sentence, const QString& userText, const QString& logText)
{
    rollbackOpenTransaction(depth);
    logLine(QStringLiteral("%1 | %2").arg(sentence, logText));
    const QString text = userText.isEmpty() ? sentence : sentence + QStringLiteral("\n\n") + userText;
    ++g_record.shown;
    g_record.lastMessage = text;
    prompts().message(text, Icon::Critical);
}

}  // namespace

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

QString systemProblem(int errnum)
{
    switch (errnum) {
    case EACCES:
    case EPERM: return QStringLiteral("no hay permiso para usar ese archivo o esa carpeta");
    case ENOENT: return QStringLiteral("la carpeta o el archivo no existe");
    case ENOSPC:
    case EDQUOT: return QStringLiteral("el disco está lleno");
    case EROFS: return QStringLiteral("el disco es de solo lectura");
    case EISDIR: return QStringLiteral("ese nombre es el de una carpeta");
    case ENOTDIR: return QStringLiteral("una parte del camino no es una carpeta");
    case ENAMETOOLONG: return QStringLiteral("el nombre es demasiado largo");
    case EEXIST: return QStringLiteral("ya existe un archivo con ese nombre");
    case EBUSY:
    case ETXTBSY: return QStringLiteral("el archivo está en uso");
    case EIO: return QStringLiteral("el disco falló al leer o escribir");
    case EMFILE:
    case ENFILE: return QStringLiteral("hay demasiados archivos abiertos");
    case EXDEV: return QStringLiteral("el archivo no se puede mover a otro disco");
    default: break;
    }
    if (errnum == 0)
        return QStringLiteral("el sistema no lo permitió");
    return QStringLiteral("el sistema no lo permitió (código de error %1)").arg(errnum);
}

QString failureSentence(const QString& what)
{
    // "leer los respaldos": the verb agrees with a plural object.
    const QString object = what.section(QLatin1Char(' '), 1, 1);
    static const QStringList plural{QStringLiteral("los"), QStringLiteral("las"),
                                    QStringLiteral("unos"), QStringLiteral("unas")};
    const QString verb = plural.contains(object) ? QStringLiteral("No se pudieron ")
                                                 : QStringLiteral("No se pudo ");
    return verb + what + QLatin1Char('.');
}

bool guardedSaying(const QString& sentence, const std::function<void()>& fn)
{
    // An action run inside another (a modal screen opened by a save) undoes
    // only its own work; the outer action's transaction stays its own.
    const int depth = amb1().transactionDepth();
    try {
        fn();
        return true;
    } catch (const DbError& e) {
        report(depth, sentence, e.message(),
               e.message() + QStringLiteral(" | ") + e.detail()
                   + (e.sql().isEmpty() ? QString() : QStringLiteral(" | ") + e.sql()));
    } catch (const AppError& e) {
        report(depth, sentence, e.message(), e.message());
    } catch (const std::bad_alloc&) {
        report(depth, sentence,
               QStringLiteral("No hay memoria suficiente para terminar la operación."),
               QStringLiteral("memoria agotada"));
    } catch (const std::exception& e) {
        report(depth, sentence, QString::fromUtf8(kUnexpected), QString::fromLocal8Bit(e.what()));
    } catch (...) {
        report(depth, sentence, QString::fromUtf8(kUnexpected),
               QStringLiteral("excepción desconocida"));
    }
    return false;
}

bool guarded(const QString& what, const std::function<void()>& fn)
{
    return guardedSaying(failureSentence(what), fn);
}

void onClick(QAbstractButton* button, const QString& what, std::function<void()> fn)
{
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [what, fn = std::move(fn)] { guarded(what, fn); });
}

void onTriggered(QAction* action, const QString& what, std::function<void()> fn)
{
    QObject::connect(action, &QAction::triggered, action,
                     [what, fn = std::move(fn)] { guarded(what, fn); });
}

const BoundaryRecord& boundaryRecord() { return g_record; }

}  // namespace tq
