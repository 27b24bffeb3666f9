#pragma once

#include "message_box.h"
#include "player_event.h"
#include "tavel_video.h"
#include "tavel_video_string.h"

#include <QtCore/QDir>
#include <QtGui/QImage>

#include <functional>

/// The hand that works the player and the camera before it.
class Shots
{
public:
    Shots(TavelVideo* window, const QDir& directory) : window_(window), directory_(directory) {}

    /// Whether everything that was asked for came about.
    bool complete() const { return missing_ == 0; }

    /// Writes a picture of what the host window shows, with the next number before its name.
    void take(const char* name);
    /// Writes a picture.
    void save(const QImage& picture, const QString& name);

    /// @return whether it happened in time
    bool wait_until(const char* what, const std::function<bool()>& condition);
    /// Lets the player run for a while.
    void settle(int ms) const;

    void key(Qt::Key key) const;
    /// Taps a place of the output, given in the LCD's pixels.
    void tap(int x, int y) const;
    void post(player_event::Number event) const { window_->postCustomEvent(event); }
    /// Hands films over like another program.
    void hand_over(const QStringList& films) const;

    void show_controls();
    void show_full_screen();
    void pause();
    void wait_for_play();
    void wait_for_position(Time position);

    void take_notice(const char* name, TavelVideoString text);
    void take_dictionary(const char* name);

private:
    TavelVideo* window_;
    QDir directory_;
    int number_ = 0;
    int missing_ = 0;
};
