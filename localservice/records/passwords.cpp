// SPDX-License-Identifier: MIT

#include "passwords.h"

#include <sodium.h>

#include <array>
#include <cerrno>
#include <mutex>

namespace {

using SealKey = std::array<unsigned char, crypto_auth_KEYBYTES>;

const SealKey &sealKey()
{
    static const SealKey key = [] {
        SealKey fresh;
        crypto_auth_keygen(fresh.data());
        return fresh;
    }();
    return key;
}

// Each hash takes 64 MB for a moment; one at a time keeps the service small.
std::mutex &hashing()
{
    static std::mutex mutex;
    return mutex;
}

Failure outOfMemory()
{
    return broken(QStringLiteral("the service is short of memory, please try again"));
}

const unsigned char *bytesOf(const QByteArray &text)
{
    return reinterpret_cast<const unsigned char *>(text.constData());
}

} // namespace

bool prepareSecrets()
{
    return sodium_init() >= 0;
}

Result<QByteArray> hashPassword(const QString &password)
{
    const QByteArray secret = password.toUtf8();
    char hash[crypto_pwhash_STRBYTES] = {};
    const std::lock_guard<std::mutex> lock(hashing());
    const int failed =
        crypto_pwhash_str(hash, secret.constData(), quint64(secret.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE);
    if (failed != 0)
        return outOfMemory();
    return QByteArray(hash);
}

Result<bool> isPassword(const QByteArray &hash, const QString &password)
{
    static const Result<QByteArray> nobodys = hashPassword(QString::fromLatin1(randomName()));
    if (!nobodys.isOk())
        return nobodys.failure();
    const QByteArray secret = password.toUtf8();
    const QByteArray checked = hash.isEmpty() ? nobodys.value() : hash;
    const std::lock_guard<std::mutex> lock(hashing());
    errno = 0;
    const bool matches =
        crypto_pwhash_str_verify(checked.constData(), secret.constData(), quint64(secret.size()))
        == 0;
    if (!matches && errno == ENOMEM)
        return outOfMemory();
    return matches && !hash.isEmpty();
}

QByteArray randomName()
{
    QByteArray bytes(16, '\0');
    randombytes_buf(bytes.data(), size_t(bytes.size()));
    return bytes.toHex();
}

QByteArray fingerprint(const QByteArray &secret)
{
    QByteArray print(crypto_generichash_BYTES, '\0');
    crypto_generichash(reinterpret_cast<unsigned char *>(print.data()), size_t(print.size()),
                       bytesOf(secret), quint64(secret.size()), nullptr, 0);
    return print.toHex();
}

QByteArray seal(const QByteArray &text)
{
    QByteArray sealed(crypto_auth_BYTES, '\0');
    crypto_auth(reinterpret_cast<unsigned char *>(sealed.data()), bytesOf(text),
                quint64(text.size()), sealKey().data());
    return sealed.toHex();
}

bool isSeal(const QByteArray &text, const QByteArray &candidate)
{
    const QByteArray expected = seal(text);
    return candidate.size() == expected.size()
        && sodium_memcmp(candidate.constData(), expected.constData(), size_t(expected.size())) == 0;
}
