#pragma once

#include "core/wallpapermanager.h"
#include "fakes.h"
#include "providers/httpexchange.h"
#include "testlibs/httpserver.h"

#include <QSettings>
#include <QTemporaryDir>

#include <memory>

namespace core::fakes {

/// A manager in a home of its own, with a service that answers from a script, a desktop that
/// remembers, and a clock that stands still.
class ManagerFixture
{
    QTemporaryDir m_home; // Before what lies in it.

public:
    ManagerFixture();
    ~ManagerFixture();

    /// Constructs the manager, after the test has laid out settings, keys and pictures.
    WallpaperManager &start();
    /// Takes the manager down and constructs another one, as a new start of the program does.
    WallpaperManager &restart();
    void destroyManager() { m_manager.reset(); }
    /// Whether a manager, or a run that outlives it, still has a way to the services.
    bool isServiceInUse() const { return m_exchange.use_count() > 1; }

    QString home() const { return m_home.path(); }
    QString imageFolder() const { return home() + QStringLiteral("/Pictures/Plenaura"); }
    QString keyFolder() const;
    /// A picture in the image folder, made by hand.
    QUrl putImage(const QString &name);
    /// Puts a file where the image folder should be, so that nothing can be saved.
    void blockImageFolder();

    /// Answers of the three services that hold @p image.
    static QByteArray geminiAnswer(const QByteArray &image, const char *mimeType = "image/png");
    static QByteArray openAIShapedAnswer(const QByteArray &image);
    static QByteArray geminiError(const QString &message);

    testlibs::HttpServer server;
    FakeDesktop desktop;
    FakeClock clock;
    QSettings settings;

private:
    providers::ServiceTable m_services;
    std::shared_ptr<providers::HttpExchange> m_exchange;
    std::unique_ptr<WallpaperManager> m_manager;
};

} // namespace core::fakes
