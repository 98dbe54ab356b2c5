#pragma once
// A copy of the open store, taken while the program keeps working on it.
#include <QString>

namespace tq {

struct BackupResult {
    bool ok = false;
    QString error;    // why the copy could not be made, in Spanish; empty when ok
    QString detail;   // the system's own words for it, for the log
};

// Copies the store held open by amb1 into `target`, replacing a file of that
// name. The copy is consistent even while the store is in use: it goes
// through SQLite's online backup into a temporary file beside the target,
// which only replaces the target once it is complete, so a failed copy never
// destroys an older backup. On the server the copy is pg_dump's, in its
// custom format (pg_restore puts it back), taken in one snapshot while the
// other workstations keep saving.
BackupResult backupStore(const QString& target);

}  // namespace tq
