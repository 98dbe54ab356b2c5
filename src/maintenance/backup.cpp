#include "maintenance/backup.h"

#include "foundation/base/native.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QSqlDriver>
#include <QTemporaryFile>
#include <QVariant>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace tq {

namespace {

BackupResult failed(const QString& why, const QString& detail = {}) { return {false, why, detail}; }

// SQLite's answer in the user's words; its own text is English.
QString sqliteProblem(int rc)
{
    switch (rc & 0xff) {
    case SQLITE_CANTOPEN: return QStringLiteral("no se pudo abrir el archivo");
    case SQLITE_FULL: return QStringLiteral("el disco está lleno");
    case SQLITE_IOERR: return QStringLiteral("el disco falló al leer o escribir");
    case SQLITE_READONLY: return QStringLiteral("el archivo es de solo lectura");
    case SQLITE_PERM:
    case SQLITE_AUTH: return QStringLiteral("no hay permiso para usar el archivo");
    case SQLITE_NOMEM: return QStringLiteral("no hay memoria suficiente");
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return QStringLiteral("la base de datos está ocupada en otra operación");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return QStringLiteral("el archivo está dañado o no es una base de datos");
    default: break;
    }
    return QStringLiteral("la base de datos respondió con el código de error %1").arg(rc);
}

// Why a copy failed: the user's words, and SQLite's own for the log.
struct CopyProblem {
    QString why;
    QString detail;
    bool isEmpty() const { return why.isEmpty(); }
};

std::filesystem::path nativePath(const QString& path)
{
    const QByteArray utf8 = QDir::toNativeSeparators(path).toUtf8();
    return std::filesystem::path(std::u8string(reinterpret_cast<const char8_t*>(utf8.constData()),
                                               static_cast<size_t>(utf8.size())));
}

// The store's own SQLite handle, or nullptr when the store isn't an open SQLite file.
sqlite3* storeHandle()
{
    if (!amb1().isOpen())
        return nullptr;
    const QSqlDatabase db = amb1().connection();
    if (!db.isOpen() || !db.driver())
        return nullptr;
    const QVariant v = db.driver()->handle();
    if (!v.isValid() || qstrcmp(v.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(v.constData());
}

// Copies every page of `source` into the file `file` (an empty file).
CopyProblem copyPages(sqlite3* source, const QString& file)
{
    const native::Sqlite* api = native::sqlite();
    if (!api)
        return {QStringLiteral("no se pudo iniciar la copia (%1)").arg(native::moduleMissing()),
                QString()};
    sqlite3* dest = nullptr;
    const QByteArray name = QFile::encodeName(file);
    int rc = api->open_v2(name.constData(), &dest, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                          nullptr);
    if (rc != SQLITE_OK) {
        const QString detail = dest ? QString::fromUtf8(api->errmsg(dest))
                                    : QString::fromUtf8(api->errstr(rc));
        api->close(dest);
        return {QStringLiteral("no se pudo crear el archivo (%1)").arg(sqliteProblem(rc)), detail};
    }
    CopyProblem problem;
    sqlite3_backup* backup = api->backup_init(dest, "main", source, "main");
    if (!backup) {
        problem = {QStringLiteral("no se pudo iniciar la copia (%1)")
                       .arg(sqliteProblem(api->errcode(dest))),
                   QString::fromUtf8(api->errmsg(dest))};
    } else {
        // All pages in one step: the program is single-threaded, so nothing
        // writes to the store while the copy runs.
        rc = api->backup_step(backup, -1);
        const int finish = api->backup_finish(backup);
        if (rc != SQLITE_DONE)
            problem = {QStringLiteral("la copia se interrumpió (%1)").arg(sqliteProblem(rc)),
                       QString::fromUtf8(api->errstr(rc))};
        else if (finish != SQLITE_OK)
            problem = {QStringLiteral("la copia no se completó (%1)").arg(sqliteProblem(finish)),
                       QString::fromUtf8(api->errstr(finish))};
    }
    rc = api->close(dest);
    if (problem.isEmpty() && rc != SQLITE_OK)
        problem = {QStringLiteral("no se pudo cerrar la copia (%1)").arg(sqliteProblem(rc)),
                   QString::fromUtf8(api->errstr(rc))};
    return problem;
}

// pg_dump of the server's client tools: on the path, or where Debian keeps
// each version's (the highest, which reads every older server).
QString pgDumpProgram()
{
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("pg_dump"));
    if (!onPath.isEmpty())
        return onPath;
    QDir versions(QStringLiteral("/usr/lib/postgresql"));
    QStringList found = versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    std::sort(found.begin(), found.end(), [](const QString& a, const QString& b) {
        return a.toInt() < b.toInt();
    });
    for (auto it = found.crbegin(); it != found.crend(); ++it) {
        const QString program = versions.filePath(*it + QStringLiteral("/bin/pg_dump"));
        if (QFileInfo(program).isExecutable())
            return program;
    }
    return {};
}

// The server's copy, in pg_dump's own format (pg_restore reads it back).
CopyProblem dumpServer(const QString& file)
{
    const QString program = pgDumpProgram();
    if (program.isEmpty())
        return {QStringLiteral("no se encontró el programa pg_dump (paquete postgresql-client)"),
                QString()};
    QProcess dump;
    dump.setProcessChannelMode(QProcess::SeparateChannels);
    dump.start(program, {QStringLiteral("--format=custom"), QStringLiteral("--no-owner"),
                         QStringLiteral("--no-privileges"), QStringLiteral("--file=") + file,
                         QStringLiteral("--dbname=") + amb1().serverConnection()});
    if (!dump.waitForStarted(10000))
        return {QStringLiteral("no se pudo iniciar pg_dump"), dump.errorString()};
    // A large laboratory's copy takes a while; a stuck one is given up.
    if (!dump.waitForFinished(30 * 60 * 1000)) {
        dump.kill();
        dump.waitForFinished(5000);
        return {QStringLiteral("pg_dump no terminó la copia"), dump.errorString()};
    }
    if (dump.exitStatus() != QProcess::NormalExit || dump.exitCode() != 0)
        return {QStringLiteral("el servidor no entregó la copia completa"),
                QString::fromLocal8Bit(dump.readAllStandardError()).trimmed()};
    return {};
}

}  // namespace

BackupResult backupStore(const QString& target)
{
    const bool server = amb1().isOpen() && amb1().engine() == Engine::Server;
    sqlite3* source = server ? nullptr : storeHandle();
    if (!source && !server)
        return failed(QStringLiteral("no hay una base de datos abierta que se pueda copiar"));
    if (target.isEmpty())
        return failed(QStringLiteral("no se indicó el nombre de la copia"));

    const QFileInfo info(target);
    const QDir folder = info.absoluteDir();
    if (!folder.exists())
        return failed(QStringLiteral("la carpeta %1 no existe")
                          .arg(QDir::toNativeSeparators(folder.absolutePath())));
    if (info.isDir())
        return failed(QStringLiteral("ya existe una carpeta con ese nombre"));
    const QString store = server ? QString() : QFileInfo(amb1().storeFile()).absoluteFilePath();
    if (!store.isEmpty() && info.absoluteFilePath() == store)
        return failed(QStringLiteral("la copia no puede reemplazar la base de datos en uso"));

    // The temporary file sits beside the target, on the same disk, so that
    // the final rename is a single step.
    QTemporaryFile temp(folder.filePath(QStringLiteral(".%1.XXXXXX").arg(info.fileName())));
    errno = 0;
    if (!temp.open()) {
        const int why = errno;
        return failed(QStringLiteral("no se puede escribir en la carpeta (%1)").arg(systemProblem(why)),
                      temp.errorString());
    }
    const QString tempName = temp.fileName();
    temp.close();

    const CopyProblem problem = server ? dumpServer(tempName) : copyPages(source, tempName);
    if (!problem.isEmpty())
        return failed(problem.why, problem.detail);   // the temporary file goes with `temp`

    std::error_code ec;
    std::filesystem::rename(nativePath(tempName), nativePath(info.absoluteFilePath()), ec);
    if (ec)
        return failed(QStringLiteral("no se pudo reemplazar el archivo (%1)")
                          .arg(systemProblem(ec.value())),
                      QString::fromLocal8Bit(ec.message().c_str()));
    temp.setAutoRemove(false);   // its name now belongs to the target
    return {true, {}, {}};
}

}  // namespace tq
