#include "foundation/base/passwords.h"

#include "foundation/base/apperror.h"

#include <sodium.h>

namespace tq {

namespace {

// 12 MiB and three passes: about 10 ms a hash here, so that a sign-on stays
// instant and the employee screen, which checks a new sign-on name against
// every stored password, stays under a second for fifty employees.
constexpr unsigned long long kOpsLimit = 3;
constexpr size_t kMemLimit = 12u * 1024u * 1024u;

void ensureSodium()
{
    static const bool ready = sodium_init() >= 0;
    if (!ready)
        throw AppError(QStringLiteral("No se pudo preparar el cifrado de contraseñas."));
}

}  // namespace

QString hashPassword(const QString& typed)
{
    ensureSodium();
    const QByteArray utf8 = typed.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str_alg(out, utf8.constData(), static_cast<unsigned long long>(utf8.size()),
                              kOpsLimit, kMemLimit, crypto_pwhash_ALG_ARGON2ID13)
        != 0)
        throw AppError(QStringLiteral("No hay memoria suficiente para cifrar la contraseña."));
    return QString::fromLatin1(out);
}

bool verifyPassword(const QString& stored, const QString& typed)
{
    if (!isPasswordHash(stored))
        return false;
    ensureSodium();
    const QByteArray hash = stored.toLatin1();
    const QByteArray utf8 = typed.toUtf8();
    return crypto_pwhash_str_verify(hash.constData(), utf8.constData(),
                                    static_cast<unsigned long long>(utf8.size()))
           == 0;
}

bool isPasswordHash(const QString& stored)
{
    return stored.startsWith(QLatin1String("$argon2id$"))
           && stored.size() < int(crypto_pwhash_STRBYTES);
}

}  // namespace tq
