#pragma once

#include <QTimer>

#include "osd_control.h"

/// A feedback text over the film ("[ SEEK ]") that goes away by itself.
class InfoControl : public OsdControl
{
    Q_OBJECT

public:
    /// How long a text stays unless set_timer() says otherwise, in milliseconds.
    static constexpr int DEFAULT_DISPLAY_TIME_MS = 5000;

    InfoControl(QWidget* parent, const char* name, unsigned int flags);

    /// Display time of the next draw(); 0 or less means that the text stays until close().
    void set_timer(int display_time_ms);

    /// Shows the widget with @p text and starts its time anew.
    void draw(const QString& text) override;
    /// Takes the text down and hides the widget.
    virtual void close();

private slots:
    void timeout_recevier();

private:
    QTimer timer_{this};
    int display_time_ms_ = DEFAULT_DISPLAY_TIME_MS;
};
