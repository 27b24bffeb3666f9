#include "tavel_message_box.h"

TavelMessageBox::TavelMessageBox(const QString& caption, const QString& text, QWidget* parent)
    : NoticeBox(caption, text, parent, DEFAULT_DISPLAY_TIME_MS)
{
    fit_to_window();
}
