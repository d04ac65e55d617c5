#pragma once

#include "desktop/onepicturedesktop.h"

#include <QByteArray>

namespace desktop {

/// Where a desktop that keeps its picture in GSettings keeps it. The keys for how it is placed and
/// the colour behind it have the same names in all of them.
struct BackgroundKeys
{
    QString desktop; ///< Short, for a folder of its own.
    QByteArray schema;
    QByteArray picture;
    bool isUri = true; ///< Else a plain path.
    /// The picture for the dark style, where there is one.
    QByteArray darkPicture = {};

    static BackgroundKeys gnome(); ///< Budgie's, too.
    static BackgroundKeys cinnamon();
    static BackgroundKeys mate();
};

/// GNOME, Budgie, Cinnamon and MATE: their painters follow the settings, and never say what they
/// think of a picture.
class GSettingsDesktop : public OnePictureDesktop
{
public:
    /// @p painter is its name on the bus.
    GSettingsDesktop(QDBusConnection bus, const QString &painter, const BackgroundKeys &keys);

protected:
    QCoro::Task<tl::expected<Setting, QString>> setting() override;
    QCoro::Task<SetResult> show(QString file, bool isSpanning) override;

private:
    const QString m_painter;
    const BackgroundKeys m_keys;
};

} // namespace desktop
