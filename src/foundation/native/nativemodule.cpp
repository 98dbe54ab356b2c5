// The native module: SQLite's and libsodium's own interfaces, handed to the
// program as tables of their functions. It is a library of its own, loaded
// the first time one of them is needed, so that start-up does not load them.
#include "foundation/base/native.h"

#include <QtGlobal>

extern "C" Q_DECL_EXPORT const tq::native::Sqlite* tarvenquil_sqlite()
{
    static const tq::native::Sqlite api = {
        &sqlite3_open_v2,    &sqlite3_close,        &sqlite3_errcode,
        &sqlite3_errmsg,     &sqlite3_errstr,       &sqlite3_prepare_v2,
        &sqlite3_finalize,   &sqlite3_column_count, &sqlite3_column_name,
        &sqlite3_column_decltype, &sqlite3_backup_init, &sqlite3_backup_step,
        &sqlite3_backup_finish};
    return &api;
}

extern "C" Q_DECL_EXPORT const tq::native::Sodium* tarvenquil_sodium()
{
    static const tq::native::Sodium api = {&sodium_init, &crypto_pwhash_str_alg,
                                           &crypto_pwhash_str_verify};
    return &api;
}
