#include "input.h"
#include "pngchecksums.h"
#include "scratchfolder.h"
#include "ui/picturereader.h"

#include <QCoreApplication>
#include <QImageReader>

using namespace Qt::StringLiterals;

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maximumSize);

namespace {

/// The sanitizer sees a byte that was never written or that lies outside only when it is read.
void touch(const QImage &image)
{
    uint sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            sum += line[x];
        }
    }
    [[maybe_unused]] static volatile uint sink;
    sink = sum;
}

void check(const QString &file, QSize box, ui::Framing framing)
{
    static const std::atomic_bool stopped = false;
    const QImage image = ui::readPicture(file, box, framing, stopped);
    fuzzing::require(image.isNull() || image.format() == QImage::Format_RGB32
        || image.format() == QImage::Format_ARGB32_Premultiplied);
    fuzzing::require(image.width() <= 2 * box.width() && image.height() <= 2 * box.height());
    touch(image);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const QCoreApplication application(*argc, *argv);
    fuzzing::silenceQt();
    // Without its decoders there is nothing to find.
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    fuzzing::require(
        formats.contains("png"_ba) && formats.contains("jpeg"_ba) && formats.contains("webp"_ba));
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(
    uint8_t *data, size_t size, size_t maximumSize, unsigned int seed)
{
    const size_t mutated = LLVMFuzzerMutate(data, size, maximumSize);
    // Most pictures with a wrong checksum are refused at once; some are to remain.
    if (seed % 8 != 0) {
        fuzzing::correctPngChecksums(data, mutated);
    }
    return mutated;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const fuzzing::ScratchFolder folder;
    const QString name = u"wallpaper_20260101_000000.png"_s;
    folder.put(name, fuzzing::bytes(data, size));
    check(folder.path(name), {48, 30}, ui::Framing::Cover);
    check(folder.path(name), {200, 200}, ui::Framing::Fit);
    return 0;
}
