#pragma once

#include "desktop/desktoppicture.h"

#include <QHash>
#include <QProcess>
#include <QString>

#include <memory>

namespace desktop {

/// The swaybg processes by which this program shows its pictures, one for each output: a picture
/// is seen as long as its process runs. One that dies is started again, though not for ever. They
/// end with this object, and also when the program is killed. For the main thread.
class BackgroundProcesses
{
public:
    /// @p program stands in for swaybg.
    explicit BackgroundProcesses(QString program = QStringLiteral("swaybg"));

    /// Shows @p file on @p output, then takes away what was there before; after an error, that
    /// stays. swaybg tells nothing of its success, so a process that goes on running has succeeded.
    QCoro::Task<SetResult> show(QString output, QString file);

private:
    const QString m_program;
    QHash<QString, std::shared_ptr<QProcess>> m_processes;
};

} // namespace desktop
