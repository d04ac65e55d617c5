#pragma once

#include "providers/imageprovider.h"
#include "providers/service.h"

#include <memory>

namespace providers {

class HttpExchange;

/// OpenAI, asked for a landscape PNG file of 1536 x 1024 pixels.
class OpenAIProvider final : public ImageProvider
{
public:
    OpenAIProvider(std::shared_ptr<HttpExchange> exchange, Service service);

    QString name() const override { return m_service.name; }
    QString id() const override { return m_service.id; }
    QList<ModelOption> models() const override { return m_service.models; }
    QCoro::Task<ImageResult> generate(QString prompt, QString apiKey, QString model) const override;

    static QByteArray requestBody(const QString &prompt, const QString &model);
    static ImageResult readAnswer(QByteArray body);

private:
    std::shared_ptr<HttpExchange> m_exchange;
    Service m_service;
};

} // namespace providers
