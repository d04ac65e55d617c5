#pragma once

#include <QByteArray>
#include <QString>

namespace storage {

/// Who may read a file that was written: nobody but its owner from its first byte on, or whoever
/// may read any new file of this person.
enum class Readers { Owner, AsUsual };

/// Puts @p bytes in the place of the file at @p path in one step, also when the disk is full or the
/// program is killed. True means that every byte has reached the disk; after false, what was at
/// @p path is untouched. The folder must exist; its synchronisation blocks the calling thread.
///
/// A kill may leave a hidden file in the folder, which the next write to that folder removes. Two
/// writes to one folder must therefore not overlap.
[[nodiscard]] bool writeWholeFile(const QString &path, const QByteArray &bytes, Readers readers);

} // namespace storage
