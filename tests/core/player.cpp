#include "player.h"

#include "cfbio.h"
#include "config.h"
#include "device_font.h"
#include "device_screen.h"
#include "global.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "script.h"
#include "shell.h"
#include "test_main.h"
#include "tolmi2c.h"

namespace
{

void write(const QString& line)
{
    Script::instance().write(line);
}

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

void Player::lay_out(const Device& device)
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

Player::Player() : Player(Device()) {}

Player::Player(const Device& device)
{
    lay_out(device);
    TavelVideo::forget_seek_return();
    TavelVideo::set_socket_port(0);
    CFbio::set_recorder([](const QByteArray& text) { write(QStringLiteral("fb ") + QString::fromLatin1(text)); });
    TolmI2c::set_recorder([](const char* operation) {
        if (!QLatin1String(operation).contains(QLatin1String("Status")) &&
            !QLatin1String(operation).contains(QLatin1String("24Pin")))
            write(QStringLiteral("screen ") + QString::fromLatin1(operation));
    });
    Global::set_sleeper([](std::chrono::microseconds time) {
        write(QStringLiteral("wait %1").arg(static_cast<double>(time.count()) / 1000));
    });
    // No shell: "sync" would hold the whole machine up.
    Shell::set_recorder([](const QByteArray&) { return 0; });
    listen("QPE/System");
    listen("QPE/TaskBar");
    listen("QPE/Applet/screenchage");

    window_ = std::make_unique<TavelVideo>(nullptr, "tavel_video", 16);
    settings_ = top_level<SettingWidget>("VIDEO SETTING");
    file_manager_ = top_level<mainTitle>("FILEMANAGER");
    subtitle_ = child<SubtitleControl>("subtitle_control");
    static_cast<QPEApplication*>(qApp)->showMainWidget(window_.get());
    DeviceScreen::instance()->activate(window_.get());
    notice_timer_.setInterval(5);
    QObject::connect(&notice_timer_, &QTimer::timeout, &notice_timer_, [this] { look_for_notice(); });
}

Player::~Player()
{
    notice_timer_.stop();
    for (const int key : QSet<int>(held_keys_))
        release(key);
    const QPointer<SubtitleControl> subtitle(subtitle_);
    window_.reset();
    delete subtitle.data();
    delete settings_;
    delete file_manager_;
    CFbio::set_recorder({});
    TolmI2c::set_recorder({});
    Global::set_sleeper({});
    Shell::set_recorder({});
    scripted_engine::clear();
}

QStringList Player::make_files(int count)
{
    QStringList files;
    for (int i = 0; i < count; ++i) {
        files.append(files_.filePath(QString(QChar(u'a' + i)) + QStringLiteral(".avi")));
        QFile file(files.last());
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no test file %s", qPrintable(files.last()));
    }
    return files;
}

void Player::hand_over(const QStringList& files)
{
    message("transmit_filename(QString)",
            [&](QDataStream& stream) { stream << files.join(u'\n') + QStringLiteral("\n"); });
}

void Player::message(const QCString& message, const std::function<void(QDataStream&)>& arguments)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QCopEnvelope::stream_version);
    arguments(stream);
    window_->receive_message(message, data);
}

void Player::post(int number, std::any payload)
{
    post_custom_event(window_.get(), number, std::move(payload));
}

void Player::control_event(const char* button)
{
    emit control_bar()->button_clicked(control_bar(), QString::fromLatin1(button));
}

void Player::seek_to(Time target, SeekMode mode)
{
    post(player_event::seek, player_event::SeekRequest{mode, 0, target, 0});
}

void Player::settle()
{
    // Each round lets the events happen that the one before has led to.
    for (int round = 0; round < 6; ++round) {
        scripted_engine::report_state(static_cast<PlayerState>(0));
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

void Player::play_a_film(const QString& container)
{
    scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("name"), container);
    hand_over(make_files(1));
    for (int round = 0; round < 10 && !in(&TavelVideo::play_state); ++round)
        settle();
    QTRY_VERIFY(in(&TavelVideo::play_state));
    settle();
    clear_log();
}

QStringList Player::log_of(const QStringList& beginnings) const
{
    QStringList lines;
    const QStringList all = log();
    for (const QString& line : all)
        for (const QString& beginning : beginnings)
            if (line.startsWith(beginning)) {
                lines.append(line);
                break;
            }
    return lines;
}

bool Player::informs(const QString& text)
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

void Player::press(int key, bool auto_repeat)
{
    held_keys_.insert(key);
    QWindow* const host = DeviceScreen::instance()->window()->windowHandle();
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), auto_repeat);
    QCoreApplication::sendEvent(host, &event);
}

void Player::release(int key, bool auto_repeat)
{
    if (!auto_repeat)
        held_keys_.remove(key);
    QWindow* const host = DeviceScreen::instance()->window()->windowHandle();
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier, QString(), auto_repeat);
    QCoreApplication::sendEvent(host, &event);
}

void Player::click(int key)
{
    press(key);
    release(key);
}

QPoint Player::in_host(const QPoint& place)
{
    DeviceScreen* const screen = DeviceScreen::instance();
    return screen->viewport()->mapTo(screen->window(), screen->mapFromScene(place));
}

void Player::tap(const QPoint& place)
{
    touch(place);
    lift(place);
}

void Player::touch(const QPoint& place)
{
    QTest::mousePress(DeviceScreen::instance()->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      in_host(place));
}

void Player::lift(const QPoint& place)
{
    QTest::mouseRelease(DeviceScreen::instance()->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                        in_host(place));
}

void Player::at_next_notice(std::function<void()> then)
{
    at_notices_.push_back(std::move(then));
    notice_timer_.start();
}

void Player::look_for_notice()
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

void Player::listen(const char* channel)
{
    channels_.push_back(
        std::make_unique<QCopChannel>(channel, QCopChannel::Delivery::Direct, QCopChannel::Presence::Hidden));
    QObject::connect(channels_.back().get(), &QCopChannel::received, channels_.back().get(),
                     [name = QString::fromLatin1(channel)](const QCString& message, const QByteArray& data) {
                         QDataStream stream(data);
                         stream.setVersion(QCopEnvelope::stream_version);
                         QStringList line{QStringLiteral("qcop"), name, QString::fromLatin1(message)};
                         if (message.endsWith("(QString)")) {
                             QString text;
                             stream >> text;
                             line.append(text);
                         } else if (message.endsWith("(unsigned char)")) {
                             quint8 value = 0;
                             stream >> value;
                             line.append(QString::number(value));
                         } else {
                             while (!stream.atEnd()) {
                                 int value = 0;
                                 stream >> value;
                                 line.append(QString::number(value));
                             }
                         }
                         write(line.join(u' '));
                     });
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

QString describe(const QStringList& log)
{
    return QStringLiteral("\n") + log.join(u'\n');
}
