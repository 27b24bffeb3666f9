#include "picture_size.h"

#include <QSizeF>

#include <algorithm>
#include <array>
#include <thread>

namespace picture_size
{

namespace
{

struct DecoderThreads {
    int highest; ///< frames of up to this height, in pixels
    int threads;
};

constexpr std::array<DecoderThreads, 2> decoder_rows = {{
    {480, 1},
    {720, 2},
}};
/// For all that is larger: one on each processor, within these.
constexpr unsigned fewest_for_large = 2;
constexpr unsigned most_for_large = 16;

constexpr std::array<Scaler, 3> scalers = {{
    {Scaling::None, "no", "bilinear"},
    {Scaling::Smaller, "yes", "bilinear"},
    {Scaling::Larger, "yes", "bicubic"},
}};

} // namespace

int decoder_threads(int height)
{
    for (const DecoderThreads& row : decoder_rows) {
        if (height <= row.highest)
            return row.threads;
    }
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), fewest_for_large, most_for_large));
}

Scaling scaling_of(QSize frame, double pixel_aspect, QSize place, bool keeps_shape)
{
    if (frame.isEmpty() || place.isEmpty() || !(pixel_aspect > 0.0))
        return Scaling::None;
    const QSizeF shape(frame.width() * pixel_aspect, frame.height());
    const QSize shown = keeps_shape ? shape.scaled(place, Qt::KeepAspectRatio).toSize() : place;
    if (shown == frame)
        return Scaling::None;
    const bool grows = shown.width() > frame.width() || shown.height() > frame.height();
    return grows ? Scaling::Larger : Scaling::Smaller;
}

const Scaler& scaler_for(Scaling scaling)
{
    return *std::find_if(scalers.begin(), scalers.end(),
                         [scaling](const Scaler& row) { return row.scaling == scaling; });
}

} // namespace picture_size
