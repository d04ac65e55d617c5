#pragma once

#include "imageservice/behaviours.h"
#include "imageservice/recorder.h"

#include <QFuture>
#include <QThreadPool>

#include <optional>

namespace imageservice {

/// Stands in for the three image services: paints what they are asked for, or misbehaves as the key
/// says. Several requests are worked on at once; its end waits for those under way.
class ImageService
{
public:
    explicit ImageService(std::optional<Recorder> recorder);

    /// The answer is worked out on a thread of its own. Call from one thread only.
    QFuture<HttpResponse> handle(const HttpRequest &request);

private:
    HttpResponse answer(int number, const HttpRequest &request) const;

    std::optional<Recorder> m_recorder;
    QThreadPool m_threads;
};

} // namespace imageservice
