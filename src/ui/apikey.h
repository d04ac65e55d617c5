#pragma once

#include "ui/secrettext.h"

#include <QObject>
#include <QtQmlIntegration>

namespace ui {

/// The API key of one service while a person edits it: what stands in the field, and whether the
/// key store is known to hold a key. Nothing is stored before save() or remove().
class APIKey : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(
        QString providerId READ providerId WRITE setProviderId NOTIFY providerIdChanged REQUIRED)
    Q_PROPERTY(ui::SecretText *field READ field CONSTANT)
    Q_PROPERTY(bool saved READ isSaved NOTIFY savedChanged)

public:
    explicit APIKey(QObject *parent = nullptr);

    /// Identifier of the service in the key store.
    QString providerId() const { return m_providerId; }
    void setProviderId(const QString &providerId);
    SecretText *field() { return &m_field; }
    bool isSaved() const { return m_saved; }

    /// Fills the field with the stored key; where none is stored, everything stays as it is.
    Q_INVOKABLE void load();
    /// Stores what stands in the field, as it is; an empty field is never stored.
    Q_INVOKABLE void save();
    /// Removes the stored key and empties the field.
    Q_INVOKABLE void remove();

Q_SIGNALS:
    void providerIdChanged();
    void savedChanged();

private:
    void setSaved(bool saved);

    QString m_providerId;
    SecretText m_field;
    bool m_saved = false;
};

} // namespace ui
