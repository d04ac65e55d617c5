#pragma once

#include "core/wallpapermanager.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QtQmlIntegration>

namespace ui {

/// The interval picker's options, and which of them is the manager's interval. An interval that is
/// not offered is left as it is and shows as no choice.
class IntervalChoice : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(core::WallpaperManager *manager READ manager WRITE setManager NOTIFY managerChanged
            REQUIRED)
    Q_PROPERTY(QStringList labels READ labels NOTIFY managerChanged)
    Q_PROPERTY(int index READ index WRITE setIndex NOTIFY indexChanged)

public:
    using QObject::QObject;

    core::WallpaperManager *manager() const { return m_manager; }
    void setManager(core::WallpaperManager *manager);
    QStringList labels() const;
    /// -1 for an interval that is not offered.
    int index() const;
    void setIndex(int index);

Q_SIGNALS:
    void managerChanged();
    void indexChanged();

private:
    QPointer<core::WallpaperManager> m_manager;
};

} // namespace ui
