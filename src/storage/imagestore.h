#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace storage {

/// The folder of all wallpapers ever made, which the person may tidy by hand.
///
/// A namespace of static operations without an index or a cache: every listing is read afresh.
/// None reports an error. Locations are `file:` URLs. Main thread only.
class ImageStore
{
public:
    ImageStore() = delete;

    /// Path of the image folder, which is created if it is missing.
    static QString directory();
    /// Writes @p bytes to a new file named after the local date and time; @p ext has no dot.
    /// Absent unless every byte is in the file; a picture of the same second is replaced.
    static std::optional<QUrl> save(const QByteArray &bytes, const QString &ext);
    /// The pictures directly in the folder, newest first.
    static QList<QUrl> allImages();
    /// Removes one entry for good (not to the trash); failure is ignored.
    static void remove(const QUrl &url);
    /// When the file came into being: its birth time where the file system keeps one, else its
    /// modification time; invalid when neither can be read.
    static QDateTime creationDate(const QUrl &url);
};

} // namespace storage
