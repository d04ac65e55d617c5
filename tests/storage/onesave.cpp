#include "storage/imagestore.h"
#include "storage/keychain.h"

#include <QUrl>

#include <cstdio>
#include <string_view>
#include <tuple>
#include <unistd.h>

namespace {

/// Tells when the first of them is in the file.
void saveKeys(const QString &identifier, qsizetype size, long times)
{
    for (long round = 0; round < times; ++round) {
        storage::Keychain::save(QString(round % 2 == 0 ? 10 : size, u'k'), identifier);
        if (round == 0) {
            std::puts("saving");
            std::fflush(stdout);
        }
    }
}

} // namespace

/// onesave key IDENTIFIER KEY
/// onesave nokey IDENTIFIER
/// onesave picture LETTER SIZE, which tells where it is, or nothing
/// onesave keys IDENTIFIER SIZE TIMES, by turns a short key and one of the size
int main(int argc, char **argv)
{
    const QList<QByteArray> arguments(argv + 1, argv + argc);
    if (arguments.size() < 2) {
        return 2;
    }
    const QByteArray &what = arguments[0];
    const QString identifier = QString::fromLocal8Bit(arguments[1]);
    std::optional<QUrl> picture;
    // In a trace of the system's calls, the save stands between this one and its like.
    std::ignore = ::access("/the save begins", F_OK);
    if (what == "key" && arguments.size() == 3) {
        storage::Keychain::save(QString::fromLocal8Bit(arguments[2]), identifier);
    } else if (what == "nokey") {
        storage::Keychain::remove(identifier);
    } else if (what == "picture" && arguments.size() == 3) {
        const QByteArray bytes(arguments[2].toLong(), arguments[1][0]);
        picture = storage::ImageStore::save(bytes, QStringLiteral("png"));
    } else if (what == "keys" && arguments.size() == 4) {
        saveKeys(identifier, arguments[2].toLong(), arguments[3].toLong());
    } else {
        return 2;
    }
    std::ignore = ::access("/the save ends", F_OK);
    if (picture) {
        std::puts(picture->toLocalFile().toLocal8Bit().constData());
    }
    return 0;
}
