#include "imageservice/httpmessage.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

QByteArray reason(int status)
{
    struct Reason
    {
        int status;
        const char *text;
    };
    static constexpr std::array reasons
        = {Reason{200, "OK"}, Reason{400, "Bad Request"}, Reason{401, "Unauthorized"},
            Reason{403, "Forbidden"}, Reason{404, "Not Found"}, Reason{411, "Length Required"},
            Reason{413, "Content Too Large"}, Reason{422, "Unprocessable Entity"},
            Reason{429, "Too Many Requests"}, Reason{431, "Request Header Fields Too Large"},
            Reason{500, "Internal Server Error"}, Reason{502, "Bad Gateway"},
            Reason{503, "Service Unavailable"}, Reason{504, "Gateway Timeout"}};
    const auto *found = std::ranges::find_if(
        reasons, [&](const Reason &entry) { return entry.status == status; });
    return found == reasons.end() ? "Status"_ba : QByteArray(found->text);
}

} // namespace

QByteArray HttpRequest::header(QByteArrayView name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

bool HttpRequest::isLast() const
{
    const QByteArray connection = header("Connection").toLower();
    return version == "HTTP/1.0" ? connection != "keep-alive" : connection == "close";
}

QByteArray HttpResponse::head() const
{
    QByteArray result = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason(status) + "\r\n";
    for (const auto &[name, value] : headers) {
        result += name + ": " + value + "\r\n";
    }
    result += "Content-Type: " + contentType + "\r\n";
    result += "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n";
    return result;
}

} // namespace imageservice
