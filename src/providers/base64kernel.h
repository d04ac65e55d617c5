#pragma once

#include <QByteArrayView>

#include <string_view>

/// Base64 with vectors, where the processor has AVX2: OpenSSL takes longer over an image than all
/// else that is done about an answer. Both functions begin at the start and stop where the ordinary
/// way is to go on; on any other processor that is at once.
namespace providers::base64kernel {

/// How many letters at the start of @p text were decoded to @p output, which may be memory of the
/// text, at its start or before it. Stops before the block that holds anything but a letter of the
/// standard alphabet.
qsizetype decode(std::string_view text, char *output);

/// How many of @p bytes were encoded to @p output.
qsizetype encode(QByteArrayView bytes, char *output);

} // namespace providers::base64kernel
