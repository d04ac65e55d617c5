#include "managerfixture.h"
#include "storage/keychain.h"
#include "ui/windows.h"

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QPalette darkPalette()
{
    QPalette palette(QColor(0x35, 0x35, 0x38), QColor(0x2a, 0x2a, 0x2c));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    return palette;
}

void putPictures(core::fakes::ManagerFixture &fixture, const QString &folder)
{
    QDir().mkpath(fixture.imageFolder());
    const auto files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        QFile::copy(file.filePath(), fixture.imageFolder() + u'/' + file.fileName());
    }
}

QQuickWindow *shownWindow(const QString &title)
{
    const auto windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (window->isVisible() && window->title().startsWith(title)) {
            return qobject_cast<QQuickWindow *>(window);
        }
    }
    return nullptr;
}

class Album
{
public:
    Album(const QString &folder, const QString &prefix) : m_path(folder + u'/' + prefix) { }

    void add(const QString &title, const QString &state)
    {
        QQuickWindow *window = shownWindow(title);
        QTest::qWait(400);
        window->grabWindow().save(m_path + state + u".png"_s);
    }

private:
    QString m_path;
};

} // namespace

/// Usage: windowpictures OUT-FOLDER light|dark PICTURE-FOLDER
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    const QString scheme = arguments.at(2);
    if (scheme == u"dark") {
        QGuiApplication::setPalette(darkPalette());
    }
    core::fakes::ManagerFixture fixture;
    auto &manager = fixture.start();
    ui::Windows windows(manager, fixture.settings);
    Album album(arguments.at(1), scheme + u'-');

    windows.showMainWindow();
    album.add(u"Plenaura"_s, u"1-empty"_s);

    manager.setPrompt(
        u"A quiet mountain lake at dawn, mist over the water, soft pastel sky, 35 mm"_s);
    manager.setFourKEnabled(true);
    manager.setNsfwEnabled(true);
    manager.setAutoEnabled(true);
    putPictures(fixture, arguments.at(3));
    manager.reloadHistory();
    manager.setStatus(
        u"Error: The service did not answer within 120 seconds. "_s.repeated(5), true);
    album.add(u"Plenaura"_s, u"2-missing"_s);

    storage::Keychain::save(u"canary-key"_s, u"gemini"_s);
    storage::Keychain::save(u"canary-key"_s, u"openai"_s);
    fixture.settings.setValue(u"providerOverride"_s, u"openai"_s);
    manager.refreshDerived();
    manager.setStatus(u"Wallpaper set!"_s, false);
    windows.setTrayAvailable(false);
    QTest::mouseMove(shownWindow(u"Plenaura"_s), {500, 100});
    album.add(u"Plenaura"_s, u"3-override-hover"_s);

    QTest::mouseClick(shownWindow(u"Plenaura"_s), Qt::LeftButton, {}, {500, 60});
    album.add(u"Plenaura"_s, u"4-preview"_s);
    QTest::keyClick(shownWindow(u"Plenaura"_s), Qt::Key_Escape);

    windows.showSettings();
    album.add(u"Settings"_s, u"5-keys"_s);
    QTest::keyClick(shownWindow(u"Settings"_s), Qt::Key_Tab);
    QTest::keyClick(shownWindow(u"Settings"_s), Qt::Key_Tab);
    QTest::keyClick(shownWindow(u"Settings"_s), Qt::Key_Right);
    album.add(u"Settings"_s, u"6-advanced"_s);
    return 0;
}
