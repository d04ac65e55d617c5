#include "ui/apikey.h"

#include "storage/keychain.h"

namespace ui {

APIKey::APIKey(QObject *parent) : QObject(parent) { }

void APIKey::setProviderId(const QString &providerId)
{
    if (providerId == m_providerId) {
        return;
    }
    m_providerId = providerId;
    Q_EMIT providerIdChanged();
}

void APIKey::load()
{
    if (const auto key = storage::Keychain::load(m_providerId)) {
        m_field.setText(*key);
        setSaved(true);
    }
}

void APIKey::save()
{
    if (m_field.isEmpty()) {
        return;
    }
    storage::Keychain::save(m_field.text(), m_providerId);
    setSaved(true);
}

void APIKey::remove()
{
    storage::Keychain::remove(m_providerId);
    m_field.setText({});
    setSaved(false);
}

void APIKey::setSaved(bool saved)
{
    if (saved == m_saved) {
        return;
    }
    m_saved = saved;
    Q_EMIT savedChanged();
}

} // namespace ui
