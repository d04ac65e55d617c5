#include "core/settings.h"

#include <QSettings>
#include <QStringList>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace core {

Settings::Settings(QSettings &store) : m_store(store) { }

std::optional<QString> Settings::text(const QString &key) const
{
    const QVariant value = m_store.value(key);
    if (value.typeId() == QMetaType::QStringList) {
        // Commas in a line that a person wrote without quotes part it into a list.
        return value.toStringList().join(", "_L1);
    }
    if (!value.canConvert<QString>()) {
        return std::nullopt;
    }
    return value.toString();
}

bool Settings::boolean(const QString &key) const
{
    const QString value = m_store.value(key).toString();
    return value.compare("true"_L1, Qt::CaseInsensitive) == 0
        || value.compare("yes"_L1, Qt::CaseInsensitive) == 0 || value.toLongLong() != 0;
}

qint64 Settings::integer(const QString &key) const
{
    return m_store.value(key).toString().toLongLong();
}

void Settings::setText(const QString &key, const QString &value)
{
    m_store.setValue(key, value);
}

void Settings::setBoolean(const QString &key, bool value)
{
    m_store.setValue(key, value);
}

void Settings::setInteger(const QString &key, qint64 value)
{
    m_store.setValue(key, value);
}

void Settings::remove(const QString &key)
{
    m_store.remove(key);
}

QString Settings::selectedModelKey(const QString &providerId)
{
    return u"selectedModel_"_s + providerId;
}

} // namespace core
