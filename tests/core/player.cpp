#include "player.h"

#include "cfbio.h"
#include "global.h"
#include "qcop_envelope.h"
#include "script.h"
#include "tolmi2c.h"

namespace
{

void write(const QString& line)
{
    Script::instance().write(line);
}

} // namespace

TestDevice::TestDevice()
{
    CFbio::set_recorder([](const QByteArray& text) { write(QStringLiteral("fb ") + QString::fromLatin1(text)); });
    TolmI2c::set_recorder([](const char* operation) {
        if (!QLatin1String(operation).contains(QLatin1String("Status")) &&
            !QLatin1String(operation).contains(QLatin1String("24Pin")))
            write(QStringLiteral("screen ") + QString::fromLatin1(operation));
    });
    Global::set_sleeper([](std::chrono::microseconds time) {
        write(QStringLiteral("wait %1").arg(static_cast<double>(time.count()) / 1000));
    });
    listen("QPE/System");
    listen("QPE/TaskBar");
    listen("QPE/Applet/screenchage");
}

TestDevice::~TestDevice()
{
    CFbio::set_recorder({});
    TolmI2c::set_recorder({});
    Global::set_sleeper({});
    scripted_engine::clear();
}

void TestDevice::listen(const char* channel)
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

QStringList TestDevice::make_files(int count)
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

Player::Player() : Player(Device()) {}

Player::Player(const Device& device) : PlayerWindow(device) {}

Player::~Player() = default;

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

QString describe(const QStringList& log)
{
    return QStringLiteral("\n") + log.join(u'\n');
}
