#include "message_box.h"

MessageBox::MessageBox(const QString& caption, const QString& text, QWidget* parent)
    : NoticeBox(caption, text, parent, DEFAULT_DISPLAY_TIME_MS)
{
}
