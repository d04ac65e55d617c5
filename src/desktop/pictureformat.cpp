#include "desktop/pictureformat.h"

#include <QIODevice>
#include <QtEndian>

namespace desktop {

using namespace Qt::StringLiterals;

QByteArray pictureFormat(QIODevice &file)
{
    constexpr qint64 bytesThatTell = 12;
    const QByteArray start = file.peek(bytesThatTell);
    if (start.startsWith("\x89PNG\r\n\x1a\n")) {
        return "png"_ba;
    }
    if (start.startsWith("\xff\xd8\xff")) {
        return "jpeg"_ba;
    }
    return start.startsWith("RIFF") && start.mid(8) == "WEBP" ? "webp"_ba : QByteArray();
}

bool chunksFit(QIODevice &png)
{
    constexpr qint64 signature = 8;
    constexpr qint64 head = 8;
    constexpr qint64 checksum = 4;
    const qint64 size = png.size();
    qint64 offset = signature;
    while (offset + head <= size) {
        const QByteArray chunk = png.seek(offset) ? png.read(head) : QByteArray();
        if (chunk.size() < head) {
            return false;
        }
        if (chunk.endsWith("IEND")) {
            break;
        }
        offset += head + qFromBigEndian<quint32>(chunk.constData()) + checksum;
    }
    return offset <= size && png.seek(0);
}

} // namespace desktop
