#include "player_window.h"

#include "config.h"
#include "device_font.h"
#include "device_screen.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "shell.h"
#include "test_main.h"

namespace
{

template<typename Widget> Widget* top_level(const char* name)
{
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget* each : widgets)
        if (each->objectName() == QLatin1String(name))
            if (auto* const found = qobject_cast<Widget*>(each))
                return found;
    return nullptr;
}

void write_layout(const QString& pictures, const QByteArray& layout)
{
    const QString skin = pictures + QStringLiteral("/tavel_video");
    QDir().mkpath(skin);
    QFile file(skin + QStringLiteral("/config"));
    if (!file.open(QIODevice::WriteOnly) || file.write(layout) != layout.size())
        qFatal("no layout file %s", qPrintable(file.fileName()));
}

QString list_file()
{
    return QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/playlist.dat");
}

} // namespace

void PlayerWindow::lay_out(const Device& device)
{
    if (!device.keep_files)
        test_support::reset_directories();
    const QString pictures = QPEApplication::qpeDir() + QStringLiteral("pics");
    QFile::remove(pictures);
    QDir(pictures).removeRecursively();
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->set_output(DeviceScreen::Output::Lcd);
    screen->control(QStringLiteral("/dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0 enable 1"));
    screen->control(QStringLiteral("/dev/fb1 size 480 272"));
    if (!device.layout.isEmpty())
        write_layout(pictures, device.layout);
    else if (device.with_skin)
        QFile::link(QStringLiteral(TAVEL_SKIN_DIR), pictures);
    if (!device.playlist.isEmpty()) {
        QDir().mkpath(QFileInfo(list_file()).path());
        Config list(list_file(), Config::File);
        list.setGroup(QStringLiteral("Playlist"));
        list.writeEntry(QStringLiteral("now_playing"), device.now_playing);
        list.writeEntry(QStringLiteral("now_playing_time"), static_cast<int>(device.now_playing_time));
        list.writeEntry(QStringLiteral("files"), device.playlist);
    }
    for (auto each = device.settings.cbegin(); each != device.settings.cend(); ++each) {
        Config settings(QStringLiteral("tavel_video_setting.cfg"));
        settings.setGroup(each.key().section(u'/', 0, 0));
        settings.writeEntry(each.key().section(u'/', 1), each.value());
    }
}

PlayerWindow::PlayerWindow(const Device& device)
{
    lay_out(device);
    TavelVideo::forget_seek_return();
    TavelVideo::set_socket_port(0);
    // No shell: "sync" would hold the whole machine up.
    Shell::set_recorder([](const QByteArray&) { return 0; });

    window_ = std::make_unique<TavelVideo>(nullptr, "tavel_video", 16);
    settings_ = top_level<SettingWidget>("VIDEO SETTING");
    file_manager_ = top_level<mainTitle>("FILEMANAGER");
    subtitle_ = child<SubtitleControl>("subtitle_control");
    static_cast<QPEApplication*>(qApp)->showMainWidget(window_.get());
    DeviceScreen::instance()->activate(window_.get());
    notice_timer_.setInterval(5);
    QObject::connect(&notice_timer_, &QTimer::timeout, &notice_timer_, [this] { look_for_notice(); });
}

PlayerWindow::~PlayerWindow()
{
    notice_timer_.stop();
    for (const int key : QSet<int>(held_keys_))
        release(key);
    window_.reset();
    delete settings_;
    delete file_manager_;
    Shell::set_recorder({});
}

void PlayerWindow::hand_over(const QStringList& files)
{
    message("transmit_filename(QString)",
            [&](QDataStream& stream) { stream << files.join(u'\n') + QStringLiteral("\n"); });
}

void PlayerWindow::message(const QCString& message, const std::function<void(QDataStream&)>& arguments)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QCopEnvelope::stream_version);
    arguments(stream);
    window_->receive_message(message, data);
}

void PlayerWindow::post(int number, std::any payload)
{
    post_custom_event(window_.get(), number, std::move(payload));
}

void PlayerWindow::control_event(const char* button)
{
    emit control_bar()->button_clicked(control_bar(), QString::fromLatin1(button));
}

void PlayerWindow::seek_to(Time target, SeekMode mode)
{
    post(player_event::seek, player_event::SeekRequest{mode, 0, target, 0});
}

bool PlayerWindow::informs(const QString& text)
{
    if (information()->isHidden())
        return false;
    InfoControl expected(nullptr, "expected", 0);
    expected.setAttribute(Qt::WA_DontShowOnScreen);
    expected.setGeometry(information()->geometry());
    expected.setFont(device_font(QStringLiteral("V28"), 14, 50));
    expected.set_text_color(Qt::white, false);
    static_cast<OsdControl&>(expected).OsdControl::draw(text);
    return expected.background_pixmap().toImage() == information()->background_pixmap().toImage();
}

void PlayerWindow::press(int key, bool auto_repeat)
{
    held_keys_.insert(key);
    QWindow* const host = DeviceScreen::instance()->window()->windowHandle();
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), auto_repeat);
    QCoreApplication::sendEvent(host, &event);
}

void PlayerWindow::release(int key, bool auto_repeat)
{
    if (!auto_repeat)
        held_keys_.remove(key);
    QWindow* const host = DeviceScreen::instance()->window()->windowHandle();
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier, QString(), auto_repeat);
    QCoreApplication::sendEvent(host, &event);
}

void PlayerWindow::click(int key)
{
    press(key);
    release(key);
}

QPoint PlayerWindow::in_host(const QPoint& place)
{
    DeviceScreen* const screen = DeviceScreen::instance();
    return screen->viewport()->mapTo(screen->window(), screen->mapFromScene(place));
}

void PlayerWindow::tap(const QPoint& place)
{
    touch(place);
    lift(place);
}

void PlayerWindow::double_tap(const QPoint& place)
{
    QTest::mouseDClick(DeviceScreen::instance()->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                       in_host(place));
}

void PlayerWindow::touch(const QPoint& place)
{
    QTest::mousePress(DeviceScreen::instance()->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      in_host(place));
}

void PlayerWindow::lift(const QPoint& place)
{
    QTest::mouseRelease(DeviceScreen::instance()->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                        in_host(place));
}

void PlayerWindow::at_next_notice(std::function<void()> then)
{
    at_notices_.push_back(std::move(then));
    notice_timer_.start();
}

void PlayerWindow::look_for_notice()
{
    if (!notice()->isVisible())
        return;
    notices_.append(notice()->text());
    const std::function<void()> then = at_notices_.empty() ? std::function<void()>() : at_notices_.front();
    if (!at_notices_.empty())
        at_notices_.pop_front();
    if (then)
        then();
    notice()->stop();
    if (at_notices_.empty())
        notice_timer_.stop();
}

bool EventCounter::eventFilter(QObject*, QEvent* event)
{
    if (const auto* const custom = dynamic_cast<const QCustomEvent*>(event)) {
        numbers.append(custom->type());
        if (const auto* const request = custom->data<player_event::SeekRequest>())
            seeks.append(*request);
        if (const auto* const request = custom->data<player_event::EntryRequest>())
            entries.append(*request);
        if (at_each_)
            at_each_(custom->type());
    }
    return false;
}
