#pragma once

#include "shots.h"

#include <QtCore/QString>

/// Writes sheets of pictures of subtitles over @p film: each place on the picture with each of the film's lines, at the
/// display's own size (one sheet) and at twice that (one for each place).
///
/// @param film has a line in the middle of each four seconds: Korean and Latin, of one and of two lines.
void take_subtitle_sheets(TavelVideo* window, QWidget* settings, Shots& shots, const QString& film);
