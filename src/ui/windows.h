#pragma once

#include "ui/windowset.h"

#include <QObject>
#include <QPointer>
#include <QtQmlIntegration>
#include <QVariant>

#include <memory>

class QQmlEngine;
class QQuickWindow;
class QSettings;

namespace core {
class WallpaperManager;
}

namespace ui {

/// The program's windows: the main window and the settings window, each at most once.
///
/// Nothing of Qt Quick lives before the first window is asked for, and nothing stays once the last
/// one is closed; a window that is opened again starts afresh. Main thread only.
class Windows : public QObject, public WindowSet
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes its windows.")
    Q_PROPERTY(
        bool trayAvailable READ isTrayAvailable WRITE setTrayAvailable NOTIFY trayAvailableChanged)
    Q_PROPERTY(QVariantList settingsKeys READ settingsKeys CONSTANT)
    Q_PROPERTY(QVariantList quitKeys READ quitKeys CONSTANT)
    Q_PROPERTY(QVariantList closeKeys READ closeKeys CONSTANT)

public:
    /// @p manager and @p store must outlive this object.
    Windows(core::WallpaperManager &manager, QSettings &store, QObject *parent = nullptr);
    ~Windows() override;

    Q_INVOKABLE void showMainWindow() override;
    Q_INVOKABLE void showSettings() override;
    void closeAll() override;
    bool isMainWindowShown() const override;
    bool isSettingsShown() const override;

    bool isTrayAvailable() const { return m_trayAvailable; }
    void setTrayAvailable(bool available) override;

    /// The keys of the platform, and the usual ones where it has none.
    static QVariantList settingsKeys();
    static QVariantList quitKeys();
    static QVariantList closeKeys();

    /// Asks the application to quit as its platform does, which may well be refused.
    Q_INVOKABLE void requestQuit();

Q_SIGNALS:
    void trayAvailableChanged();
    /// "Quit" was chosen in the main window: end the program for real.
    void reallyQuitRequested();
    void mainWindowShownChanged();

private:
    QQmlEngine &engine();
    QQuickWindow *create(const QUrl &url, const QVariantMap &properties);
    void show(QPointer<QQuickWindow> &window, const QUrl &url, const QVariantMap &properties);
    void discard(QQuickWindow *window);
    void discardEngineIfUnused();

    core::WallpaperManager &m_manager;
    QSettings &m_store;
    std::unique_ptr<QQmlEngine> m_engine;
    QPointer<QQuickWindow> m_mainWindow;
    QPointer<QQuickWindow> m_settingsWindow;
    bool m_trayAvailable = true;
};

} // namespace ui
