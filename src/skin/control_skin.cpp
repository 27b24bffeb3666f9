#include "control_skin.h"

#include <cstdio>

#include "skin_group.h"
#include "volume_skin.h"

namespace
{

const QString LAYOUT_GROUP = QStringLiteral("VIDEO_CONTROL");

} // namespace

ControlSkin::ControlSkin(QWidget* parent, const char* name, unsigned int flags) : SkinBase(parent, name, flags)
{
    long_press_timer_.setSingleShot(true);
    // The toolkit's usual timer may be early by a twentieth, which would make a long press of a short one.
    long_press_timer_.setTimerType(Qt::PreciseTimer);
    do_configloading(LAYOUT_GROUP);

    const SkinGroup layout(this, LAYOUT_GROUP);
    volume_indicator_ = new VolumeSkin(this, QStringLiteral("VOLUME"), 0);
    volume_indicator_->set_volumeRange(VOLUME_MINIMUM, VOLUME_MAXIMUM, 1);
    volume_indicator_->move(layout.position(QStringLiteral("volume_xpos")),
                            layout.position(QStringLiteral("volume_ypos")));

    connect(volume_indicator_, SIGNAL(app_volumes(unsigned int)), this, SLOT(volume_update(unsigned int)));
    connect(volume_indicator_, SIGNAL(app_mute(bool)), this, SLOT(set_mute(bool)));
    connect(&long_press_timer_, SIGNAL(timeout()), this, SLOT(time_out()));
}

void ControlSkin::pressButton(QString name)
{
    if (isPressed())
        return;
    SkinButton* pressed = button(name);
    if (!pressed || pressed->name() != name)
        return;
    setButtonFocus(name);
    setPressed(true);
    long_fired_ = false;
    pressed->setState(SkinButton::State::Pressed);
    drawButton(pressed);
    long_press_timer_.start(LONG_PRESS_MS);
}

void ControlSkin::time_out()
{
    long_fired_ = true;
    // A click may change the panel: walk over a copy of the names.
    const QStringList names = buttons().keys();
    for (const QString& name : names) {
        const SkinButton* held = button(name);
        if (held && held->state() == SkinButton::State::Pressed && long_buttons_.contains(name))
            releaseButton(name);
    }
}

void ControlSkin::releaseButton(QString name)
{
    SkinButton* released = button(name);
    if (!isPressed() || !released || released->state() != SkinButton::State::Pressed)
        return;
    setPressed(false);
    released->setState(SkinButton::State::Focus);
    drawButton(released);

    QString command = name;
    if (long_fired_ && long_buttons_.contains(name)) {
        std::printf("long key pressed : %s\n", qUtf8Printable(name));
        command += QStringLiteral("_long");
    }
    emit button_clicked(this, command);
}

void ControlSkin::setAlphaOverride(unsigned char alpha)
{
    SkinBase::setAlphaOverride(alpha);
    volume_indicator_->setAlphaOverride(alpha);
}

void ControlSkin::set_longbutton(const QString& name)
{
    long_buttons_.insert(name, true);
}

void ControlSkin::set_volume(unsigned int volume)
{
    const unsigned int bounded = std::clamp<unsigned int>(volume, static_cast<unsigned int>(VOLUME_MINIMUM),
                                                          static_cast<unsigned int>(VOLUME_MAXIMUM));
    volume_indicator_->set_volumeValue(bounded);
    volume_update(bounded);
}

void ControlSkin::volume_update(unsigned int volume)
{
    if (volume == volume_)
        return;
    volume_ = volume;
    if (!muted_)
        emit update_volume(static_cast<int>(volume_));
}

void ControlSkin::set_mute(bool mute)
{
    muted_ = mute;
    volume_indicator_->set_mute(mute);
    emit update_volume(muted_ ? 0 : static_cast<int>(volume_));
}

void ControlSkin::show_bookmark(bool shown)
{
    show_group({QStringLiteral("bookmark"), QStringLiteral("bookmark_list")}, shown);
}

void ControlSkin::show_speed_controls(bool shown)
{
    show_group({QStringLiteral("speed_down"), QStringLiteral("speed_normal"), QStringLiteral("speed_up")}, shown);
}

void ControlSkin::show_repeatab(bool shown)
{
    show_group({QStringLiteral("repeatA"), QStringLiteral("repeatB"), QStringLiteral("repeatAB")}, shown);
}

void ControlSkin::show_group(const QStringList& names, bool shown)
{
    for (const QString& name : names) {
        if (shown)
            showNormal(name);
        else
            hideButton(name);
    }
}
