#pragma once

#include "background_pixmap.h"
#include "dic_dialog_base.h"

/// Shows a subtitle line, lets the user mark a word in it and has the dictionary program look it up.
///
/// Made for one look-up and run by exec(); the owner puts the line into m_SubtitleEdit before. GUI thread only.
class DicDialog : public DicDialogBase
{
    Q_OBJECT

public:
    /// Stands in the middle of the window of @p parent. Whatever @p flags say, it is a window without a frame.
    explicit DicDialog(QWidget* parent = nullptr, const char* name = nullptr, bool modal = true,
                       unsigned int flags = 0);

public slots:
    /// Starts the dictionary program, or brings it forward, and asks it for the marked word; nothing when no word is
    /// marked.
    ///
    /// Waits until the program listens, 15 seconds at most, and blocks the GUI thread meanwhile, so that the question
    /// is not sent too early. It is sent even if the program never listened, and is lost then. The dialog stays open.
    void search();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void initTextBox();

    BackgroundPixmap background_;
    /// The piece of it behind the instruction, which makes the label seem transparent.
    BackgroundPixmap label_background_;
};
