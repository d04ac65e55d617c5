#pragma once

#include "imageservice/wireformat.h"

#include <QString>

#include <chrono>
#include <optional>

namespace imageservice {

/// How the service answers to one key.
struct Behaviour
{
    enum class Reply { Picture, Error, Blocked, Array, Html, Nothing };
    enum class ErrorBeside { None, Object, Text };

    QLatin1StringView key = {};
    QLatin1StringView meaning = {};
    Reply reply = Reply::Picture;
    Shape shape = Shape::Image;
    int status = 200; ///< Of an error: the one it speaks of.
    std::optional<int> sentStatus = {}; ///< Where HTTP says something else than the body.
    std::optional<PictureFormat> format = {};
    bool isPicture = true; ///< Else some text takes its place.
    ErrorBeside errorBeside = ErrorBeside::None;
    qsizetype atLeast = 0; ///< Bytes of the body.
    Delivery delivery = Delivery::Whole;
    std::chrono::milliseconds delay{0};
};

/// The behaviour that @p key chooses; the ordinary one where it chooses none.
Behaviour behaviourFor(const QByteArray &key, bool isUpscaling);

/// The table of keys, for people.
QString behavioursHelp();

} // namespace imageservice
