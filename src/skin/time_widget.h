#pragma once

#include <memory>

#include "skin_base.h"

class QTimer;
class SliderSkin;
class TimeSkin;

/// The seek bar: elapsed time, total time and a slider over one background, in seconds. GUI thread only.
///
/// The window above it must have a slot seek_event(unsigned int), which is called with the position that the user
/// chose. While a scan runs only slider and elapsed time move; the film is sought once, when the scan ends.
class TimeWidget : public SkinBase
{
    Q_OBJECT

public:
    static constexpr int SCAN_INTERVAL_MS = 100;

    enum class ScanDirection : int {
        Forward = 0,
        Reverse = 1,
        None = 2,
    };

    TimeWidget(QWidget* parent, const char* name, unsigned int flags);
    ~TimeWidget() override;

    /// Also for the readouts and the slider.
    void setBackgroundPixmap(const QPixmap& pixmap) override;
    void setAlphaOverride(unsigned char alpha) override;

    /// Sets and shows the film's length and what a scan moves at each step: about two pixels of the slider.
    void set_totaltime(unsigned int total);
    /// Moves the slider; the elapsed time follows.
    void set_slidervalue(unsigned int value);
    unsigned int get_slidervalue() const;
    /// Puts the position to 0 and takes no more input. Marks stay.
    void set_disable();
    void set_enable();

    /// Marks of the repeated passage on the slider.
    void set_repeatA(unsigned int position);
    void set_repeatB(unsigned int position);
    void clear_repeatAB();

    /// Let the slider run until end_scan() or cancel_scan(). At either end it stops, and play_signal() is sent at each
    /// step.
    void start_forward_scan();
    void start_reverse_scan();
    /// Stops the scan and asks for a seek to where it stands.
    void end_scan();
    /// Stops the scan without a seek.
    void cancel_scan();

    ScanDirection scan_direction() const { return scan_direction_; }
    int scan_step() const { return scan_step_; }

signals:
    /// The film should be sought to @p position.
    void seek_value(unsigned int position);
    /// A scan has come to an end of the film: play on from there.
    void play_signal();

protected:
    /// Only the slider takes the pointer.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private slots:
    void update_scan();

private:
    void do_configloading(const QString& group);

    std::unique_ptr<QImage> background_;
    SliderSkin* slider_ = nullptr;
    TimeSkin* elapsed_ = nullptr;
    TimeSkin* total_ = nullptr;
    QTimer* scan_timer_;
    ScanDirection scan_direction_ = ScanDirection::None;
    int scan_step_ = 0;
};
