#include "testlibs/selfsignedtls.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <memory>

namespace testlibs {

namespace {

template <auto release>
struct Release
{
    void operator()(auto *object) const { release(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Memory = std::unique_ptr<BIO, Release<BIO_free_all>>;

Certificate certificateOf(EVP_PKEY *key)
{
    constexpr long hour = 3600;
    Certificate certificate(X509_new());
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -hour);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), hour);
    X509_NAME *name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(
        name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("127.0.0.1"), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_set_pubkey(certificate.get(), key);
    X509_sign(certificate.get(), key, EVP_sha256());
    return certificate;
}

QByteArray contents(BIO *memory)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    return {data, size};
}

} // namespace

QSslConfiguration selfSignedTls()
{
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = certificateOf(key.get());
    const Memory keyText(BIO_new(BIO_s_mem()));
    const Memory certificateText(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    PEM_write_bio_X509(certificateText.get(), certificate.get());

    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPrivateKey(QSslKey(contents(keyText.get()), QSsl::Ec));
    configuration.setLocalCertificate(QSslCertificate(contents(certificateText.get())));
    return configuration;
}

} // namespace testlibs
