#pragma once

class QSslConfiguration;

namespace testlibs {

/// A server's TLS with a certificate for 127.0.0.1 that nobody but itself has signed.
QSslConfiguration selfSignedTls();

} // namespace testlibs
