#include "providers/strictbase64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace providers {

namespace {

/// Multiples of 4 and of 3, and far below what OpenSSL counts with: an int.
constexpr qsizetype textBlock = 48 * 1024;
constexpr qsizetype byteBlock = textBlock / 4 * 3;

/// Absent unless there are at most two "=", all at the end.
std::optional<qsizetype> paddingLength(std::string_view text)
{
    const size_t lastLetter = text.find_last_not_of('=');
    const size_t letters = lastLetter == std::string_view::npos ? 0 : lastLetter + 1;
    if (text.size() - letters > 2 || text.substr(0, letters).find('=') != std::string_view::npos) {
        return {};
    }
    return text.size() - letters;
}

/// OpenSSL overlooks white space and "-" at both ends of a block, which then yields less.
bool decodeBlock(const char *text, qsizetype size, unsigned char *output)
{
    return EVP_DecodeBlock(output, reinterpret_cast<const unsigned char *>(text), int(size))
        == size / 4 * 3;
}

} // namespace

std::optional<qsizetype> decodeStrictBase64(std::string_view text, char *output)
{
    const qsizetype size = text.size();
    const auto padding = paddingLength(text);
    if (size % 4 != 0 || !padding) {
        return {};
    }
    // Decoded aside, because OpenSSL does not promise to bear its output on top of its input.
    std::array<unsigned char, byteBlock> bytes; // NOLINT(*-member-init): written before read
    for (qsizetype offset = 0; offset < size; offset += textBlock) {
        const qsizetype block = std::min(textBlock, size - offset);
        if (!decodeBlock(text.data() + offset, block, bytes.data())) {
            return {};
        }
        std::memcpy(output + offset / 4 * 3, bytes.data(), block / 4 * 3);
    }
    return size / 4 * 3 - *padding;
}

qsizetype base64Size(qsizetype size)
{
    return (size + 2) / 3 * 4;
}

void appendBase64(QByteArray &text, QByteArrayView bytes)
{
    const qsizetype start = text.size();
    text.resize(start + base64Size(bytes.size()));
    // OpenSSL ends each block with a NUL; the next block or the array's own one comes to stand
    // there.
    auto *output = reinterpret_cast<unsigned char *>(text.data() + start);
    const auto *input = reinterpret_cast<const unsigned char *>(bytes.data());
    for (qsizetype offset = 0; offset < bytes.size(); offset += byteBlock) {
        const qsizetype block = std::min(byteBlock, bytes.size() - offset);
        output += EVP_EncodeBlock(output, input + offset, int(block));
    }
}

} // namespace providers
