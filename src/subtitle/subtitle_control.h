#pragma once

#include <atomic>
#include <mutex>
#include <vector>

#include "osd_control.h"
#include "subtitle.h"
#include "subtitle_location.h"

/// The subtitle line that belongs to the playing position, painted over the film.
///
/// The engine's thread calls update() with each position; whoever owns the widget then has draw() called on the GUI
/// thread when update() said so. get_last_subtitle() is for any thread, too; everything else is the GUI thread's.
class SubtitleControl : public OsdControl
{
    Q_OBJECT

public:
    SubtitleControl(QWidget* parent, const char* name, unsigned int flags);

    using OsdControl::draw;
    using QWidget::update;

    /// Chooses the list of the selected track and forgets the line on screen; null or an empty list for none.
    /// @p list is sorted by start, does not change and outlives its use here. After the return the old list is not used
    /// any more.
    void set_subtitle(const std::vector<Subtitle>* list);

    /// Chooses the line that covers a playing position and remembers it for draw().
    ///
    /// Any thread; never paints, and allocates only when a new line is due. @p position is in milliseconds; the offset
    /// is added here. A hidden widget changes nothing. A line other than the first is found once the position is past
    /// its start, not at it.
    /// @return true when the text on screen should change: a new line is due, or the shown one has ended.
    bool update(long long position);

    /// Paints the line that update() chose last, or clears the widget when there is none. Does nothing while hidden.
    void draw();

    /// Milliseconds added to each position: above 0 shows lines earlier, below 0 later.
    void set_offset(int offset_ms);
    /// Sets the blank lines round the text; shown from the next draw() on. An unknown value counts as Low.
    void set_location(SubtitleLocation location);

    /// Forgets list and line and clears the widget, which stays visible.
    void close();

    /// The line shown most recently, also after it has ended; empty when there was none. Any thread.
    QString get_last_subtitle() const;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    std::size_t candidate(long long position);
    void forget_line();

    /// Guards everything down to pads: update() runs beside the GUI thread.
    mutable std::mutex mutex_;
    const std::vector<Subtitle>* subtitles_ = nullptr;
    long long last_start_ = 0;
    Subtitle search_key_{};
    bool cleared_ = true;
    int offset_ms_ = 0;
    QString last_subtitle_;
    QString current_text_;
    std::size_t last_candidate_ = 0; ///< index found by the latest search in subtitles_; positions mostly stay there

    QString trailing_pad_;
    QString leading_pad_;
    /// isVisible() for update(), which must not ask the widget itself from another thread.
    std::atomic<bool> visible_ = false;
};
