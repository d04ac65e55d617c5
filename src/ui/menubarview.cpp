#include "ui/menubarview.h"

#include "core/texts.h"
#include "core/wallpapermanager.h"

using core::WallpaperManager;

namespace ui {

MenuBarView::MenuBarView(WallpaperManager &manager, QWidget *parent)
    : QMenu(parent), m_manager(manager), m_statusLine(addAction(QString())),
      m_generateNow((addSeparator(), addAction(tr("Generate Now")))),
      m_autoGenerate(addAction(tr("Auto-Generate")))
{
    m_statusLine->setEnabled(false);
    m_autoGenerate->setCheckable(true);
    connect(m_generateNow, &QAction::triggered, &m_manager, &WallpaperManager::generateAndSet);
    connect(m_autoGenerate, &QAction::triggered, &m_manager, &WallpaperManager::setAutoEnabled);

    addSeparator();
    connect(
        addAction(tr("Open Window")), &QAction::triggered, this, &MenuBarView::openWindowRequested);
    connect(
        addAction(tr("Settings...")), &QAction::triggered, this, &MenuBarView::settingsRequested);

    addSeparator();
    connect(addAction(tr("Quit")), &QAction::triggered, this, &MenuBarView::quitRequested);

    // Every published change of the manager comes with this signal, derived values or not.
    connect(&m_manager, &WallpaperManager::derivedChanged, this, &MenuBarView::refresh);
    connect(this, &QMenu::aboutToShow, &m_manager, &WallpaperManager::refreshDerived);
    refresh();
}

QString MenuBarView::statusLine() const
{
    if (m_manager.isLoading()) {
        return tr("Generating...");
    }
    if (m_manager.nextFireDate().isValid()) {
        return tr("Next: %1").arg(core::texts::shortTime(m_manager.nextFireDate()));
    }
    return tr("Idle");
}

void MenuBarView::refresh()
{
    m_statusLine->setText(statusLine());
    m_generateNow->setEnabled(m_manager.canGenerate());
    m_autoGenerate->setChecked(m_manager.autoEnabled());
}

} // namespace ui
