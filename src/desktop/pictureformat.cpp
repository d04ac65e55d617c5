#include "desktop/pictureformat.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

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
    return offset <= size;
}

/// The bytes of a device one after the other, from where it is.
class ByteReader
{
public:
    explicit ByteReader(QIODevice &device) : m_device(device) { }

    /// Less than zero at the end.
    int next() { return m_at < m_block.size() || refill() ? uchar(m_block.at(m_at++)) : -1; }

    void skip(qsizetype count) { m_at += count; }

    /// Goes behind the next byte of this value; false when there is none.
    bool goBehind(char byte)
    {
        do {
            const qsizetype found = m_block.indexOf(byte, m_at);
            if (found >= 0) {
                m_at = found + 1;
                return true;
            }
            m_at = std::max(m_at, m_block.size());
        } while (refill());
        return false;
    }

private:
    bool refill()
    {
        constexpr qint64 atOnce = 16384;
        m_device.skip(m_at - m_block.size()); // What was skipped may lie behind the block.
        m_block = m_device.read(atOnce);
        m_at = 0;
        return !m_block.isEmpty();
    }

    QIODevice &m_device;
    QByteArray m_block;
    qsizetype m_at = 0;
};

// Goes from marker to marker: thumbnails have ends as well, and anything may follow the last one.
bool hasEndOfImage(QIODevice &jpeg)
{
    constexpr int startOfImage = 2;
    constexpr int filler = 0xff;
    constexpr int endOfImage = 0xd9;
    // These stand alone, within the data: a stuffed zero, and marks to start afresh from.
    const auto isPartOfScan = [](int code) { return code <= 1 || (code >= 0xd0 && code <= 0xd7); };
    ByteReader bytes(jpeg);
    bytes.skip(startOfImage);
    while (bytes.goBehind('\xff')) {
        int code = bytes.next();
        while (code == filler) {
            code = bytes.next();
        }
        if (code == endOfImage) {
            return true;
        }
        if (!isPartOfScan(code)) {
            const int high = bytes.next();
            const int length = high * 256 + bytes.next(); // Counts itself.
            bytes.skip(std::max(0, length - 2));
        }
    }
    return false;
}

} // namespace

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

bool isWhole(QIODevice &file, const QByteArray &format)
{
    const bool whole = format == "png" ? chunksFit(file)
        : format == "jpeg"             ? hasEndOfImage(file)
                                       : true;
    return file.seek(0) && whole;
}

} // namespace desktop
