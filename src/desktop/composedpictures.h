#pragma once

#include "desktop/arrangement.h"

#include <QDir>
#include <QImage>
#include <QPoint>
#include <QStringList>

#include <tl/expected.hpp>

#include <optional>

namespace desktop {

/// The pictures that were composed for one desktop, and what is remembered about the one set last.
/// They lie among the program's own data, as they are no pictures to choose from.
///
/// The memory is a small file beside them and not a part of the composed picture, because it is
/// wanted as well while the desktop shows an ordinary picture: a screen that is switched off and on
/// again finds its own picture. It names the original of each screen, so that nothing is lost by
/// being scaled again and again.
///
/// Takes as long as the disk takes: not for the main thread.
class ComposedPictures
{
public:
    /// Each desktop has its own, since a person who uses two by turns goes on seeing both.
    explicit ComposedPictures(const QString &desktop);

    /// A new file, as desktops do not read the same name twice; else one sentence for people.
    tl::expected<QString, QString> save(const QImage &image) const;
    /// A new file with @p image at @p place of what save() has made of another one, sooner than all
    /// of it is drawn again for one screen. Nothing where that cannot be done.
    std::optional<QString> saveWithin(const QString &file, const QImage &image, QPoint place) const;
    /// Absolute paths.
    QStringList files() const;

    /// What is remembered about @p file; nothing unless it was the one remembered last.
    Arrangement remembered(const QString &file) const;
    void remember(const Arrangement &arrangement) const;

private:
    QString memoryFile() const { return m_folder.filePath(QStringLiteral("shown.json")); }

    QDir m_folder;
};

} // namespace desktop
