#include "service/machine/Certificate.h"

#include "service/machine/PrivateFile.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

#include <arpa/inet.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr long day = 86400; // seconds
constexpr long validity = 3650 * day;
constexpr long renewal = 30 * day;

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using X509Ptr = std::unique_ptr<X509, decltype(&X509_free)>;
using File = std::unique_ptr<BIO, decltype(&BIO_free)>;

bool isAddress(const std::string &host)
{
    std::array<unsigned char, 16> bytes;
    return ::inet_pton(AF_INET, host.c_str(), bytes.data()) == 1 ||
           ::inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1;
}

bool isEveryAddress(const std::string &host)
{
    return host == "0.0.0.0" || host == "::";
}

/// The name by which clients will ask for a server that listens on `host`.
std::string nameFor(const std::string &host)
{
    if (!isEveryAddress(host))
        return host;
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 && name[0] ? name.data() : "localhost";
}

bool names(X509 *certificate, const std::string &host)
{
    return isAddress(host) ? X509_check_ip_asc(certificate, host.c_str(), 0) == 1
                           : X509_check_host(certificate, host.c_str(), host.size(), 0, nullptr) == 1;
}

Key readKey(const std::filesystem::path &path)
{
    const File file(BIO_new_file(path.c_str(), "r"), &BIO_free);
    return {file ? PEM_read_bio_PrivateKey(file.get(), nullptr, nullptr, nullptr) : nullptr, &EVP_PKEY_free};
}

X509Ptr readCertificate(const std::filesystem::path &path)
{
    const File file(BIO_new_file(path.c_str(), "r"), &BIO_free);
    return {file ? PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr) : nullptr, &X509_free};
}

bool isUsable(X509 *certificate, EVP_PKEY *key, const std::string &host)
{
    if (!certificate || !key || X509_check_private_key(certificate, key) != 1)
        return false;
    std::time_t soon = std::time(nullptr) + renewal;
    return X509_cmp_time(X509_get0_notAfter(certificate), &soon) > 0 && names(certificate, host);
}

bool addExtension(X509 *certificate, int kind, const std::string &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()), &X509_EXTENSION_free);
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

bool setSerial(X509 *certificate)
{
    std::array<unsigned char, 16> random;
    if (RAND_bytes(random.data(), random.size()) != 1)
        return false;
    random[0] &= 0x7f;
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> number(BN_bin2bn(random.data(), random.size(), nullptr),
                                                             &BN_free);
    return number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate));
}

X509Ptr signedCertificate(EVP_PKEY *key, const std::string &host)
{
    X509Ptr certificate(X509_new(), &X509_free);
    std::string alternatives = "DNS:localhost,IP:127.0.0.1,IP:::1";
    if (host != "localhost" && host != "127.0.0.1" && host != "::1")
        alternatives += (isAddress(host) ? ",IP:" : ",DNS:") + host;
    const std::string common = "Sayvane service";
    const auto *name = reinterpret_cast<const unsigned char *>(common.c_str());
    X509_NAME *subject = certificate ? X509_get_subject_name(certificate.get()) : nullptr;
    const bool made = subject && X509_set_version(certificate.get(), X509_VERSION_3) == 1 &&
                      setSerial(certificate.get()) &&
                      X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day) &&
                      X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validity) &&
                      X509_set_pubkey(certificate.get(), key) == 1 &&
                      X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, name, -1, -1, 0) == 1 &&
                      X509_set_issuer_name(certificate.get(), subject) == 1
                      // Trusting it trusts this server alone: it cannot vouch for another.
                      && addExtension(certificate.get(), NID_basic_constraints, "critical,CA:FALSE") &&
                      addExtension(certificate.get(), NID_key_usage, "critical,digitalSignature") &&
                      addExtension(certificate.get(), NID_ext_key_usage, "serverAuth") &&
                      addExtension(certificate.get(), NID_subject_key_identifier, "hash") &&
                      addExtension(certificate.get(), NID_subject_alt_name, alternatives) &&
                      X509_sign(certificate.get(), key, EVP_sha256()) > 0;
    if (!made)
        throw std::runtime_error("cannot make a certificate for " + host);
    return certificate;
}

std::string content(BIO *memory)
{
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(memory, &bytes);
    return {bytes, static_cast<size_t>(size)};
}

} // namespace

void Certificate::ensure(const std::filesystem::path &certificate, const std::filesystem::path &privateKey,
                         const std::string &host)
{
    const std::string name = nameFor(host);
    if (isUsable(readCertificate(certificate).get(), readKey(privateKey).get(), name)) {
        ::chmod(privateKey.c_str(), 0600);
        return;
    }
    const Key key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    if (!key)
        throw std::runtime_error("cannot make a private key");
    const X509Ptr fresh = signedCertificate(key.get(), name);
    const File keyText(BIO_new(BIO_s_secmem()), &BIO_free);
    const File certificateText(BIO_new(BIO_s_mem()), &BIO_free);
    if (PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1 ||
        PEM_write_bio_X509(certificateText.get(), fresh.get()) != 1)
        throw std::runtime_error("cannot write the certificate");
    PrivateFile::replace(privateKey, content(keyText.get()));
    PrivateFile::replace(certificate, content(certificateText.get()));
}
