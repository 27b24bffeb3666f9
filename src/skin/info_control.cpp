#include "info_control.h"

#include "device_font.h"

InfoControl::InfoControl(QWidget* parent, const char* name, unsigned int flags) : OsdControl(parent, name, flags)
{
    setGeometry(0, 26, 200, 80);
    set_align(Qt::AlignTop | Qt::AlignLeft);
    setFont(device_font(QStringLiteral("V28"), 14, 50));
    set_text_color(Qt::white, false);
    timer_.setSingleShot(true);
    connect(&timer_, SIGNAL(timeout()), this, SLOT(timeout_recevier()));
}

void InfoControl::set_timer(int display_time_ms)
{
    display_time_ms_ = display_time_ms;
}

void InfoControl::draw(const QString& text)
{
    timer_.stop();
    show();
    if (display_time_ms_ > 0)
        timer_.start(display_time_ms_);
    OsdControl::draw(text);
}

void InfoControl::close()
{
    timer_.stop();
    clear();
    hide();
}

void InfoControl::timeout_recevier()
{
    close();
}
