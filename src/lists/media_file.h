#pragma once

#include "list_row.h"

/// One row of the playlist: a number of three digits and a file name. GUI thread only.
class MediaFile : public ListRow
{
public:
    static constexpr int number_x = 6; ///< where the number begins, in pixels from the row's left edge
    static constexpr int name_x = 33;  ///< where the name begins

    /// @p number is the row's 1-based place in the list.
    MediaFile(const QString& path, int number);
    ~MediaFile() override;

    void paint(QPainter* painter) override;

    /// Builds number string and display name anew.
    void setStrings();

    /// The number with leading zeros, "007".
    const QString& number_string() const { return number_string_; }

    /// Whether the row is drawn as the one that plays.
    bool now_playing() const { return now_playing_; }
    void set_now_playing(bool on) { now_playing_ = on; }

    /// A new row for the same file at the place @p number; the caller owns it.
    MediaFile* moved_to(int number) const;

private:
    void paint_scroll_text(QPainter* painter);

    QString number_string_;
    bool now_playing_ = false;
};
