#pragma once
// Passwords are never stored as typed: each is kept as a salted Argon2id hash
// (libsodium), and every rule that compares passwords verifies the typed text
// against the stored hash. Nothing here prints or logs a password or a hash.
#include <QString>
#include <QStringList>

namespace tq {

// A new salted hash of the typed password, in libsodium's text form
// ("$argon2id$v=19$m=...,t=...,p=1$salt$hash"). Throws AppError when the
// machine can't spare the memory the hash needs.
QString hashPassword(const QString& typed);

// True when `typed` is the password that `stored` was made from. A stored
// value that isn't a hash of ours never matches.
bool verifyPassword(const QString& stored, const QString& typed);

// True when `typed` is the password of any of the stored values. The checks
// are spread over a few of the machine's cores and stop at the first match:
// the employee screen holds a new sign-on name against every employee's hash,
// and the user waits for all of them. The caller's thread waits until done.
bool verifyAnyPassword(const QStringList& stored, const QString& typed);

// True when the stored value is a hash of ours (a store made by an earlier
// version kept passwords as typed; those are hashed when the store is opened).
bool isPasswordHash(const QString& stored);

}  // namespace tq
