#include "providers/providererror.h"

using namespace Qt::StringLiterals;

namespace providers {

ProviderError::ProviderError(Case errorCase, const QString &message)
    : m_case(errorCase), m_message(message)
{
}

ProviderError ProviderError::invalidResponse(const QString &message)
{
    return {Case::InvalidResponse, message};
}

ProviderError ProviderError::apiError(const QString &message)
{
    return {Case::ApiError, message};
}

ProviderError ProviderError::networkError(const QString &description)
{
    return {Case::NetworkError, description};
}

QString ProviderError::errorDescription() const
{
    switch (m_case) {
    case Case::InvalidResponse:
        return u"Invalid response: "_s + m_message;
    case Case::ApiError:
        return u"API error: "_s + m_message;
    case Case::NetworkError:
        return u"Network error: "_s + m_message;
    }
    Q_UNREACHABLE();
}

} // namespace providers
