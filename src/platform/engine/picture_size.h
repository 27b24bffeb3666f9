#pragma once

#include <QSize>

/// What is chosen by the size of a film's frames and of their place on the display.
namespace picture_size
{

/// How many threads decode frames of @p height pixels, at least one. More finish a frame sooner, but each holds frames
/// of its own, and for small ones handing over costs more than it gains.
int decoder_threads(int height);

/// What becomes of a frame on its way to the display.
enum class Scaling { None, Smaller, Larger };

/// @param frame as it reaches the renderer, turned if the film is turned; empty when unknown
/// @param pixel_aspect how much wider than high a pixel of the frame is
/// @param place the room on the display, in its pixels
/// @param keeps_shape false when the film fills its place whatever its shape
/// @return None also when nothing is known of the frame, or there is no place.
Scaling scaling_of(QSize frame, double pixel_aspect, QSize place, bool keeps_shape);

/// The playing library has two scalers. Its settings for one kind of scaling:
struct Scaler {
    Scaling scaling;
    const char* allows_zimg; ///< "yes" for zimg, "no" for swscale
    const char* filter;      ///< zimg's; swscale's is the same for all
};

/// The scaler that gives the best picture for its time.
///
/// Measured for frames of 320x180 to 1920x1080 on places of 221x124 to 960x544, in processor time and in nearness to a
/// slow exact scaler. A frame of just the size: swscale, for it then converts colours only, in a fifth of zimg's time.
/// A smaller picture: zimg's bilinear filter takes 0.3 to 0.8 of the time of swscale's and comes 4 to 9 dB nearer. A
/// larger picture: zimg's bicubic filter takes one and a half of the time of swscale's bilinear one and comes 1 to 3 dB
/// nearer; swscale's own bicubic filter takes as long and is no better.
const Scaler& scaler_for(Scaling scaling);

} // namespace picture_size
