#pragma once

#include <QtCore/QString>

/// A layout without a fault that uses every group, for the pictures that the tests write.
inline QString main_skin()
{
    return QStringLiteral(R"([MAIN]
title_xpos = 0
title_ypos = 0
time_xpos = 0
time_ypos = 192
control_xpos = 0
control_ypos = 216
playlist_xpos = 288
playlist_ypos = 26
bookmark_xpos = 268
bookmark_ypos = 26

# The bar
[VIDEO_CONTROL]
background = bar.png
buttons = play pause stop pageup
play_normal = button.png
play_focus = button.png
stop_xpos = 60
stop_ypos = 2
stop_normal = button.png
play_xpos = 8
play_ypos = 2
pause_normal = button.png
pause_xpos = 8
pause_ypos = 2
pause_replaces = play
pageup_normal = button.png
pageup_xpos = 116
pageup_ypos = 2
volume_xpos = 400
volume_ypos = 4

[VIDEO_TITLE]
background = title.png
buttons = close dic
close_normal = small.png
close_xpos = 456
close_ypos = 3
dic_normal = small.png
dic_xpos = 430
dic_ypos = 3

[VOLUME]
bar_off = volume.png
bar_on = volume.png

[TIME]
background = time.png
current_xpos = 4
current_ypos = 4
total_xpos = 410
total_ypos = 4
slider_xpos = 60
slider_ypos = 4

[TIME_CURRENT]
width = 50
height = 16
color = #ffffff
align = right

[TIME_TOTAL]
digits = digits.png

[TIME_SLIDER]
width = 340
track = handle.png
handle = handle.png
handle_press = handle.png

[PLAYLIST]
background = list.png
buttons = up
up_normal = button.png
up_xpos = 4
up_ypos = 134

[PLAYLIST_LISTBOX]
xpos = 2
ypos = 26
width = 188
height = 110

[BOOKMARK]
background = list.png

[BOOKMARK_LISTBOX]
xpos = 2
ypos = 26
width = 188
height = 100

[LISTBOX]
scroll_track = handle.png
scroll_handle = handle.png
)");
}
