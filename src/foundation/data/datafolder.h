#pragma once
#include <QString>
#include <QStringList>

namespace tq {

// The folder that holds lab.db, logo.jpg, the log and, by default, backups.
QString dataFolder();
void setDataFolder(const QString& path);

// Chooses the data folder: --data DIR, else TARVENQUIL_DATA, else beside the
// program when that folder is writable, else the user's application-data folder.
QString resolveDataFolder(const QStringList& arguments);

// Path of the store and of the logo inside the data folder.
QString storePath();
QString logoPath();

}  // namespace tq
