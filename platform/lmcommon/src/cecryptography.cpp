// SPDX-License-Identifier: MIT
// Stored form: "LM1:", then Base64 of nonce (12 bytes), tag (16 bytes) and ciphertext. The plaintext is the
// text's 16-bit units, low byte first; the prefix is authenticated along with it. AES in Galois/Counter Mode
// is described in NIST SP 800-38D.
#include "lmcommon/cecryptography.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <QByteArray>

#include <memory>
#include <stdexcept>

namespace {

constexpr char kPrefix[] = "LM1:";
constexpr int kPrefixSize = 4;
constexpr int kNonceSize = 12;
constexpr int kTagSize = 16;
constexpr unsigned char kKey[32] = {0x8f, 0x21, 0x5c, 0xd4, 0x3a, 0x97, 0xe0, 0x6b, 0x12, 0xbe, 0x49,
                                    0xf5, 0x70, 0x0d, 0xa8, 0x33, 0xc6, 0x5e, 0x91, 0x04, 0xdb, 0x7f,
                                    0x28, 0xb3, 0x66, 0xfa, 0x1d, 0x85, 0x4c, 0xe9, 0x52, 0xa7};

struct ContextDeleter {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, ContextDeleter>;

unsigned char* bytes(QByteArray& array) {
    return reinterpret_cast<unsigned char*>(array.data());
}
const unsigned char* bytes(const QByteArray& array) {
    return reinterpret_cast<const unsigned char*>(array.constData());
}
const unsigned char* prefixBytes() {
    return reinterpret_cast<const unsigned char*>(kPrefix);
}

void require(bool done) {
    if (!done) throw std::runtime_error("the cipher library failed");
}

QByteArray unitsOf(const QString& text) {
    QByteArray plain;
    plain.reserve(text.size() * 2);
    for (const QChar unit : text) {
        plain.append(static_cast<char>(unit.unicode() & 0xFF));
        plain.append(static_cast<char>(unit.unicode() >> 8));
    }
    return plain;
}

QString textOf(const QByteArray& plain) {
    QString text;
    text.reserve(plain.size() / 2);
    for (qsizetype i = 0; i + 1 < plain.size(); i += 2)
        text.append(QChar(static_cast<ushort>(static_cast<unsigned char>(plain[i]) |
                                              static_cast<unsigned char>(plain[i + 1]) << 8)));
    return text;
}

} // namespace

QString CECryptography::crypt(QString text) const {
    const QByteArray plain = unitsOf(text);
    const int size = static_cast<int>(plain.size());
    require(size == plain.size());
    QByteArray nonce(kNonceSize, '\0'), tag(kTagSize, '\0'), cipher(plain.size(), '\0');
    require(RAND_bytes(bytes(nonce), kNonceSize) == 1);

    const Context context(EVP_CIPHER_CTX_new());
    require(context != nullptr);
    int written = 0;
    require(EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, kKey, bytes(nonce)) == 1);
    require(EVP_EncryptUpdate(context.get(), nullptr, &written, prefixBytes(), kPrefixSize) == 1);
    require(EVP_EncryptUpdate(context.get(), bytes(cipher), &written, bytes(plain), size) == 1);
    unsigned char rest[kTagSize];
    require(EVP_EncryptFinal_ex(context.get(), rest, &written) == 1);
    require(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kTagSize, bytes(tag)) == 1);
    return QString::fromLatin1(kPrefix + (nonce + tag + cipher).toBase64());
}

QString CECryptography::decrypt(QString text) const {
    if (!text.startsWith(QLatin1String(kPrefix))) return {};
    for (const QChar unit : text)
        if (unit.unicode() > 0x7E) return {};
    const auto decoded = QByteArray::fromBase64Encoding(text.mid(kPrefixSize).toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || (*decoded).size() < kNonceSize + kTagSize) return {};
    // The last letter may hold bits that belong to no byte, and the decoder doesn't look at them.
    if (QLatin1String((*decoded).toBase64()) != QStringView(text).mid(kPrefixSize)) return {};
    const QByteArray nonce = (*decoded).left(kNonceSize), cipher = (*decoded).mid(kNonceSize + kTagSize);
    QByteArray tag = (*decoded).mid(kNonceSize, kTagSize);
    const int size = static_cast<int>(cipher.size());
    if (size != cipher.size() || size % 2 != 0) return {};

    const Context context(EVP_CIPHER_CTX_new());
    QByteArray plain(cipher.size(), '\0');
    int written = 0;
    unsigned char rest[kTagSize];
    const bool genuine =
        context != nullptr &&
        EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, kKey, bytes(nonce)) == 1 &&
        EVP_DecryptUpdate(context.get(), nullptr, &written, prefixBytes(), kPrefixSize) == 1 &&
        EVP_DecryptUpdate(context.get(), bytes(plain), &written, bytes(cipher), size) == 1 &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kTagSize, bytes(tag)) == 1 &&
        EVP_DecryptFinal_ex(context.get(), rest, &written) == 1;
    return genuine ? textOf(plain) : QString();
}
