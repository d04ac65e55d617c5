#include "ui/intervalchoice.h"

namespace ui {

void IntervalChoice::setManager(core::WallpaperManager *manager)
{
    if (manager == m_manager) {
        return;
    }
    if (m_manager) {
        m_manager->disconnect(this);
    }
    m_manager = manager;
    connect(m_manager, &core::WallpaperManager::intervalMinutesChanged, this,
        &IntervalChoice::indexChanged);
    Q_EMIT managerChanged();
    Q_EMIT indexChanged();
}

QStringList IntervalChoice::labels() const
{
    QStringList labels;
    for (const qint64 minutes : m_manager->intervalOptions()) {
        labels << m_manager->formatInterval(minutes);
    }
    return labels;
}

int IntervalChoice::index() const
{
    return int(m_manager->intervalOptions().indexOf(m_manager->intervalMinutes()));
}

void IntervalChoice::setIndex(int index)
{
    m_manager->setIntervalMinutes(m_manager->intervalOptions().at(index));
}

} // namespace ui
