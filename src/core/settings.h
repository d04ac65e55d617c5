#pragma once

#include <QString>

#include <optional>

class QSettings;

namespace core {

/// The settings file, read as the kind of value each setting is.
///
/// People edit the file by hand: what cannot be read as the wanted kind counts as absent, and
/// nothing is written back. Main thread only.
class Settings
{
public:
    /// @p store must outlive this object and every copy of it.
    explicit Settings(QSettings &store);

    std::optional<QString> text(const QString &key) const;
    /// False when absent or not a boolean.
    bool boolean(const QString &key) const;
    /// 0 when absent, not a whole number, or one beyond 64 bits.
    qint64 integer(const QString &key) const;

    void setText(const QString &key, const QString &value);
    void setBoolean(const QString &key, bool value);
    void setInteger(const QString &key, qint64 value);
    void remove(const QString &key);

    static QString selectedModelKey(const QString &providerId);

private:
    QSettings &m_store;
};

} // namespace core
