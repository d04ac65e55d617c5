#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QTcpServer>

#include <chrono>
#include <memory>

namespace testlibs {

/// What stands in the certificate of a server.
struct ServerCertificate
{
    QByteArray subject = "IP:127.0.0.1"; ///< As OpenSSL writes an alternative name.
    std::chrono::hours validFrom{-1}; ///< From now.
    std::chrono::hours validTo{1};
    bool isSelfSigned = false; ///< Nobody but itself vouches for it.
};

/// A certificate authority that this process trusts, besides no other, for as long as it lives.
class TrustedAuthority
{
public:
    TrustedAuthority();
    ~TrustedAuthority();
    Q_DISABLE_COPY_MOVE(TrustedAuthority)

    /// Makes of an HttpServer one that speaks TLS.
    std::unique_ptr<QTcpServer> listener(const ServerCertificate &certificate = {}) const;

private:
    struct Identity;

    std::unique_ptr<Identity> m_root;
    QSslConfiguration m_before;
};

} // namespace testlibs
