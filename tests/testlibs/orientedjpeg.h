#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

namespace testlibs {

/// The ways in which a camera can have been held, as EXIF numbers them.
constexpr int firstOrientation = 1;
constexpr int lastOrientation = 8;

/// A JPEG that has @p size once it is turned the right way up, and then shows these quarters: red
/// and green above, blue and yellow below.
QByteArray orientedJpeg(int orientation, QSize size);
/// The same in a file; its name.
QString putOrientedJpeg(const QString &file, int orientation, QSize size);
/// A row for each way, with the one column "orientation".
void addOrientations();

/// What every such picture shows, as quarters() tells it.
constexpr char uprightQuarters[] = "RGBY";

/// A letter for the colour in the middle of each quarter, from left to right and down; a question
/// mark for another one.
QByteArray quarters(const QImage &image);

} // namespace testlibs
