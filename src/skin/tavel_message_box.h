#pragma once

#include "notice_box.h"

/// A notice made for one occasion: sized for its text at once, and shorter on screen.
class TavelMessageBox : public NoticeBox
{
    Q_OBJECT

public:
    static constexpr int DEFAULT_DISPLAY_TIME_MS = 3000;

    TavelMessageBox(const QString& caption, const QString& text, QWidget* parent);
};
