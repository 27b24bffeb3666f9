#pragma once

#include "list_row.h"

/// One row of the bookmark list: a file name and a position in the file. GUI thread only.
class Bookmark : public ListRow
{
public:
    static constexpr int name_x = 6;       ///< where the name begins, in pixels from the row's left edge
    static constexpr int name_right = 119; ///< the last pixel of the name
    static constexpr int time_x = 135;     ///< where the time begins

    /// @p number is the row's 1-based place in the list, @p seconds the position.
    Bookmark(const QString& path, int number, unsigned int seconds);
    ~Bookmark() override;

    void paint(QPainter* painter) override;

    /// Builds display name and time string anew.
    void setStrings();

    /// The position in whole seconds.
    unsigned int time() const { return time_; }
    /// The position as "hh:mm:ss".
    const QString& time_string() const { return time_string_; }

    /// A new row for the same file and position at the place @p number; the caller owns it.
    Bookmark* moved_to(int number) const;

private:
    void paint_name(QPainter* painter) const;
    void paint_scroll_text(QPainter* painter);

    QString time_string_;
    unsigned int time_;
};
