#pragma once
// Passwords are never stored as typed: each is kept as a salted Argon2id hash
// (libsodium), and every rule that compares passwords verifies the typed text
// against the stored hash. Nothing here prints or logs a password or a hash.
#include <QString>
#include <QStringList>
#include <cstddef>

namespace tq {

// Argon2id's cost: 12 MiB and three passes, about 10 ms a hash here, so that
// a sign-on stays instant and the employee screen, which checks a new
// sign-on name against every stored password, stays under a second for
// fifty employees.
inline constexpr unsigned long long kHashPasses = 3;
inline constexpr std::size_t kHashMemory = 12u * 1024u * 1024u;

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
