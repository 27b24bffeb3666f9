#include "setting_base.h"

#include "device_font.h"
#include "device_screen.h"
#include "exit_button.h"
#include "key_pad_navigator.h"
#include "setting_look.h"
#include "setting_pictures.h"
#include "touch_combo_box.h"
#include "window_flags.h"

#include "resource.h"

#include <QtGui/QPainter>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

#include <initializer_list>

namespace
{

constexpr const char* style_sheet = R"(
QWidget { color: white; background: transparent; }
QLabel { color: rgb(255, 249, 178); }
QLabel[role="value"] { color: white; margin-left: 12px; }
QLabel[role="notice"] { color: white; }
QTabWidget::pane { border: none; }
QTabBar { qproperty-drawBase: 0; }
QTabBar::tab {
    height: 24px; width: 68px; margin: 0; padding: 0; color: rgb(190, 190, 190);
    border: none; border-bottom: 2px solid rgba(255, 255, 255, 40);
}
QTabBar::tab:first, QTabBar::tab:last { width: 70px; }
QTabBar::tab:selected { color: white; background: rgba(255, 102, 0, 60); border-bottom: 2px solid rgb(255, 102, 0); }
QTabBar::tab:selected:focus { background: rgb(255, 102, 0); }
QComboBox, QPushButton, QLineEdit {
    background: rgba(255, 255, 255, 26); border: 1px solid rgba(255, 255, 255, 70); border-radius: 5px; min-height: 26px;
}
QComboBox { padding: 0 17px 0 6px; }
QComboBox::drop-down { border: none; width: 0; }
QComboBox::down-arrow { image: none; }
QLineEdit { padding: 0; border-color: rgba(255, 255, 255, 30); background: transparent; }
QComboBox:disabled, QPushButton:disabled { color: rgb(120, 120, 120); border-color: rgba(255, 255, 255, 26); }
QComboBox:focus, QPushButton:focus { background: rgba(255, 102, 0, 60); border: 2px solid rgb(255, 102, 0); }
QComboBox:focus { padding: 0 16px 0 5px; }
QPushButton:pressed { background: rgb(255, 102, 0); }
QComboBox QAbstractItemView {
    background: rgb(28, 29, 33); border: 1px solid rgb(255, 102, 0); outline: none;
    selection-background-color: rgb(255, 102, 0); selection-color: white;
}
QComboBox QAbstractItemView::item { min-height: 27px; padding-left: 6px; border: none; background: rgb(28, 29, 33); }
QComboBox QAbstractItemView::item:selected { background: rgb(255, 102, 0); color: white; }
QSlider { min-height: 26px; }
QSlider::groove:horizontal { height: 4px; background: rgba(255, 255, 255, 60); border-radius: 2px; }
QSlider::sub-page:horizontal { background: rgb(255, 102, 0); border-radius: 2px; }
QSlider::handle:horizontal {
    width: 16px; height: 16px; margin: -7px 0; border-radius: 9px; border: 1px solid rgb(90, 90, 90); background: rgb(225, 225, 225);
}
QSlider::handle:horizontal:focus { background: white; border: 3px solid rgb(255, 102, 0); width: 14px; height: 14px; margin: -8px 0; border-radius: 10px; }
)";

