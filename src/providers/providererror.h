#pragma once

#include <QString>

namespace providers {

/// Why a service call gave no image. The only error type of all service calls; its description is
/// what people read in the status line.
class ProviderError
{
public:
    enum class Case { InvalidResponse, ApiError, NetworkError };

    /// No request could be formed, or the answer holds no usable image.
    static ProviderError invalidResponse(const QString &message);
    /// The service answered with an error of its own.
    static ProviderError apiError(const QString &message);
    /// The exchange itself failed; @p description is the transport's readable text.
    static ProviderError networkError(const QString &description);

    Case errorCase() const { return m_case; }
    /// The payload: the message, or the transport's description.
    QString message() const { return m_message; }
    /// One line for people, never empty.
    QString errorDescription() const;

    friend bool operator==(const ProviderError &, const ProviderError &) = default;

private:
    ProviderError(Case errorCase, const QString &message);

    Case m_case;
    QString m_message;
};

} // namespace providers
