#include "foundation/data/datafolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace tq {

static QString g_folder;

QString dataFolder() { return g_folder; }

void setDataFolder(const QString& path) { g_folder = path; }

static bool writable(const QString& folder)
{
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        return false;
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".tq_probe_XXXXXX")));
    return probe.open();
}

QString resolveDataFolder(const QStringList& arguments)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        if (a == QLatin1String("--data") && i + 1 < arguments.size())
            return QDir(arguments[i + 1]).absolutePath();
        if (a.startsWith(QLatin1String("--data=")))
            return QDir(a.mid(7)).absolutePath();
    }
    const QString env = qEnvironmentVariable("TARVENQUIL_DATA");
    if (!env.isEmpty())
        return QDir(env).absolutePath();
    const QString beside = QCoreApplication::applicationDirPath();
    if (writable(beside))
        return beside;
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString storePath() { return QDir(g_folder).filePath(QStringLiteral("lab.db")); }

QString serverConfPath() { return QDir(g_folder).filePath(QStringLiteral("servidor.conf")); }

QString serverConnectionText()
{
    QFile file(serverConfPath());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QStringList parts;
    for (const QByteArray& raw : file.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#')))
            parts << line;
    }
    return parts.join(QLatin1Char(' '));
}

QString logoPath() { return QDir(g_folder).filePath(QStringLiteral("logo.jpg")); }

}  // namespace tq
