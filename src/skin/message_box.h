#pragma once

#include "notice_box.h"

/// The main window's general notice: one box for the life of the program, its text set before each exec().
class MessageBox : public NoticeBox
{
    Q_OBJECT

public:
    static constexpr int DEFAULT_DISPLAY_TIME_MS = 5000;

    MessageBox(const QString& caption, const QString& text, QWidget* parent);
};
