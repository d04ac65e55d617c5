#include "desktop/gsettingsdesktop.h"

#include "desktop/buscall.h"
#include "desktop/gsettingskeys.h"
#include "desktop/workerthread.h"

#include <QCoroFuture>
#include <QUrl>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

const QByteArray options = "picture-options"_ba;

QString unanswered()
{
    return u"The desktop's settings did not answer within %1 seconds"_s.arg(answerTime.count());
}

Placement placementOfOption(const QString &option)
{
    return option == "none"_L1     ? Placement::None
        : option == "wallpaper"_L1 ? Placement::Tile
        : option == "centered"_L1  ? Placement::Center
        : option == "scaled"_L1    ? Placement::Fit
        : option == "stretched"_L1 ? Placement::Stretch
                                   : Placement::Cover;
}

// In MATE's words or in those of the others.
Backdrop::Shading shadingNamed(const QString &type)
{
    return type.startsWith("horizontal"_L1) ? Backdrop::Shading::FromLeftToRight
        : type.startsWith("vertical"_L1)    ? Backdrop::Shading::FromTopToBottom
                                            : Backdrop::Shading::Solid;
}

QColor colourNamed(const QString &name)
{
    const QColor colour(name);
    return colour.isValid() ? colour : Qt::black;
}

Backdrop backdropOf(const GSettingsKeys &settings)
{
    Backdrop backdrop(colourNamed(settings.value("primary-color"_ba)));
    backdrop.endColour = colourNamed(settings.value("secondary-color"_ba));
    backdrop.shading = shadingNamed(settings.value("color-shading-type"_ba));
    return backdrop;
}

bool prefersDark()
{
    const auto style = GSettingsKeys::open("org.gnome.desktop.interface"_ba);
    return style && style->value("color-scheme"_ba) == "prefer-dark"_L1;
}

QString fileFrom(const QString &text)
{
    return text.startsWith(u'/') ? text : QUrl(text).toLocalFile();
}

tl::expected<Setting, QString> readSetting(const BackgroundKeys &keys)
{
    return GSettingsKeys::open(keys.schema).map([&](const GSettingsKeys &settings) {
        const bool isDark = settings.has(keys.darkPicture) && prefersDark();
        const QString file = fileFrom(settings.value(isDark ? keys.darkPicture : keys.picture));
        const QString option = settings.value(options);
        return Setting{
            file, placementOfOption(option), option == "spanned"_L1, backdropOf(settings)};
    });
}

SetResult changeSetting(const BackgroundKeys &keys, const QString &file, bool isSpanning)
{
    return GSettingsKeys::open(keys.schema).and_then([&](const GSettingsKeys &settings) {
        const QString text
            = keys.isUri ? QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded) : file;
        return settings.change({{keys.picture, text}, {keys.darkPicture, text},
            {options, isSpanning ? u"spanned"_s : u"zoom"_s}});
    });
}

} // namespace

BackgroundKeys BackgroundKeys::gnome()
{
    return {u"gnome"_s, "org.gnome.desktop.background"_ba, "picture-uri"_ba, true,
        "picture-uri-dark"_ba};
}

BackgroundKeys BackgroundKeys::cinnamon()
{
    return {u"cinnamon"_s, "org.cinnamon.desktop.background"_ba, "picture-uri"_ba};
}

BackgroundKeys BackgroundKeys::mate()
{
    return {u"mate"_s, "org.mate.background"_ba, "picture-filename"_ba, false};
}

GSettingsDesktop::GSettingsDesktop(
    QDBusConnection bus, const QString &painter, const BackgroundKeys &keys)
    : OnePictureDesktop(std::move(bus), keys.desktop), m_painter(painter), m_keys(keys)
{
}

QCoro::Task<tl::expected<Setting, QString>> GSettingsDesktop::setting()
{
    // Settings take everything, also while nobody paints: the painter is asked first.
    const BusResult painter = co_await callBus(bus(), painterCall(m_painter), deadline());
    if (!painter) {
        co_return tl::make_unexpected(painter.error().sentence);
    }
    const QFuture<std::optional<tl::expected<Setting, QString>>> reading
        = onWorkerThread([keys = m_keys] { return readSetting(keys); }, deadline());
    const auto read = co_await reading;
    co_return read.value_or(tl::make_unexpected(unanswered()));
}

QCoro::Task<SetResult> GSettingsDesktop::show(QString file, bool isSpanning)
{
    const QFuture<std::optional<SetResult>> changing = onWorkerThread(
        [keys = m_keys, file, isSpanning] { return changeSetting(keys, file, isSpanning); },
        deadline());
    const std::optional<SetResult> changed = co_await changing;
    co_return changed.value_or(tl::make_unexpected(unanswered()));
}

} // namespace desktop
