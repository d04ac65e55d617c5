#pragma once

#include <QImage>

/// A picture of 3840x2160 pixels, hills in a mist with the grain of a photograph; another one for
/// each number.
QImage photograph(int number);
