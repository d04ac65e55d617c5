#include "desktop/onepicturedesktop.h"

#include "desktop/drawnarrangement.h"
#include "desktop/screenlayout.h"
#include "desktop/workerthread.h"

#include <QCoroFuture>
#include <QFile>

#include <algorithm>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

bool sameScreens(const QList<Screen> &one, const QList<Screen> &other)
{
    return std::is_permutation(one.begin(), one.end(), other.begin(), other.end());
}

ShowingScreen *attachedScreen(Arrangement &arrangement, const QString &name)
{
    const auto found = std::find_if(arrangement.screens.begin(), arrangement.screens.end(),
        [&](const ShowingScreen &each) { return each.isAttached() && each.screen.name == name; });
    return found == arrangement.screens.end() ? nullptr : &*found;
}

bool isNeeded(const QString &file, const Arrangement &shown)
{
    return file == shown.file
        || std::any_of(shown.screens.begin(), shown.screens.end(),
            [&](const ShowingScreen &each) { return each.shown.file == file; });
}

} // namespace

OnePictureDesktop::OnePictureDesktop(
    QDBusConnection bus, const QString &name, std::chrono::milliseconds timeForAnswers)
    : m_bus(std::move(bus)), m_pictures(name), m_timeForAnswers(timeForAnswers)
{
}

QCoro::Task<SetResult> OnePictureDesktop::setPicture(Picture picture, Screen screen)
{
    const tl::expected<Present, QString> before = co_await lookAtPresent();
    if (!before) {
        co_return tl::make_unexpected(before.error());
    }
    Arrangement wanted = presentArrangement(before->remembered, before->setting, before->screens);
    ShowingScreen *main = attachedScreen(wanted, screen.name);
    if (main == nullptr) {
        co_return tl::make_unexpected(u"The screen is no longer there"_s);
    }
    main->shown = {picture.file, {0, 0, 1, 1}, Placement::Cover, Qt::black};
    wanted.mainScreen = screen.name;
    co_return co_await drawAndShow(wanted, *before, picture);
}

QCoro::Task<SetResult> OnePictureDesktop::followScreens()
{
    const tl::expected<Present, QString> before = co_await lookAtPresent();
    if (!before) {
        co_return tl::make_unexpected(before.error());
    }
    const bool isOurs = !before->remembered.file.isEmpty();
    if (!isOurs || before->screens.isEmpty()
        || sameScreens(before->screens, before->remembered.attachedScreens())) {
        co_return {};
    }
    const Arrangement wanted
        = presentArrangement(before->remembered, before->setting, before->screens);
    co_return co_await drawAndShow(wanted, *before, {});
}

QCoro::Task<tl::expected<OnePictureDesktop::Present, QString>> OnePictureDesktop::lookAtPresent()
{
    m_deadline.setRemainingTime(m_timeForAnswers);
    const QList<Screen> screens = co_await screenLayout(m_bus, m_deadline);
    const tl::expected<Setting, QString> present = co_await setting();
    if (!present) {
        co_return tl::make_unexpected(present.error());
    }
    const QFuture<Present> looking
        = onWorkerThread([pictures = m_pictures, setting = *present, screens] {
              return Present{setting, pictures.remembered(setting.file), screens, pictures.files()};
          });
    co_return co_await looking;
}

QCoro::Task<SetResult> OnePictureDesktop::drawAndShow(
    Arrangement wanted, Present before, Picture picture)
{
    wanted.isSpanning = !before.setting.coversEachScreen;
    // Drawing takes none of the desktop's time.
    const auto timeLeft = m_deadline.remainingTimeAsDuration();
    const QFuture<tl::expected<Arrangement, QString>> drawing
        = onWorkerThread([pictures = m_pictures, wanted, before, picture] {
              return drawn(wanted, before.remembered, picture, pictures);
          });
    const tl::expected<Arrangement, QString> arrangement = co_await drawing;
    if (!arrangement) {
        co_return tl::make_unexpected(arrangement.error());
    }
    m_deadline.setRemainingTime(timeLeft);
    if (picture.file.isEmpty() && co_await isSetByOthers(before.setting)) {
        co_return {};
    }
    SetResult shown = co_await show(arrangement->file, arrangement->isSpanning);
    if (shown) {
        const QFuture<bool> keeping = onWorkerThread([pictures = m_pictures, before, arrangement] {
            keep(pictures, *arrangement, before);
            return true;
        });
        co_await keeping;
    }
    co_return shown;
}

// Following the screens must not undo a new picture.
QCoro::Task<bool> OnePictureDesktop::isSetByOthers(Setting before)
{
    const tl::expected<Setting, QString> now = co_await setting();
    co_return !now || now->file != before.file;
}

// The picture shown until now stays for one change more, as the painter may be slow to let go of
// it. Those that were not there when the change began may belong to another one.
void OnePictureDesktop::keep(
    const ComposedPictures &pictures, const Arrangement &shown, const Present &before)
{
    pictures.remember(shown);
    for (const QString &file : before.composedFiles) {
        if (file != before.setting.file && !isNeeded(file, shown)) {
            QFile::remove(file);
        }
    }
}

} // namespace desktop
