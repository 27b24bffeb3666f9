#include "time_skin.h"

#include "device_font.h"
#include "skin_group.h"

#include <QtGui/QPainter>

#include <algorithm>

namespace
{

constexpr int standard_points = 12;
constexpr int largest_points = 100;
constexpr int standard_weight = 50;
constexpr int heaviest_weight = 99;

Qt::Alignment alignment_of(const QString& word)
{
    if (word == QLatin1String("center"))
        return Qt::AlignHCenter;
    if (word == QLatin1String("right"))
        return Qt::AlignRight;
    return Qt::AlignLeft;
}

} // namespace

TimeSkin::TimeSkin(QWidget* parent, const QString& name, unsigned int flags)
    : SkinWidget(parent, name, flags), m_text(time_text(0))
{
    read_layout();
}

void TimeSkin::read_layout()
{
    const SkinGroup layout(this, objectName());
    m_digits = layout.image(QStringLiteral("digits"));
    m_color = layout.color(QStringLiteral("color"), Qt::white);
    m_alignment = alignment_of(layout.text(QStringLiteral("align")));
    const int points = std::clamp(layout.number(QStringLiteral("font_size"), standard_points), 1, largest_points);
    const int weight = std::clamp(layout.number(QStringLiteral("font_weight"), standard_weight), 1, heaviest_weight);
    m_font = device_font(QStringLiteral("v28"), points, weight);

    int width = layout.size(QStringLiteral("width"));
    int height = layout.size(QStringLiteral("height"));
    if (width == 0)
        width = m_digits.width() / digit_cells * widest_text;
    if (height == 0)
        height = m_digits.height();
    resize(width, height);
}

QString TimeSkin::time_text(unsigned int seconds)
{
    const QLatin1Char zero('0');
    const QString rest = QStringLiteral("%1:%2").arg(seconds / 60 % 60, 2, 10, zero).arg(seconds % 60, 2, 10, zero);
    return seconds < 3600 ? rest : QStringLiteral("%1:%2").arg(seconds / 3600).arg(rest);
}

void TimeSkin::update_time(unsigned int seconds)
{
    const QString text = time_text(seconds);
    if (text == m_text)
        return;
    m_text = text;
    update();
}

void TimeSkin::draw(QPainter* painter)
{
    const int cell = m_digits.width() / digit_cells;
    if (cell == 0) {
        painter->setFont(m_font);
        painter->setPen(m_color);
        painter->drawText(rect(), static_cast<int>((m_alignment | Qt::AlignVCenter).toInt()) | Qt::TextSingleLine,
                          m_text);
        return;
    }
    const QRect place = QStyle::alignedRect(Qt::LeftToRight, m_alignment | Qt::AlignVCenter,
                                            QSize(cell * static_cast<int>(m_text.size()), m_digits.height()), rect());
    int x = place.x();
    for (const QChar character : m_text) {
        const int index = character.isDigit() ? character.digitValue() : digit_cells - 1;
        painter->drawImage(QPoint(x, place.y()), m_digits, QRect(index * cell, 0, cell, m_digits.height()));
        x += cell;
    }
}
