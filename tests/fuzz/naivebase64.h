#pragma once

#include <QByteArray>

#include <optional>
#include <string_view>

namespace fuzzing {

/// Base64 a letter at a time, too plain to be wrong in the same way as the program's.
inline std::optional<QByteArray> decodeNaively(std::string_view text)
{
    constexpr std::string_view alphabet
        = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (text.size() % 4 != 0) {
        return {};
    }
    for (int padding = 0; padding < 2 && text.ends_with('='); ++padding) {
        text.remove_suffix(1);
    }
    QByteArray bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char letter : text) {
        const size_t value = alphabet.find(letter);
        if (value == std::string_view::npos) {
            return {};
        }
        bits = (bits << 6) | unsigned(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.append(char(bits >> count));
        }
    }
    return bytes;
}

} // namespace fuzzing
