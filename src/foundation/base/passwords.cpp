#include "foundation/base/passwords.h"

#include "foundation/base/apperror.h"
#include "foundation/base/native.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace tq {

namespace {

constexpr std::size_t kMaxWorkers = 4;

// libsodium, ready to hash; any thread.
const native::Sodium& sodium()
{
    const native::Sodium* api = native::sodium();
    if (!api)
        throw AppError(QStringLiteral("No se pudo preparar el cifrado de contraseñas: %1.")
                           .arg(native::moduleMissing()));
    static const bool ready = api->init() >= 0;
    if (!ready)
        throw AppError(QStringLiteral("No se pudo preparar el cifrado de contraseñas."));
    return *api;
}

}  // namespace

QString hashPassword(const QString& typed)
{
    const native::Sodium& api = sodium();
    const QByteArray utf8 = typed.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    if (api.pwhash_str_alg(out, utf8.constData(), static_cast<unsigned long long>(utf8.size()),
                           kHashPasses, kHashMemory, crypto_pwhash_ALG_ARGON2ID13)
        != 0)
        throw AppError(QStringLiteral("No hay memoria suficiente para cifrar la contraseña."));
    return QString::fromLatin1(out);
}

bool verifyPassword(const QString& stored, const QString& typed)
{
    if (!isPasswordHash(stored))
        return false;
    const native::Sodium& api = sodium();
    const QByteArray hash = stored.toLatin1();
    const QByteArray utf8 = typed.toUtf8();
    return api.pwhash_str_verify(hash.constData(), utf8.constData(),
                                 static_cast<unsigned long long>(utf8.size()))
           == 0;
}

bool verifyAnyPassword(const QStringList& stored, const QString& typed)
{
    const native::Sodium& api = sodium();
    // Everything the workers read is made here, before they start.
    std::vector<QByteArray> hashes;
    for (const QString& s : stored)
        if (isPasswordHash(s))
            hashes.push_back(s.toLatin1());
    if (hashes.empty())
        return false;
    const QByteArray utf8 = typed.toUtf8();

    std::atomic<std::size_t> next{0};
    std::atomic<bool> found{false};
    const auto work = [&] {
        for (std::size_t i = 0; !found && (i = next++) < hashes.size();)
            if (api.pwhash_str_verify(hashes[i].constData(), utf8.constData(),
                                      static_cast<unsigned long long>(utf8.size()))
                == 0)
                found = true;
    };
    // Each check holds 12 MiB while it runs, so a few cores at most.
    const std::size_t cores =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, kMaxWorkers);
    std::vector<std::thread> helpers;
    try {
        for (std::size_t n = 1; n < std::min(cores, hashes.size()); ++n)
            helpers.emplace_back(work);
    } catch (const std::system_error&) {
        // No thread to spare: the helpers that did start and this thread share the work.
    }
    work();
    for (std::thread& t : helpers)
        t.join();
    return found;
}

bool isPasswordHash(const QString& stored)
{
    return stored.startsWith(QLatin1String("$argon2id$"))
           && stored.size() < int(crypto_pwhash_STRBYTES);
}

}  // namespace tq
