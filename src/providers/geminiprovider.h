#pragma once

#include "providers/imageprovider.h"
#include "providers/service.h"

#include <memory>

namespace providers {

class HttpExchange;

/// Google Gemini, asked for a 4K image in 16:9. The image may be a PNG or a JPEG file.
class GeminiProvider final : public ImageProvider
{
public:
    GeminiProvider(std::shared_ptr<HttpExchange> exchange, Service service);

    QString name() const override { return m_service.name; }
    QString id() const override { return m_service.id; }
    QList<ModelOption> models() const override { return m_service.models; }
    QCoro::Task<ImageResult> generate(QString prompt, QString apiKey, QString model) const override;

    static QByteArray requestBody(const QString &prompt);
    static ImageResult readAnswer(QByteArray body);

private:
    std::shared_ptr<HttpExchange> m_exchange;
    Service m_service;
};

} // namespace providers
