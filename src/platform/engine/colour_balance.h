#pragma once

#include <QImage>

#include <array>

/// Scales the red, green and blue of finished pictures.
class ColourBalance
{
public:
    /// @param red, green, blue 0 to 100, clamped; 50 leaves the channel as it is, 0 takes it away, 100 doubles it.
    void set(int red, int green, int blue);

    bool is_neutral() const { return m_neutral; }

    /// Changes the pixels of a Format_RGB32 picture in place.
    void apply(QImage& picture) const;

private:
    bool m_neutral = true;
    std::array<std::array<quint8, 256>, 3> m_tables{}; ///< red, green, blue; unused while neutral
};
