#include "app/activationtoken.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

constexpr auto tokenVariable = "XDG_ACTIVATION_TOKEN";
constexpr auto startupIdVariable = "DESKTOP_STARTUP_ID";
const auto tokenKey = u"activation-token"_s;
const auto startupIdKey = u"desktop-startup-id"_s;

} // namespace

// Up to its version 2.74, GLib hands over tokens of Wayland by the name that they have on X11.
ActivationToken::ActivationToken(QByteArray token, QByteArray startupId)
    : m_token(token.isEmpty() ? startupId : std::move(token)), m_startupId(std::move(startupId))
{
}

ActivationToken ActivationToken::ofThisStart()
{
    return {qgetenv(tokenVariable), qgetenv(startupIdVariable)};
}

ActivationToken ActivationToken::ofCall(const QVariantMap &platformData)
{
    return {
        platformData[tokenKey].toString().toUtf8(), platformData[startupIdKey].toString().toUtf8()};
}

QVariantMap ActivationToken::platformData() const
{
    QVariantMap data;
    if (!m_token.isEmpty()) {
        data[tokenKey] = QString::fromUtf8(m_token);
    }
    if (!m_startupId.isEmpty()) {
        data[startupIdKey] = QString::fromUtf8(m_startupId);
    }
    return data;
}

void ActivationToken::adopt() const
{
    qputenv(tokenVariable, m_token);
    qputenv(startupIdVariable, m_startupId);
}

void ActivationToken::drop()
{
    qunsetenv(tokenVariable);
    qunsetenv(startupIdVariable);
}

} // namespace app
