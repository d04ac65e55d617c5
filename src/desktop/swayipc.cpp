#include "desktop/swayipc.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cstring>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView mark("i3-ipc");
constexpr qsizetype headerSize = mark.size() + 2 * qsizetype(sizeof(quint32));

// Numbers are in the machine's own byte order.
QByteArray bytesOf(quint32 number)
{
    return {reinterpret_cast<const char *>(&number), sizeof number};
}

quint32 numberAt(const QByteArray &bytes, qsizetype position)
{
    quint32 number = 0;
    std::memcpy(&number, bytes.constData() + position, sizeof number);
    return number;
}

tl::unexpected<QString> unreadable()
{
    return tl::make_unexpected(u"The desktop's answer cannot be read"_s);
}

bool isSafe(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')
        || (byte >= '0' && byte <= '9') || byte == '.' || byte == '_' || byte == '/' || byte == '-';
}

// Without quotes, within which sway would still look for spaces and wildcards. A backslash before
// the end of a line would join the two lines, so there is no way to say these.
std::optional<QByteArray> escaped(const QString &text)
{
    constexpr char lastControlCharacter = 0x1f;
    QByteArray escapedText;
    for (const char byte : text.toUtf8()) {
        if (byte >= 0 && byte <= lastControlCharacter) {
            return {};
        }
        if (!isSafe(byte)) {
            escapedText += '\\';
        }
        escapedText += byte;
    }
    return escapedText;
}

QRect rectOf(const QJsonObject &rect)
{
    return {rect["x"_L1].toInt(), rect["y"_L1].toInt(), rect["width"_L1].toInt(),
        rect["height"_L1].toInt()};
}

} // namespace

QByteArray swayMessage(SwayQuestion question, const QByteArray &text)
{
    return mark.toByteArray() + bytesOf(quint32(text.size())) + bytesOf(quint32(question)) + text;
}

tl::expected<std::optional<QByteArray>, QString> swayAnswer(
    SwayQuestion question, const QByteArray &received)
{
    const QByteArrayView start
        = QByteArrayView(received).first(std::min(received.size(), mark.size()));
    if (!mark.startsWith(start)) {
        return unreadable();
    }
    if (received.size() < headerSize) {
        return std::nullopt;
    }
    const quint32 length = numberAt(received, mark.size());
    const quint32 type = numberAt(received, mark.size() + qsizetype(sizeof length));
    if (type != quint32(question) || length > longestSwayAnswer) {
        return unreadable();
    }
    if (received.size() - headerSize < qsizetype(length)) {
        return std::nullopt;
    }
    return received.mid(headerSize, length);
}

SetResult swayCommandResult(const QByteArray &answer)
{
    const QJsonArray results = QJsonDocument::fromJson(answer).array();
    if (results.isEmpty()) {
        return unreadable();
    }
    for (const auto &result : results) {
        // Only the word "true" itself counts.
        if (!result["success"_L1].toBool()) {
            const QString detail = result["error"_L1].toString().section(u'\n', 0, 0);
            const QString sentence = u"The desktop refused the picture"_s;
            return tl::make_unexpected(detail.isEmpty() ? sentence : sentence + u": "_s + detail);
        }
    }
    return {};
}

tl::expected<std::vector<Screen>, QString> swayOutputs(const QByteArray &answer)
{
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    if (!document.isArray()) {
        return unreadable();
    }
    std::vector<Screen> outputs;
    const QJsonArray all = document.array();
    for (const auto &output : all) {
        if (output["active"_L1].toBool() && !output["name"_L1].toString().isEmpty()) {
            outputs.push_back({output["name"_L1].toString(), rectOf(output["rect"_L1].toObject())});
        }
    }
    return outputs;
}

std::optional<QByteArray> swayPictureCommand(const QString &output, const QString &file)
{
    const std::optional<QByteArray> escapedOutput = escaped(output);
    const std::optional<QByteArray> escapedFile = escaped(file);
    if (!escapedOutput || !escapedFile) {
        return {};
    }
    return "output " + *escapedOutput + " bg " + *escapedFile + " fill";
}

} // namespace desktop
