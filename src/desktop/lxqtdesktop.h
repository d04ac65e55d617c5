#pragma once

#include "desktop/onepicturedesktop.h"

namespace desktop {

/// LXQt: its file manager paints one window over all screens.
class LxqtDesktop : public OnePictureDesktop
{
public:
    /// The file manager has @p timeForAnswers, which is less when it was asked something before.
    explicit LxqtDesktop(
        QDBusConnection bus, std::chrono::milliseconds timeForAnswers = answerTime);

    /// Whether the file manager on the bus paints the desktop at all; it must be running.
    static QCoro::Task<bool> paints(QDBusConnection bus, QDeadlineTimer deadline);

protected:
    QCoro::Task<tl::expected<Setting, QString>> setting() override;
    QCoro::Task<SetResult> show(QString file, bool isSpanning) override;
};

} // namespace desktop
