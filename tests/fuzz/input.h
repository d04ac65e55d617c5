#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstdint>
#include <cstdlib>

namespace fuzzing {

/// Ends the target, which thereby found something.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// For targets whose inputs would make Qt write more than everything else takes.
inline void silenceQt()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}

inline QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
}

} // namespace fuzzing
