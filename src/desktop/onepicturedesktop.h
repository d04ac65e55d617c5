#pragma once

#include "desktop/arrangement.h"
#include "desktop/backend.h"
#include "desktop/buscall.h"
#include "desktop/composedpictures.h"

#include <QDBusConnection>
#include <QDeadlineTimer>

namespace desktop {

/// A desktop that has one picture for all screens. That one screen changes and the others keep
/// theirs is brought about by a composed picture: one image of the whole virtual desktop, with the
/// new picture on the one screen and on the others what they show now. With one screen only, or
/// where all are to show the same, the file itself is set.
class OnePictureDesktop : public Backend
{
public:
    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) final;
    QCoro::Task<SetResult> followScreens() final;

protected:
    /// @p name tells this desktop's composed pictures from those of others.
    OnePictureDesktop(QDBusConnection bus, const QString &name,
        std::chrono::milliseconds timeForAnswers = answerTime);

    /// What the desktop is set to.
    virtual QCoro::Task<tl::expected<Setting, QString>> setting() = 0;
    /// Sets @p file, one large picture over all screens or for each to be covered by it; also reads
    /// it back.
    virtual QCoro::Task<SetResult> show(QString file, bool isSpanning) = 0;

    QDBusConnection bus() const { return m_bus; }
    /// When the desktop's time for answers is over.
    QDeadlineTimer deadline() const { return m_deadline; }

private:
    struct Present
    {
        Setting setting;
        Arrangement remembered;
        QList<Screen> screens;
        QStringList composedFiles;
    };

    QCoro::Task<tl::expected<Present, QString>> lookAtPresent();
    QCoro::Task<SetResult> drawAndShow(Arrangement wanted, Present before, Picture picture);
    QCoro::Task<bool> isSetByOthers(Setting before);
    static void keep(
        const ComposedPictures &pictures, const Arrangement &shown, const Present &before);

    const QDBusConnection m_bus;
    const ComposedPictures m_pictures;
    const std::chrono::milliseconds m_timeForAnswers;
    QDeadlineTimer m_deadline;
};

} // namespace desktop
