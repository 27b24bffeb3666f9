#include "time_widget.h"

#include <QTimer>

#include "skin_group.h"
#include "skin_layout.h"
#include "slider_skin.h"
#include "time_skin.h"

TimeWidget::TimeWidget(QWidget* parent, const char* name, unsigned int flags)
    : SkinBase(parent, name, flags), scan_timer_(new QTimer(this))
{
    setFocusPolicy(Qt::NoFocus);
    do_configloading(QStringLiteral("TIME"));
    qWarning("Time widget loaded\n");
}

TimeWidget::~TimeWidget() = default;

void TimeWidget::do_configloading(const QString& group)
{
    const SkinGroup layout(this, group);
    background_ = std::make_unique<QImage>(layout.image(QStringLiteral("background")));
    resize(background_->size());
    setBackgroundImage(*background_);

    elapsed_ = new TimeSkin(this, group + QStringLiteral("_CURRENT"), 0);
    total_ = new TimeSkin(this, group + QStringLiteral("_TOTAL"), 0);
    slider_ = new SliderSkin(this, group + QStringLiteral("_SLIDER"));

    const auto place = [&](SkinWidget* child, const char* x_key, const char* y_key) {
        child->move(layout.position(QLatin1String(x_key)), layout.position(QLatin1String(y_key)));
    };
    place(elapsed_, "current_xpos", "current_ypos");
    place(total_, "total_xpos", "total_ypos");
    place(slider_, "slider_xpos", "slider_ypos");

    for (SkinWidget* child : std::initializer_list<SkinWidget*>{elapsed_, total_, slider_})
        child->setBackgroundImage(SkinLayout::piece_of(*background_, child->geometry()));

    connect(scan_timer_, SIGNAL(timeout()), this, SLOT(update_scan()));
    connect(slider_, SIGNAL(valueChanged(unsigned int)), elapsed_, SLOT(update_time(unsigned int)));
    connect(slider_, SIGNAL(seekReleased(unsigned int)), window(), SLOT(seek_event(unsigned int)));
    connect(this, SIGNAL(seek_value(unsigned int)), window(), SLOT(seek_event(unsigned int)));
}

void TimeWidget::setBackgroundPixmap(const QPixmap& pixmap)
{
    SkinBase::setBackgroundPixmap(pixmap);
    total_->setBackgroundPixmap(pixmap);
    elapsed_->setBackgroundPixmap(pixmap);
    slider_->setBackgroundPixmap(pixmap);
}

void TimeWidget::setAlphaOverride(unsigned char alpha)
{
    SkinBase::setAlphaOverride(alpha);
    total_->setAlphaOverride(alpha);
    elapsed_->setAlphaOverride(alpha);
    slider_->setAlphaOverride(alpha);
}

void TimeWidget::set_totaltime(unsigned int total)
{
    slider_->setMinimum(0);
    slider_->setMaximum(total);
    const auto width = static_cast<unsigned int>(std::max(0, slider_->width()));
    // A slider without a skin has no width to measure the step by.
    if (width == 0 || (total != 0 && total < width))
        scan_step_ = 1;
    else
        scan_step_ = static_cast<int>(std::min<qint64>(qint64(total / width) * 2, std::numeric_limits<int>::max()));
    total_->update_time(total);
}

void TimeWidget::set_slidervalue(unsigned int value)
{
    slider_->setValue(value);
}

unsigned int TimeWidget::get_slidervalue() const
{
    return slider_->value();
}

void TimeWidget::set_disable()
{
    slider_->setValue(0);
    slider_->setDisable(true);
}

void TimeWidget::set_enable()
{
    slider_->setDisable(false);
}

void TimeWidget::set_repeatA(unsigned int position)
{
    slider_->insertMarker(static_cast<int>(SliderSkin::Marker::A), position);
}

void TimeWidget::set_repeatB(unsigned int position)
{
    slider_->insertMarker(static_cast<int>(SliderSkin::Marker::B), position);
}

void TimeWidget::clear_repeatAB()
{
    slider_->clearMarkers();
}

void TimeWidget::start_forward_scan()
{
    qWarning("Start forward scan\n");
    scan_direction_ = ScanDirection::Forward;
    scan_timer_->start(SCAN_INTERVAL_MS);
}

void TimeWidget::start_reverse_scan()
{
    qWarning("Start reverse scan\n");
    scan_direction_ = ScanDirection::Reverse;
    scan_timer_->start(SCAN_INTERVAL_MS);
}

void TimeWidget::update_scan()
{
    qWarning("Updating scan bar\n");
    // Without a step there is no end to reach.
    if (scan_step_ == 0 || scan_direction_ == ScanDirection::None)
        return;
    const qint64 step = scan_direction_ == ScanDirection::Forward ? scan_step_ : -qint64(scan_step_);
    const qint64 target = slider_->value() + step;
    const bool beyond = scan_direction_ == ScanDirection::Forward ? target > slider_->maximum() : target <= 0;
    if (beyond)
        emit play_signal();
    else
        slider_->setValue(static_cast<unsigned int>(target));
}

void TimeWidget::end_scan()
{
    qWarning("end scan\n");
    scan_timer_->stop();
    emit seek_value(slider_->value());
    scan_direction_ = ScanDirection::None;
}

void TimeWidget::cancel_scan()
{
    scan_timer_->stop();
    scan_direction_ = ScanDirection::None;
}

void TimeWidget::mousePressEvent(QMouseEvent*) {}

void TimeWidget::mouseReleaseEvent(QMouseEvent*) {}
