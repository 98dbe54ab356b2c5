#pragma once
// The large store on PostgreSQL: the same laboratory as the store file,
// copied into a database that the program itself made ready, on a private
// server whose folder lives beside the store file and is reused by later runs.
#include "store_fill.h"

#include <QString>

namespace bench {

// Copies every table's rows of the store file into a database on the server
// that holds none of the program's tables yet. The program makes the database
// ready first, as on a workstation's first start (tables, indexes, first
// rows; amb1 is left closed). Then, in one transaction, the first rows give
// way to the file's and every table is loaded; the counters then continue
// after the loaded keys, and the planner's statistics are gathered.
// Throws StoreError, or the program's DbError.
void copyToServer(const QString& storeFile, const QString& connection);

// Runs one statement without values outside any transaction (CREATE
// DATABASE, DROP DATABASE). Throws StoreError.
void serverCommand(const QString& connection, const QString& sql);

// The large store's copy on the bench's own server, in `benchDir` beside the
// store file and named after it, so that a changed fill or schema makes a new
// one. Constructing it starts the server (making it, and the copy, when an
// earlier run did not complete them); destroying it stops the server and
// keeps its folder.
class LargeServerStore {
public:
    LargeServerStore(const QString& benchDir, const LargeStore& store, bool rebuild);
    ~LargeServerStore();
    LargeServerStore(const LargeServerStore&) = delete;
    LargeServerStore& operator=(const LargeServerStore&) = delete;

    QString folder;            // the server's folder: its data and its socket
    QString connection;        // libpq connection text of the copy
    QString dataFolder;        // a data folder whose servidor.conf names the copy
    QString version;           // the server's version, as it reports it
    double copySeconds = -1;   // -1 when the copy was made by an earlier run

private:
    void halt() noexcept;
};

}  // namespace bench
