#pragma once

#include "imageservice/httpmessage.h"

#include <QString>

#include <optional>

namespace imageservice {

/// Writes each request into a file of its own, "000001.json" and so on, for tests to read: an
/// object with "method", "path", "headers" (names in lower case), and "body", or "bodyBase64" where
/// the body is not text. Keys are in there as sent. Files appear whole or not at all.
class Recorder
{
public:
    /// Creates @p directory where needed; absent where that fails. Numbers go on after those there.
    [[nodiscard]] static std::optional<Recorder> open(const QString &directory);

    /// The number of the request that arrives now; not thread-safe.
    int nextNumber() { return ++m_lastNumber; }
    /// Thread-safe. False where the file could not be written.
    [[nodiscard]] bool write(int number, const HttpRequest &request) const;

private:
    Recorder(const QString &directory, int lastNumber);

    QString m_directory;
    int m_lastNumber;
};

} // namespace imageservice
