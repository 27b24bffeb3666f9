#include "colour_balance.h"

#include <algorithm>

namespace
{
constexpr int neutral = 50;
constexpr int most = 100;
} // namespace

void ColourBalance::set(int red, int green, int blue)
{
    const std::array<int, 3> values = {std::clamp(red, 0, most), std::clamp(green, 0, most), std::clamp(blue, 0, most)};
    m_neutral = std::all_of(values.begin(), values.end(), [](int value) { return value == neutral; });
    for (std::size_t channel = 0; channel < values.size(); ++channel) {
        for (int level = 0; level < 256; ++level)
            m_tables[channel][static_cast<std::size_t>(level)] =
                static_cast<quint8>(std::min(255, level * values[channel] / neutral));
    }
}

void ColourBalance::apply(QImage& picture) const
{
    if (m_neutral)
        return;
    for (int y = 0; y < picture.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = line[x];
            line[x] = qRgb(m_tables[0][static_cast<std::size_t>(qRed(pixel))],
                           m_tables[1][static_cast<std::size_t>(qGreen(pixel))],
                           m_tables[2][static_cast<std::size_t>(qBlue(pixel))]);
        }
    }
}
