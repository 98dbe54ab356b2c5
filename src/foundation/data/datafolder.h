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

// A workstation that shares its store on a PostgreSQL server names it in
// servidor.conf, in the data folder: a libpq connection text ("host=...
// dbname=... user=..."; lines starting with # are notes). The password is
// never written there: libpq reads it from the user's .pgpass. Empty when
// there is no such file: the store is then the data folder's own file.
QString serverConfPath();
QString serverConnectionText();
QString logoPath();

}  // namespace tq
