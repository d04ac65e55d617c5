#include "ui/windows.h"

#include "core/settings.h"
#include "core/wallpapermanager.h"
#include "providers/service.h"
#include "ui/accessibleitem.h"
#include "ui/advancedsettings.h"
#include "ui/x11front.h"

#include <QCoreApplication>
#include <QKeySequence>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QUrl>

// The linker drops what nobody names from a static library, the module's registration included.
extern void qml_register_types_Plenaura();

namespace ui {

using namespace Qt::StringLiterals;

namespace {
QVariantList keys(QKeySequence::StandardKey standard, const QString &usual)
{
    QVariantList keys;
    for (const QKeySequence &sequence : QKeySequence::keyBindings(standard)) {
        keys << sequence.toString(QKeySequence::PortableText);
    }
    if (!keys.contains(usual)) {
        keys << usual;
    }
    return keys;
}
} // namespace

Windows::Windows(core::WallpaperManager &manager, QSettings &store, QObject *parent)
    : QObject(parent), m_manager(manager), m_store(store)
{
    [[maybe_unused]] static const auto once
        = (qml_register_types_Plenaura(), AccessibleItem::install(), true);
}

Windows::~Windows()
{
    for (QPointer<QQuickWindow> *window : {&m_mainWindow, &m_settingsWindow}) {
        if (*window) {
            // It hides when it goes, and is a QQuickWindow no more when it says so.
            (*window)->disconnect(this);
            delete *window;
        }
    }
}

void Windows::showMainWindow()
{
    m_manager.refreshDerived();
    show(m_mainWindow, QUrl(u"qrc:/Plenaura/Main.qml"_s),
        {{u"manager"_s, QVariant::fromValue(&m_manager)},
            {u"windows"_s, QVariant::fromValue(this)}});
}

void Windows::showSettings()
{
    if (m_settingsWindow) {
        show(m_settingsWindow, {}, {});
        return;
    }
    auto advanced
        = std::make_unique<AdvancedSettings>(core::Settings(m_store), providers::services());
    show(m_settingsWindow, QUrl(u"qrc:/Plenaura/SettingsWindow.qml"_s),
        {{u"advanced"_s, QVariant::fromValue(advanced.get())},
            {u"windows"_s, QVariant::fromValue(this)}});
    advanced.release()->setParent(m_settingsWindow);
}

void Windows::closeAll()
{
    for (const QPointer<QQuickWindow> &window : {m_mainWindow, m_settingsWindow}) {
        if (window) {
            window->close();
        }
    }
}

bool Windows::isMainWindowShown() const
{
    return !m_mainWindow.isNull(); // One that is hidden is forgotten at once.
}

bool Windows::isSettingsShown() const
{
    return !m_settingsWindow.isNull();
}

void Windows::setTrayAvailable(bool available)
{
    if (available == m_trayAvailable) {
        return;
    }
    m_trayAvailable = available;
    Q_EMIT trayAvailableChanged();
}

QVariantList Windows::settingsKeys()
{
    return keys(QKeySequence::Preferences, u"Ctrl+,"_s);
}

QVariantList Windows::quitKeys()
{
    return keys(QKeySequence::Quit, u"Ctrl+Q"_s);
}

QVariantList Windows::closeKeys()
{
    return keys(QKeySequence::Close, u"Ctrl+W"_s);
}

void Windows::requestQuit()
{
    QCoreApplication::quit();
}

QQmlEngine &Windows::engine()
{
    if (!m_engine) {
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->addImportPath(u"qrc:/"_s);
    }
    return *m_engine;
}

QQuickWindow *Windows::create(const QUrl &url, const QVariantMap &properties)
{
    QQmlComponent component(&engine(), url);
    auto *window = qobject_cast<QQuickWindow *>(component.createWithInitialProperties(properties));
    if (!window) {
        qFatal("%s", qPrintable(component.errorString()));
    }
    QQmlEngine::setObjectOwnership(window, QQmlEngine::CppOwnership);
    connect(window, &QWindow::visibleChanged, this, [this, window](bool visible) {
        if (!visible) {
            discard(window);
        }
    });
    return window;
}

void Windows::show(QPointer<QQuickWindow> &window, const QUrl &url, const QVariantMap &properties)
{
    if (!window) {
        window = create(url, properties);
    }
    if (window->windowState() == Qt::WindowMinimized) {
        window->showNormal();
    }
    window->show();
    window->raise();
    window->requestActivate();
#ifndef Q_OS_MACOS
    // As Qt does with the token by which it asks on Wayland.
    putInFrontOnX11(*window, qgetenv("DESKTOP_STARTUP_ID"));
    qunsetenv("DESKTOP_STARTUP_ID");
#endif
}

void Windows::discard(QQuickWindow *window)
{
    // Another window may be asked for before this one is really gone.
    for (QPointer<QQuickWindow> *known : {&m_mainWindow, &m_settingsWindow}) {
        if (*known == window) {
            known->clear();
        }
    }
    window->disconnect(this);
    connect(window, &QObject::destroyed, this, &Windows::discardEngineIfUnused);
    window->deleteLater();
}

void Windows::discardEngineIfUnused()
{
    // A closed window's objects are still being taken down inside the engine when it says so.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_mainWindow && !m_settingsWindow) {
                m_engine.reset();
            }
        },
        Qt::QueuedConnection);
}

} // namespace ui
