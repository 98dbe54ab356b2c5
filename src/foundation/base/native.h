#pragma once
// The C libraries that the program calls directly: SQLite's own interface
// (the declared types of a result's columns, the online backup of the store)
// and libsodium's password hashing. They come with the native module, loaded
// the first time one of them is needed; the embedded store's Qt driver loads
// the same SQLite, so its handles work here.
#include <QString>
#include <sodium.h>
#include <sqlite3.h>

namespace tq::native {

struct Sqlite {
    decltype(&sqlite3_open_v2) open_v2;
    decltype(&sqlite3_close) close;
    decltype(&sqlite3_errcode) errcode;
    decltype(&sqlite3_errmsg) errmsg;
    decltype(&sqlite3_errstr) errstr;
    decltype(&sqlite3_prepare_v2) prepare_v2;
    decltype(&sqlite3_finalize) finalize;
    decltype(&sqlite3_column_count) column_count;
    decltype(&sqlite3_column_name) column_name;
    decltype(&sqlite3_column_decltype) column_decltype;
    decltype(&sqlite3_backup_init) backup_init;
    decltype(&sqlite3_backup_step) backup_step;
    decltype(&sqlite3_backup_finish) backup_finish;
};

struct Sodium {
    decltype(&sodium_init) init;
    decltype(&crypto_pwhash_str_alg) pwhash_str_alg;
    decltype(&crypto_pwhash_str_verify) pwhash_str_verify;
};

// The module's interfaces, loading it on first use; nullptr when it can't be
// found beside the program. Any thread.
const Sqlite* sqlite();
const Sodium* sodium();

// Why the native module could not be used, for a message of the caller's.
QString moduleMissing();

}  // namespace tq::native
