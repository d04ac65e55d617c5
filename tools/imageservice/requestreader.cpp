#include "imageservice/requestreader.h"

#include <algorithm>

namespace imageservice {

namespace {

bool isToken(QByteArrayView text)
{
    return !text.isEmpty() && std::ranges::all_of(text, [](char letter) {
        return letter > ' ' && letter < '\x7f'
            && QByteArrayView("()<>@,;:\\\"/[]?={}").indexOf(letter) < 0;
    });
}

bool isVisible(QByteArrayView text)
{
    return !text.isEmpty()
        && std::ranges::all_of(text, [](char letter) { return letter > ' ' && letter < '\x7f'; });
}

} // namespace

void RequestReader::feed(const QByteArray &bytes)
{
    if (!m_refusal) {
        m_bytes += bytes;
        readHead();
    }
}

std::optional<HttpRequest> RequestReader::next()
{
    if (m_refusal || !m_hasHead || m_bytes.size() < m_length) {
        return {};
    }
    m_request.body = m_bytes.first(m_length);
    m_bytes.remove(0, m_length);
    m_hasHead = false;
    m_wantsContinue = false;
    HttpRequest complete = std::exchange(m_request, {});
    readHead();
    return complete;
}

bool RequestReader::takeContinueWish()
{
    return std::exchange(m_wantsContinue, false);
}

void RequestReader::readHead()
{
    if (m_hasHead) {
        return;
    }
    const qsizetype end = m_bytes.indexOf("\r\n\r\n");
    if (std::max(end, end < 0 ? m_bytes.size() : 0) > MaximumHead) {
        return refuse(431, "The headers are too large.");
    }
    if (end < 0) {
        return;
    }
    // The last header keeps its line end, so that all lines look alike.
    const QByteArray head = m_bytes.first(end + 2);
    m_bytes.remove(0, end + 4);
    qsizetype from = 0;
    for (qsizetype to = head.indexOf("\r\n"); to >= 0;
         from = to + 2, to = head.indexOf("\r\n", from)) {
        const QByteArray line = head.sliced(from, to - from);
        if (!(from == 0 ? readRequestLine(line) : readHeader(line))) {
            return refuse(400, "The request is malformed.");
        }
    }
    m_hasHead = true;
    readLength();
}

bool RequestReader::readRequestLine(const QByteArray &line)
{
    const auto words = line.split(' ');
    if (words.size() != 3 || !isToken(words[0]) || !isVisible(words[1]) || !words[1].startsWith('/')
        || !words[2].startsWith("HTTP/1.")) {
        return false;
    }
    m_request.method = words[0];
    m_request.target = words[1];
    m_request.version = words[2];
    return true;
}

bool RequestReader::readHeader(const QByteArray &line)
{
    const qsizetype colon = line.indexOf(':');
    if (colon < 0 || !isToken(QByteArrayView(line).first(colon))) {
        return false;
    }
    m_request.headers.emplaceBack(line.first(colon), line.sliced(colon + 1).trimmed());
    return true;
}

void RequestReader::readLength()
{
    if (!m_request.header("Transfer-Encoding").isNull()) {
        return refuse(411, "Send the body with a Content-Length.");
    }
    const QByteArray length = m_request.header("Content-Length");
    const bool digits
        = std::ranges::all_of(length, [](char letter) { return letter >= '0' && letter <= '9'; });
    if (!digits || (length.isEmpty() && !length.isNull())) {
        return refuse(400, "The Content-Length is not a number.");
    }
    bool fits = true;
    m_length = length.isNull() ? 0 : length.toLongLong(&fits);
    if (!fits || m_length > MaximumBody) {
        return refuse(413, "The body is too large.");
    }
    m_wantsContinue = m_request.header("Expect").toLower() == "100-continue";
}

void RequestReader::refuse(int status, const QByteArray &message)
{
    const QByteArray number = QByteArray::number(status);
    m_bytes.clear();
    m_refusal = HttpResponse{.status = status,
        .body = R"({"error":{"code":)" + number + R"(,"message":")" + message + R"("}})"};
}

} // namespace imageservice
