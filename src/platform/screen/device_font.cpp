#include "device_font.h"

#include <QFontDatabase>

#include <algorithm>
#include <array>

namespace
{

constexpr auto alias = QLatin1StringView("v28");
constexpr auto installed_family = QLatin1StringView("NanumGothic");

struct WeightRow {
    int old_weight;
    QFont::Weight weight;
};

/// The old scale's names; a weight in between counts as the nearest one below.
constexpr std::array<WeightRow, 9> weights{{
    {0, QFont::Thin},
    {12, QFont::ExtraLight},
    {25, QFont::Light},
    {50, QFont::Normal},
    {57, QFont::Medium},
    {63, QFont::DemiBold},
    {75, QFont::Bold},
    {81, QFont::ExtraBold},
    {87, QFont::Black},
}};

QFont::Weight weight_of(int old_weight)
{
    const auto above =
        std::find_if(weights.begin(), weights.end(), [&](const WeightRow& row) { return row.old_weight > old_weight; });
    return above == weights.begin() ? QFont::Thin : std::prev(above)->weight;
}

} // namespace

void install_device_fonts()
{
    static const bool installed = [] {
        QFont::insertSubstitution(alias, installed_family);
        const bool found = QFontDatabase::hasFamily(installed_family);
        if (!found)
            qWarning("The font NanumGothic is not installed; texts are drawn in another one.");
        return found;
    }();
    Q_UNUSED(installed);
}

QFont device_font(const QString& family, int points, int weight)
{
    install_device_fonts();
    QFont font(family.compare(alias, Qt::CaseInsensitive) == 0 ? QString(alias) : family);
    font.setPixelSize(std::max(1, points));
    font.setWeight(weight_of(weight));
    // Left to the host's settings, a text would be wider on one device than on another.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}
