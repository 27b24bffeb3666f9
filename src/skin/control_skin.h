#pragma once

#include <QMap>
#include <QTimer>

#include "skin_base.h"

class VolumeSkin;

/// The button bar at the bottom: press and hold, the volume, and groups of buttons that come and go with the settings.
///
/// A button marked by set_longbutton() that is held for a second sends its name with "_long" at once, and nothing when
/// it is let go. Any other button sends its name on release. GUI thread only.
class ControlSkin : public SkinBase
{
    Q_OBJECT

public:
    static constexpr int VOLUME_MAXIMUM = 40;
    static constexpr int VOLUME_MINIMUM = 0;
    static constexpr int LONG_PRESS_MS = 1000;

    ControlSkin(QWidget* parent, const char* name, unsigned int flags);

    void releaseButton(QString name) override;
    void pressButton(QString name) override;
    /// Sets the opacity of the panel and of the volume indicator.
    void setAlphaOverride(unsigned char alpha) override;

    /// Marks a button whose hold is a command of its own.
    void set_longbutton(const QString& name);

    /// Sets and shows the volume, limited to its range; sends update_volume() when it changed, unless muted.
    void set_volume(unsigned int volume);
    unsigned int get_volume() const { return volume_; }
    bool get_mute() const { return muted_; }

    /// Show (true) or hide the buttons of a feature.
    void show_bookmark(bool shown);
    void show_speed_controls(bool shown);
    void show_repeatab(bool shown);

public slots:
    /// Muted, the volume is remembered but not sent. Sends update_volume() with 0, or with the volume once unmuted.
    void set_mute(bool mute);
    /// The indicator's volume was changed by the user.
    void volume_update(unsigned int volume);

signals:
    /// The volume that should sound now, 0 to 40.
    void update_volume(int volume);

private slots:
    void time_out();

private:
    void show_group(const QStringList& names, bool shown);

    QTimer long_press_timer_{this};
    bool long_fired_ = false;
    QMap<QString, bool> long_buttons_;
    VolumeSkin* volume_indicator_;
    unsigned int volume_ = 0;
    bool muted_ = false;
};
