#include "file_manager_look.h"

#include "device_font.h"

namespace
{

constexpr int normal_weight = 50;
constexpr int bold_weight = 75;

QFont font(int points, int weight)
{
    return device_font(QStringLiteral("v28"), points, weight);
}

} // namespace

namespace file_manager_look
{

QFont caption_font()
{
    return font(15, bold_weight);
}

QFont name_font()
{
    return font(15, normal_weight);
}

QFont detail_font()
{
    return font(11, normal_weight);
}

QFont button_font()
{
    return font(14, bold_weight);
}

} // namespace file_manager_look
