#include "chart_calls.h"

#include <QtCore/QFileInfo>

namespace chart_calls
{

QStringList enter_file_parsed(int index, const QString& file, unsigned int position_ms)
{
    const QString save = QStringLiteral("playlist save_now_playing %1").arg(position_ms);
    return {
        QStringLiteral("playlist set_now_playing %1").arg(index),
        "playlist update_now_playing 1",
        save,
        "playlist can_entry",
        "playlist start_entry",
        "open " + file,
        "settings refresh_subtitle",
        "title set_filename " + QFileInfo(file).fileName(),
        "time_bar set_enable",
        "time_bar set_totaltime 10",
        QStringLiteral("time_bar set_slidervalue %1").arg(position_ms / 1000),
        "settings set_player 1",
        "settings update_information",
        "window draw_media_info ",
        save,
        "window switch_spdif_off",
    };
}

QStringList leave_file_parsed()
{
    return {
        "playlist update_now_playing 0", "settings set_player 0",  "close",
        "settings clear_information",    "window close_subtitles", "time_bar set_disable",
        "playlist finish_entry",
    };
}

QStringList enter_stop()
{
    return {
        "bar showFocus play",
        "bar disableButton stop",
        "bar hideButton pause",
        "window close_subtitles",
    };
}

QStringList enter_file_loaded(Controls before)
{
    QStringList calls{
        "window is_navi_activated",
        "set_application_volume 20",
        "qcop QPE/Applet/screenchage videoWindowActivate(unsigned char) 1",
        "window enter_full_screen",
    };
    if (before == Controls::Shown)
        calls += QStringList{"qcop QPE/System hideTaskBar(QString) tavel_video", "window show_loading_screen"};
    return calls + QStringList{
                       "socket STOP",
                       "qcop QPE/System preventLCDOff()",
                       "post 3009",
                   };
}

QStringList end_of_wait()
{
    return {
        "wait 10",
        "wait 0.01",
        "window reload_subtitles",
        "window check_spdif",
        "initialize",
        "post 2105",
        // Event 2105
        "post 2000",
    };
}

QStringList load_and_show(const QString& file, unsigned int position_ms)
{
    QStringList calls{
        "window reset_display",
        "set_video_window 0 0 480 272",
        "set_aspect 1",
        "window close_subtitles",
        "open " + file,
        "settings refresh_subtitle",
        "settings update_information",
        "prepare " + file,
        "set_video_window 0 0 480 272",
        "set_aspect 1",
        "play",
    };
    if (position_ms > 0)
        calls += QStringLiteral("post 2003 3 %1").arg(position_ms);
    return calls + QStringList{
                       "set_parameter 4 50 50 50",
                       "window reload_subtitles",
                       "settings refresh_subtitle",
                       "select_stream 2 1",
                       // The film is on
                       "fb /dev/fb1 enable 1",
                       "set_application_volume 20",
                       QStringLiteral("playlist save_now_playing %1").arg(position_ms),
                       "show subtitle_control",
                       "bar hideButton play",
                       "bar showFocus pause",
                       "bar showNormal stop",
                       "bar showNormal pageup",
                       "bar showNormal pagedown",
                       "-> play_state",
                       "settings set_playing 1",
                       "hide NOW LOADING",
                       "window show_resolution_warning",
                   };
}

QStringList leave_file_loaded(unsigned int told_ms, Controls before)
{
    QStringList calls{
        "hide NOW LOADING",
        "fb /dev/fb1 enable 0",
        "window display_information [ STOP ]",
        QStringLiteral("playlist save_now_playing %1").arg(told_ms),
        "window reset_repeatAB",
        "time_bar set_slidervalue 0",
        "window close_subtitles",
        "window leave_full_screen",
    };
    if (before == Controls::Hidden)
        calls += "qcop QPE/System showTaskBar(QString) tavel_video";
    return calls + QStringList{
                       "qcop QPE/System releaseLCDOff()",
                       "set_application_volume 1",
                       "qcop QPE/Applet/screenchage videoWindowActivate(unsigned char) 0",
                       "close",
                       "settings clear_information",
                   };
}

} // namespace chart_calls

QString first_difference(const QStringList& actual, const QStringList& expected)
{
    qsizetype same = 0;
    while (same < actual.size() && same < expected.size() && actual[same] == expected[same])
        ++same;
    return QStringLiteral("line %1: expected \"%2\", not \"%3\"\n%4")
        .arg(same + 1)
        .arg(expected.value(same, QStringLiteral("(the end)")), actual.value(same, QStringLiteral("(the end)")),
             actual.join(u'\n'));
}
