#pragma once

#include <QByteArray>

#include <optional>
#include <string_view>

namespace providers {

enum class Base64Way {
    Fastest, ///< With the vectors of the processor, if it has them.
    Portable, ///< The same on every processor.
};

/// How many bytes @p text stood for, or nothing unless it is base64 without a flaw: letters of the
/// standard alphabet only, a length that is a multiple of 4, padding only at the end. Empty text
/// stands for no bytes.
///
/// The bytes are written to @p output, which needs 3 bytes for every 4 of the text and may be
/// memory of the text itself, at its start or before it.
[[nodiscard]] std::optional<qsizetype> decodeStrictBase64(
    std::string_view text, char *output, Base64Way way = Base64Way::Fastest);

/// Room that appendBase64() takes for @p size bytes.
qsizetype base64Size(qsizetype size);

/// Appends @p bytes to @p text in standard base64, without line breaks.
void appendBase64(QByteArray &text, QByteArrayView bytes, Base64Way way = Base64Way::Fastest);

} // namespace providers
