#pragma once

#include "list_box_skin_text.h"

#include <QColor>

/// What the rows of the playlist and of the bookmark list have in common: a file, a number and a file name that runs
/// through its line while the row is current and the name is too long. The row's text is the file's full path. GUI
/// thread only.
class ListRow : public ListBoxSkinText
{
public:
    /// @p number is the row's 1-based place in the list.
    ListRow(const QString& path, int number);
    ~ListRow() override;

    int number() const { return number_; }
    /// The shown texts follow with the row's setStrings().
    void set_number(int number) { number_ = number; }

    /// The part of the path behind its last "/", the whole path without one.
    const QString& display_name() const { return display_name_; }
    /// Width of the display name in pixels in the list box's font; 0 for a row that is in no list box.
    int display_name_width() const;

    /// How many pixels the name has run to the left; 0 is at rest.
    int scroll_offset() const { return scroll_offset_; }
    void set_scroll_offset(int offset) { scroll_offset_ = offset; }

protected:
    /// Colour of the row's texts.
    static constexpr QColor text_colour{255, 255, 255};

    void set_display_name();

    /// Brings the name back to rest when the row has become current. To be called once for each painting.
    /// @return whether the row is current.
    bool follow_current();

    /// The baseline of the row's texts: they are centred in the row by the font's ascent and leading.
    int baseline(const QPainter* painter) const;

    /// Draws the name twice, one behind the other, the first at @p x less the scroll offset, @p gap pixels between
    /// them.
    void draw_running_name(QPainter* painter, int x, int gap) const;

private:
    QString display_name_;
    int number_;
    int scroll_offset_ = 0;
    bool was_current_ = false;
};
