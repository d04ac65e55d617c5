#pragma once

#include "providers/modeloption.h"
#include "providers/providererror.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QString>

#include <tl/expected.hpp>

namespace providers {

/// An encoded image as the service sent it, and the extension ("png" or "jpg") to save it under.
struct GeneratedImage
{
    QByteArray bytes;
    QString extension;

    friend bool operator==(const GeneratedImage &, const GeneratedImage &) = default;
};

/// An image or an error; never both, never neither.
using ImageResult = tl::expected<GeneratedImage, ProviderError>;

/// One image service.
///
/// Immutable, and without state between calls: one instance serves any number of concurrent ones.
/// Every call completes exactly once on every path, also when the exchange is taken down under it.
class ImageProvider
{
public:
    ImageProvider() = default;
    ImageProvider(const ImageProvider &) = delete;
    ImageProvider &operator=(const ImageProvider &) = delete;
    virtual ~ImageProvider() = default;

    /// The service's name as shown to people.
    virtual QString name() const = 0;
    /// Identifier of the provider, of its stored key and of its chosen model.
    virtual QString id() const = 0;
    /// In display order; the first is the default.
    virtual QList<ModelOption> models() const = 0;

    /// Asks the service for one landscape image of @p prompt, sent unchanged. @p apiKey and
    /// @p model are used as given. Called and resumed on the caller's thread; the exchange and the
    /// reading of the answer run on another. Gives up after 120 seconds of silence.
    virtual QCoro::Task<ImageResult> generate(
        QString prompt, QString apiKey, QString model) const = 0;
};

} // namespace providers
