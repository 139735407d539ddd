#include "support/server/TestCertificate.h"

#include <QHostAddress>

#include <atomic>
#include <memory>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace {

struct Release
{
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
    void operator()(X509 *certificate) const { X509_free(certificate); }
    void operator()(BIO *stream) const { BIO_free(stream); }
    void operator()(X509_EXTENSION *extension) const { X509_EXTENSION_free(extension); }
};

template <typename T>
using Owned = std::unique_ptr<T, Release>;

QByteArray contents(BIO *stream)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(stream, &data);
    return QByteArray(data, size);
}

Owned<BIO> stream(const QByteArray &bytes)
{
    return Owned<BIO>(BIO_new_mem_buf(bytes.constData(), int(bytes.size())));
}

void extend(X509 *certificate, int kind, const QByteArray &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const Owned<X509_EXTENSION> extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData()));
    X509_add_ext(certificate, extension.get(), -1);
}

Owned<X509> blank(const TestCertificate::Wish &wish, EVP_PKEY *key)
{
    static std::atomic<long> serial = QDateTime::currentMSecsSinceEpoch();
    Owned<X509> certificate(X509_new());
    X509_set_version(certificate.get(), 2); // X.509 version 3
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++serial);
    ASN1_TIME_set(X509_getm_notBefore(certificate.get()), wish.validFrom.toSecsSinceEpoch());
    ASN1_TIME_set(X509_getm_notAfter(certificate.get()), wish.validUntil.toSecsSinceEpoch());
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(wish.name.constData()), -1, -1, 0);
    return certificate;
}

QByteArray subjectName(const QByteArray &name)
{
    return (QHostAddress(QString::fromLatin1(name)).isNull() ? "DNS:" : "IP:") + name;
}

TestCertificate signedBy(X509 *issuer, EVP_PKEY *issuerKey, X509 *certificate, EVP_PKEY *key)
{
    X509_set_issuer_name(certificate, X509_get_subject_name(issuer));
    X509_sign(certificate, issuerKey, EVP_sha256());
    const Owned<BIO> certificatePem(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(certificatePem.get(), certificate);
    const Owned<BIO> keyPem(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(keyPem.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return {contents(certificatePem.get()), contents(keyPem.get())};
}

} // namespace

TestCertificate TestCertificate::authority(const QByteArray &name)
{
    const Owned<EVP_PKEY> key(EVP_EC_gen("P-256"));
    const Owned<X509> certificate = blank({.name = name}, key.get());
    extend(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    extend(certificate.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    extend(certificate.get(), NID_subject_key_identifier, "hash");
    return signedBy(certificate.get(), key.get(), certificate.get(), key.get());
}

TestCertificate TestCertificate::issue(const Wish &wish) const
{
    const Owned<X509> issuer(PEM_read_bio_X509(stream(certificate).get(), nullptr, nullptr, nullptr));
    const Owned<EVP_PKEY> issuerKey(PEM_read_bio_PrivateKey(stream(key).get(), nullptr, nullptr, nullptr));
    const Owned<EVP_PKEY> ownKey(EVP_EC_gen("P-256"));
    const Owned<X509> own = blank(wish, ownKey.get());
    extend(own.get(), NID_subject_alt_name, subjectName(wish.name));
    return signedBy(issuer.get(), issuerKey.get(), own.get(), ownKey.get());
}

TestCertificate TestCertificate::selfSigned(const Wish &wish)
{
    const Owned<EVP_PKEY> ownKey(EVP_EC_gen("P-256"));
    const Owned<X509> own = blank(wish, ownKey.get());
    extend(own.get(), NID_subject_alt_name, subjectName(wish.name));
    return signedBy(own.get(), ownKey.get(), own.get(), ownKey.get());
}

QByteArray TestCertificate::hashedName() const
{
    const Owned<X509> own(PEM_read_bio_X509(stream(certificate).get(), nullptr, nullptr, nullptr));
    return QByteArray::number(quint32(X509_subject_name_hash(own.get())), 16).rightJustified(8, '0') + ".0";
}
