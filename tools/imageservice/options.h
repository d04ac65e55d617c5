#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <tl/expected.hpp>

namespace imageservice {

/// What the command line asks for.
struct Options
{
    enum class Task { Serve, Paint, Help };

    Task task = Task::Serve;
    quint16 port = 0; ///< 0 for any that is free.
    QString recordDirectory = {}; ///< Empty where nothing is to be recorded.
    QString prompt = {};
    QString model = {};
    QSize size{3840, 2160};
    QString file = {};
};

/// The options in @p arguments, program name first, or one line on what is wrong with them.
tl::expected<Options, QString> parsedOptions(const QStringList &arguments);

QString helpText();

} // namespace imageservice
