#include "testlibs/authority.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace testlibs {

namespace {

template <auto release>
struct Release
{
    void operator()(auto *object) const { release(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using Memory = std::unique_ptr<BIO, Release<BIO_free_all>>;

Certificate certificateOf(EVP_PKEY *key, const char *name, const ServerCertificate &contents)
{
    using std::chrono::seconds;
    static long serial = 0;
    Certificate certificate(X509_new());
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), seconds(contents.validFrom).count());
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), seconds(contents.validTo).count());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
        reinterpret_cast<const unsigned char *>(name), -1, -1, 0);
    X509_set_pubkey(certificate.get(), key);
    return certificate;
}

void extend(X509 *certificate, int what, const char *value)
{
    const Extension extension(X509V3_EXT_conf_nid(nullptr, nullptr, what, value));
    X509_add_ext(certificate, extension.get(), -1);
}

void sign(X509 *certificate, const X509 *issuer, EVP_PKEY *key)
{
    X509_set_issuer_name(certificate, X509_get_subject_name(issuer));
    X509_sign(certificate, key, EVP_sha256());
}

QByteArray contentsOf(BIO *memory)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    return {data, size};
}

QSslKey qtKey(EVP_PKEY *key)
{
    const Memory text(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(text.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return QSslKey(contentsOf(text.get()), QSsl::Ec);
}

QSslCertificate qtCertificate(X509 *certificate)
{
    const Memory text(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(text.get(), certificate);
    return QSslCertificate(contentsOf(text.get()));
}

} // namespace

struct TrustedAuthority::Identity
{
    Key key{EVP_EC_gen("P-256")};
    Certificate certificate = certificateOf(key.get(), "The authority of a test", {});
};

TrustedAuthority::TrustedAuthority()
    : m_root(std::make_unique<Identity>()), m_before(QSslConfiguration::defaultConfiguration())
{
    extend(m_root->certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    sign(m_root->certificate.get(), m_root->certificate.get(), m_root->key.get());
    QSslConfiguration trusting = m_before;
    trusting.setCaCertificates({qtCertificate(m_root->certificate.get())});
    QSslConfiguration::setDefaultConfiguration(trusting);
}

TrustedAuthority::~TrustedAuthority()
{
    QSslConfiguration::setDefaultConfiguration(m_before);
}

std::unique_ptr<QTcpServer> TrustedAuthority::listener(const ServerCertificate &wanted) const
{
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = certificateOf(key.get(), "The server of a test", wanted);
    extend(certificate.get(), NID_subject_alt_name, wanted.subject.constData());
    if (wanted.isSelfSigned) {
        sign(certificate.get(), certificate.get(), key.get());
    } else {
        sign(certificate.get(), m_root->certificate.get(), m_root->key.get());
    }
    QSslConfiguration configuration;
    configuration.setPrivateKey(qtKey(key.get()));
    configuration.setLocalCertificate(qtCertificate(certificate.get()));
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    return server;
}

} // namespace testlibs
