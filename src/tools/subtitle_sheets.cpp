#include "subtitle_sheets.h"

#include "device_screen.h"
#include "subtitle_control.h"

#include <QtCore/QFileInfo>
#include <QtGui/QPainter>
#include <QtWidgets/QComboBox>

#include <array>

namespace
{

constexpr const char* places[] = {"high", "middle", "low"};
constexpr std::array line_seconds = {2U, 6U, 10U, 14U};

/// Chooses a place for the subtitles, as a viewer does in the settings.
void choose_place(QWidget* settings, Shots& shots, int place)
{
    auto* const combo = settings->findChild<QComboBox*>(QStringLiteral("subtitle_combo_pos"));
    combo->setCurrentIndex(place);
    Q_EMIT combo->activated(place);
    shots.post(player_event::reload_subtitles);
    shots.settle(100);
}

/// One picture a line.
std::vector<QImage> pictures_of_lines(TavelVideo* window, Shots& shots)
{
    auto* const subtitles = window->findChild<SubtitleControl*>(QStringLiteral("subtitle_control"));
    std::vector<QImage> pictures;
    for (const unsigned int second : line_seconds) {
        const QString before = subtitles->get_last_subtitle();
        window->seek_event(second);
        shots.wait_until("the line", [&] {
            const QString now = subtitles->get_last_subtitle();
            return window->isIn(&TavelVideo::pause_state) != 0 && !now.isEmpty() && now != before;
        });
        window->findChild<QWidget*>(QStringLiteral("info_control"))->hide();
        shots.settle(250);
        pictures.push_back(DeviceScreen::instance()->grab_output());
    }
    return pictures;
}

QImage sheet(const std::vector<QImage>& pictures, int columns)
{
    const QSize size = pictures.front().size();
    const int rows = static_cast<int>(pictures.size()) / columns;
    QImage sheet(size.width() * columns, size.height() * rows, QImage::Format_RGB32);
    QPainter painter(&sheet);
    for (int index = 0; index < columns * rows; ++index)
        painter.drawImage(QRect(QPoint(index % columns * size.width(), index / columns * size.height()), size),
                          pictures[static_cast<std::size_t>(index)]);
    return sheet;
}

} // namespace

void take_subtitle_sheets(TavelVideo* window, QWidget* settings, Shots& shots, const QString& film)
{
    const QString name = QStringLiteral("subtitles-") + QFileInfo(film).completeBaseName();
    DeviceScreen& screen = *DeviceScreen::instance();
    const QSize size = screen.size();
    shots.hand_over({film});
    shots.wait_for_play();
    shots.show_full_screen();
    shots.pause();

    std::vector<QImage> all;
    for (int place = 0; place < static_cast<int>(std::size(places)); ++place) {
        choose_place(settings, shots, place);
        const std::vector<QImage> row = pictures_of_lines(window, shots);
        all.insert(all.end(), row.begin(), row.end());
    }
    shots.save(sheet(all, static_cast<int>(line_seconds.size())), name);

    screen.resize(size * 2);
    for (int place = 0; place < static_cast<int>(std::size(places)); ++place) {
        choose_place(settings, shots, place);
        shots.save(sheet(pictures_of_lines(window, shots), 2),
                   name + QStringLiteral("-at-twice-the-size-") + QLatin1String(places[place]));
    }
    screen.resize(size);
}