QLabel* make_label(QWidget* parent, const char* name)
{
    auto* label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

QPushButton* make_button(QWidget* parent, const char* name)
{
    auto* button = new QPushButton(parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QSlider* make_color_slider(QWidget* parent, const char* name)
{
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(QString::fromLatin1(name));
    slider->setFocusPolicy(Qt::StrongFocus);
    slider->setRange(0, 100);
    slider->setValue(50);
    return slider;
}

/// Places the page's own "Reset" under the film, where a thumb finds it on every page of that kind.
void place_reset_below_picture(QPushButton* button)
{
    const int top = setting_look::form_size.height() - setting_look::margin - 30;
    button->setGeometry(setting_look::lcd_picture.left(), top - setting_look::page_top, 96, 30);
}

/// The area of a page, in its own coordinates, for what stands beside the film.
QRect picture_column()
{
    const int top = setting_look::lcd_picture.top() - setting_look::page_top;
    return {setting_look::column_left, top, setting_look::column_width,
            setting_look::form_size.height() - setting_look::margin - setting_look::page_top - top};
}

/// The area of a page without film.
QRect whole_page()
{
    const QRect column = picture_column();
    return {setting_look::margin, column.top(), setting_look::form_size.width() - 2 * setting_look::margin,
            column.height()};
}

struct Row {
    QWidget* label;
    QWidget* control;
};

/// A column of labelled controls, filled from the top.
void place_rows(QWidget* page, const QRect& area, int control_width, std::initializer_list<Row> rows)
{
    auto* column = new QWidget(page);
    column->setGeometry(area);
    auto* grid = new QGridLayout(column);
    grid->setContentsMargins(6, 5, 4, 5);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(0, 1);
    int line = 0;
    for (const Row& row : rows) {
        row.control->setFixedWidth(control_width);
        grid->addWidget(row.label, line, 0);
        grid->addWidget(row.control, line, 1);
        ++line;
    }
    grid->setRowStretch(line, 1);
}

} // namespace

SettingBase::SettingBase(QWidget* parent, const char* name, unsigned int flags) : QWidget(parent, window_flags(flags))
{
    setObjectName(QString::fromLatin1(name));
    setAttribute(Qt::WA_TranslucentBackground);
    setFont(device_font(QStringLiteral("v28"), setting_look::font_points, 50));
    setFixedSize(setting_look::form_size);

    build_header();
    for (QWidget* page : {build_video_page(), build_sound_page(), build_subtitle_page(), build_display_page(),
                          build_playback_page(), build_info_page(), build_about_page()}) {
        setting_tab->addTab(page, QString());
    }
    connect(setting_tab, &QTabWidget::currentChanged, this, qOverload<>(&QWidget::update));
    new KeyPadNavigator(this);
}

QRect SettingBase::picture_rectangle() const
{
    return DeviceScreen::instance()->output() == DeviceScreen::Output::Tv ? setting_look::tv_picture
                                                                          : setting_look::lcd_picture;
}

bool SettingBase::picture_visible() const
{
    switch (current_page()) {
    case Page::Video:
    case Page::Sound:
    case Page::Subtitle:
    case Page::Screen:
        return true;
    case Page::Playback:
    case Page::Info:
    case Page::About:
        return false;
    }
    return false;
}

SettingBase::Page SettingBase::current_page() const
{
    return static_cast<Page>(setting_tab->currentIndex());
}

void SettingBase::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), picture_visible() ? setting_look::backdrop : setting_look::cover);
    painter.fillRect(QRect(0, 0, width(), setting_look::header_height), setting_look::header);
    if (picture_visible())
        painter.fillRect(picture_rectangle(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(setting_look::panel);
    const QRect panel = picture_visible() ? picture_column() : whole_page();
    painter.drawRoundedRect(panel.translated(0, setting_look::page_top), 6, 6);
    if (picture_visible()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(setting_look::line);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.drawRect(picture_rectangle().adjusted(-1, -1, 0, 0));
    }
}

void SettingBase::showEvent(QShowEvent* event)
{
    // Not before the form is first seen: it takes time and memory, which a viewer who never opens it does not owe. And
    // not before the tree is whole: under a style sheet a widget would not take up the font of what it is put into.
    if (styleSheet().isEmpty())
        setStyleSheet(QString::fromLatin1(style_sheet));
    QWidget::showEvent(event);
    setFocus(Qt::OtherFocusReason);
}

void SettingBase::build_header()
{
    title_label = make_label(this, "title_label");
    title_label->setGeometry(0, 0, width(), setting_look::header_height);
    title_label->setPixmap(setting_pictures::skin(QStringLiteral("setting_title")));
    caption_label = make_label(this, "caption_label");
    caption_label->setGeometry(36, 0, 380, setting_look::header_height);
    caption_label->setFont(device_font(QStringLiteral("v28"), 15, 87));

    exit_button = new ExitButton(this, "exit_button");
    const QSize size = exit_button->sizeHint();
    exit_button->setGeometry(width() - size.width(), (setting_look::header_height - size.height()) / 2, size.width(),
                             size.height());

    setting_tab = new QTabWidget(this);
    setting_tab->setObjectName(QStringLiteral("setting_tab"));
    setting_tab->setGeometry(0, setting_look::header_height, width(), height() - setting_look::header_height);
    setting_tab->setFocusPolicy(Qt::NoFocus);
    setting_tab->tabBar()->setFocusPolicy(Qt::StrongFocus);
    // Who gives the form the focus means the first control: arrows would lead nowhere from the form itself.
    setFocusProxy(setting_tab->tabBar());
    setting_tab->tabBar()->setUsesScrollButtons(false);
    setting_tab->tabBar()->setFixedHeight(setting_look::tab_height);
}

QWidget* SettingBase::build_video_page()
{
    auto* page = new QWidget(setting_tab);
    video_label_red = make_label(page, "video_label_red");
    color_slider_red = make_color_slider(page, "color_slider_red");
    video_label_red_precent = make_label(page, "video_label_red_precent");
    video_button_red_default = make_button(page, "video_button_red_default");
    video_label_green = make_label(page, "video_label_green");
    color_slider_green = make_color_slider(page, "color_slider_green");
    video_label_green_percent = make_label(page, "video_label_green_percent");
    video_button_green_default = make_button(page, "video_button_green_default");
    video_label_blue = make_label(page, "video_label_blue");
    color_slider_blue = make_color_slider(page, "color_slider_blue");
    video_label_blue_percent = make_label(page, "video_label_blue_percent");
    video_button_blue_default = make_button(page, "video_button_blue_default");
    video_button_alldefault = make_button(page, "video_button_alldefault");

    struct ColorRow {
        QLabel* name;
        QLabel* percent;
        QPushButton* reset;
        QSlider* slider;
    };
    auto* column = new QWidget(page);
    column->setGeometry(picture_column());
    auto* grid = new QGridLayout(column);
    grid->setContentsMargins(10, 5, 10, 5);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(0, 1);
    int line = 0;
    for (const ColorRow& row :
         {ColorRow{video_label_red, video_label_red_precent, video_button_red_default, color_slider_red},
          ColorRow{video_label_green, video_label_green_percent, video_button_green_default, color_slider_green},
          ColorRow{video_label_blue, video_label_blue_percent, video_button_blue_default, color_slider_blue}}) {
        row.percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        row.percent->setMinimumWidth(50);
        row.reset->setFixedWidth(72);
        grid->addWidget(row.name, line, 0);
        grid->addWidget(row.percent, line, 1);
        grid->addWidget(row.reset, line, 2);
        grid->addWidget(row.slider, line + 1, 0, 1, 3);
        line += 2;
    }
    place_reset_below_picture(video_button_alldefault);
    return page;
}

QWidget* SettingBase::build_sound_page()
{
    auto* page = new QWidget(setting_tab);
    sound_label_audiotrack = make_label(page, "sound_label_audiotrack");
    sound_combo_audiotrack = new TouchComboBox(page, "sound_combo_audiotrack");
    sound_label_spdif = make_label(page, "sound_label_spdif");
    sound_combo_spdif = new TouchComboBox(page, "sound_combo_spdif");
    sound_button_alldefault = make_button(page, "sound_button_alldefault");

    place_rows(page, picture_column(), 74,
               {{sound_label_audiotrack, sound_combo_audiotrack}, {sound_label_spdif, sound_combo_spdif}});
    place_reset_below_picture(sound_button_alldefault);
    return page;
}

QWidget* SettingBase::build_subtitle_page()
{
    auto* page = new QWidget(setting_tab);
    subtitle_label_display = make_label(page, "subtitle_label_display");
    subtitle_combo_display = new TouchComboBox(page, "subtitle_combo_display");
    subtitle_label_size = make_label(page, "subtitle_label_size");
    subtitle_combo_size = new TouchComboBox(page, "subtitle_combo_size");
    subtitle_label_color = make_label(page, "subtitle_label_color");
    subtitle_combo_color = new TouchComboBox(page, "subtitle_combo_color");
    subtitle_label_pos = make_label(page, "subtitle_label_pos");
    subtitle_combo_pos = new TouchComboBox(page, "subtitle_combo_pos");
    subtitle_label_track = make_label(page, "subtitle_label_track");
    subtitle_combo_track = new TouchComboBox(page, "subtitle_combo_track");
    subtitle_label_sync = make_label(page, "subtitle_label_sync");

    auto* sync = new QWidget(page);
    subtitle_button_back = make_button(sync, "subtitle_button_back");
    subtitle_button_back->setText(QStringLiteral("<<"));
    subtitle_edit_sync = new QLineEdit(sync);
    subtitle_edit_sync->setObjectName(QStringLiteral("subtitle_edit_sync"));
    subtitle_edit_sync->setReadOnly(true);
    subtitle_edit_sync->setFocusPolicy(Qt::NoFocus);
    subtitle_edit_sync->setAlignment(Qt::AlignCenter);
    subtitle_button_forward = make_button(sync, "subtitle_button_forward");
    subtitle_button_forward->setText(QStringLiteral(">>"));
    auto* line = new QHBoxLayout(sync);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(2);
    subtitle_button_back->setFixedWidth(28);
    subtitle_button_forward->setFixedWidth(28);
    line->addWidget(subtitle_button_back);
    line->addWidget(subtitle_edit_sync);
    line->addWidget(subtitle_button_forward);

    subtitle_button_alldefault = make_button(page, "subtitle_button_alldefault");
    place_rows(page, picture_column(), 152,
               {{subtitle_label_display, subtitle_combo_display},
                {subtitle_label_size, subtitle_combo_size},
                {subtitle_label_color, subtitle_combo_color},
                {subtitle_label_pos, subtitle_combo_pos},
                {subtitle_label_track, subtitle_combo_track},
                {subtitle_label_sync, sync}});
    place_reset_below_picture(subtitle_button_alldefault);
    return page;
}

QWidget* SettingBase::build_display_page()
{
    auto* page = new QWidget(setting_tab);
    display_label_menutime = make_label(page, "display_label_menutime");
    display_combo_menutime = new TouchComboBox(page, "display_combo_menutime");
    display_label_transparancy = make_label(page, "display_label_transparancy");
    display_combo_transparancy = new TouchComboBox(page, "display_combo_transparancy");
    display_label_aspect_ratio = make_label(page, "display_label_aspect_ratio");
    display_combo_aspect_ratio = new TouchComboBox(page, "display_combo_aspect_ratio");
    display_label_info = make_label(page, "display_label_info");
    display_combo_info = new TouchComboBox(page, "display_combo_info");
    display_label_privacy_mode = make_label(page, "display_label_privacy_mode");
    display_combo_privacy_mode = new TouchComboBox(page, "display_combo_privacy_mode");
    display_button_alldefault = make_button(page, "display_button_alldefault");

    place_rows(page, picture_column(), 102,
               {{display_label_menutime, display_combo_menutime},
                {display_label_transparancy, display_combo_transparancy},
                {display_label_aspect_ratio, display_combo_aspect_ratio},
                {display_label_info, display_combo_info},
                {display_label_privacy_mode, display_combo_privacy_mode}});
    place_reset_below_picture(display_button_alldefault);
    return page;
}

QWidget* SettingBase::build_playback_page()
{
    auto* page = new QWidget(setting_tab);
    playback_label_seektime = make_label(page, "playback_label_seektime");
    playback_combo_seektime = new TouchComboBox(page, "playback_combo_seektime");
    playback_label_playwithspeed = make_label(page, "playback_label_playwithspeed");
    playback_combo_playwithspeed = new TouchComboBox(page, "playback_combo_playwithspeed");
    playback_label_repeat_mode = make_label(page, "playback_label_repeat_mode");
    playback_combo_repeat_mode = new TouchComboBox(page, "playback_combo_repeat_mode");
    playback_label_bookmark = make_label(page, "playback_label_bookmark");
    playback_combo_bookmark = new TouchComboBox(page, "playback_combo_bookmark");
    playback_label_next_action = make_label(page, "playback_label_next_action");
    playback_combo_next_action = new TouchComboBox(page, "playback_combo_next_action");
    playback_label_trickmode = make_label(page, "playback_label_trickmode");
    playback_combo_trickmode = new TouchComboBox(page, "playback_combo_trickmode");
    playback_button_alldefault = make_button(page, "playback_button_alldefault");

    const QRect area = whole_page();
    place_rows(page, area.adjusted(0, 0, -104, 0), 176,
               {{playback_label_seektime, playback_combo_seektime},
                {playback_label_playwithspeed, playback_combo_playwithspeed},
                {playback_label_repeat_mode, playback_combo_repeat_mode},
                {playback_label_bookmark, playback_combo_bookmark},
                {playback_label_next_action, playback_combo_next_action},
                {playback_label_trickmode, playback_combo_trickmode}});
    playback_button_alldefault->setGeometry(area.right() - 96, area.bottom() - 35, 88, 30);
    return page;
}

QWidget* SettingBase::build_info_page()
{
    auto* page = new QWidget(setting_tab);
    info_label_audio = make_label(page, "info_label_audio");
    info_label_audio_codec = make_label(page, "info_label_audio_codec");
    info_label_audio_channels = make_label(page, "info_label_audio_channels");
    info_label_audio_sampling_rate = make_label(page, "info_label_audio_sampling_rate");
    info_label_video = make_label(page, "info_label_video");
    info_label_video_codec = make_label(page, "info_label_video_codec");
    info_label_video_resolution = make_label(page, "info_label_video_resolution");
    info_label_video_frame_rate = make_label(page, "info_label_video_frame_rate");

    auto* column = new QWidget(page);
    column->setGeometry(whole_page());
    auto* lines = new QVBoxLayout(column);
    lines->setContentsMargins(14, 8, 14, 8);
    lines->setSpacing(4);
    const auto add_value = [lines](QLabel* label) {
        label->setProperty("role", QStringLiteral("value"));
        label->setWordWrap(true);
        // Codec names come from the file: they are text, never markup.
        label->setTextFormat(Qt::PlainText);
        lines->addWidget(label);
    };
    lines->addWidget(info_label_audio);
    add_value(info_label_audio_codec);
    add_value(info_label_audio_channels);
    add_value(info_label_audio_sampling_rate);
    lines->addSpacing(10);
    lines->addWidget(info_label_video);
    add_value(info_label_video_codec);
    add_value(info_label_video_resolution);
    add_value(info_label_video_frame_rate);
    lines->addStretch(1);
    return page;
}

QWidget* SettingBase::build_about_page()
{
    auto* page = new QWidget(setting_tab);
    about_label_picture = make_label(page, "about_label_picture");
    about_label_picture->setPixmap(Resource::loadPixmap(QStringLiteral("SETTINGS/ver_video")));
    about_label_picture->setAlignment(Qt::AlignCenter);
    about_label_version = make_label(page, "about_label_version");
    about_label_version->setAlignment(Qt::AlignCenter);
    about_label_notice = make_label(page, "about_label_notice");
    about_label_notice->setAlignment(Qt::AlignCenter);
    about_label_notice->setWordWrap(true);
    about_label_notice->setProperty("role", QStringLiteral("notice"));

    auto* column = new QWidget(page);
    column->setGeometry(whole_page());
    auto* lines = new QVBoxLayout(column);
    lines->setContentsMargins(20, 10, 20, 10);
    lines->setSpacing(8);
    lines->addStretch(1);
    lines->addWidget(about_label_picture);
    lines->addWidget(about_label_version);
    lines->addWidget(about_label_notice);
    lines->addStretch(1);
    return page;
}
