#include "lists_fixture.h"

#include "list_box_skin.h"
#include "shell.h"
#include "test_main.h"

#include <csignal>
#include <cstdio>
#include <new>

#include <sys/resource.h>
#include <unistd.h>

namespace
{

bool no_memory = false;
QString watched_for;
int watched_count = 0;
QtMessageHandler handler_before = nullptr;

void count_warning(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg && text.contains(watched_for))
        ++watched_count;
    else
        handler_before(type, context, text);
}

QString skin_directory()
{
    return QString::fromLocal8Bit(qgetenv("QPEDIR")) + QStringLiteral("pics/tavel_video");
}

QImage button_image()
{
    QImage image(24, 20, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 4; y < 16; ++y) {
        for (int x = 4; x < 20; ++x)
            image.setPixelColor(x, y, lists_fixture::button_colour);
    }
    return image;
}

void write_panel(QTextStream& layout, const char* group, const QSize& size, const QRect& list_box,
                 const QStringList& buttons)
{
    const QString picture = QString::fromLatin1(group).toLower() + QStringLiteral(".png");
    lists_fixture::panel_background(size).save(skin_directory() + u'/' + picture);
    layout << "[" << group << "]\nbackground = " << picture << "\nbuttons = " << buttons.join(u' ') << "\n";
    for (int i = 0; i < buttons.size(); ++i) {
        for (const char* state : {"normal", "focus", "press", "disable"})
            layout << buttons[i] << "_" << state << " = button.png\n";
        layout << buttons[i] << "_xpos = " << 4 + 30 * i << "\n" << buttons[i] << "_ypos = 141\n";
    }
    layout << "[" << group << "_LISTBOX]\nxpos = " << list_box.x() << "\nypos = " << list_box.y()
           << "\nwidth = " << list_box.width() << "\nheight = " << list_box.height() << "\n";
}

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    if (no_memory)
        return nullptr;
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace lists_fixture
{

void start_from_scratch()
{
    test_support::reset_directories();
    QDir().mkpath(skin_directory());
    button_image().save(skin_directory() + QStringLiteral("/button.png"));
    QFile file(skin_directory() + QStringLiteral("/config"));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no skin");
    QTextStream layout(&file);
    write_panel(layout, "PLAYLIST", play_list_size, play_list_box, {"up", "down", "add", "minus", "close"});
    write_panel(layout, "BOOKMARK", bookmark_size, bookmark_box, {"up", "down", "add", "minus", "close"});
}

QImage panel_background(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgba(x % 64, y % 64, 40, 100 + (x + y) % 150));
    }
    return image;
}

QString data_directory()
{
    return QString::fromLocal8Bit(qgetenv("QPEDIR")) + QStringLiteral("etc/tavel_video");
}

MainWindow::MainWindow()
{
    setObjectName(QStringLiteral("tavel_video"));
    resize(480, 272);
}

bool MainWindow::eventFilter(QObject* object, QEvent* event)
{
    const bool is_key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    seen.append({object, event->type(), is_key ? static_cast<QKeyEvent*>(event)->key() : 0});
    return filters_all && is_key;
}

ListBoxSkin* list_box_of(QWidget* panel)
{
    return panel->findChild<ListBoxSkin*>(QStringLiteral("file_listbox"));
}

void add_moves_to_scroll_after()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<int>("top");
    QTest::addColumn<int>("top_after");
    QTest::newRow("up, in the view") << -1 << 13 << 10 << 10;
    QTest::newRow("up, to the top of the view") << -1 << 11 << 10 << 10;
    QTest::newRow("up, from the top of the view") << -1 << 10 << 10 << 9;
    QTest::newRow("up, above the view") << -1 << 3 << 10 << 2;
    QTest::newRow("up, into the view from below") << -1 << 15 << 10 << 10;
    QTest::newRow("up, below the view") << -1 << 17 << 5 << 5;
    QTest::newRow("down, in the view") << 1 << 12 << 10 << 10;
    QTest::newRow("down, to the bottom of the view") << 1 << 13 << 10 << 10;
    QTest::newRow("down, from the bottom of the view") << 1 << 14 << 10 << 11;
    QTest::newRow("down, below the view") << 1 << 17 << 5 << 14;
    QTest::newRow("down, into the view from above") << 1 << 9 << 10 << 10;
    QTest::newRow("down, above the view") << 1 << 7 << 10 << 4;
    QTest::newRow("down, above the view, no rows to fill it") << 1 << 1 << 10 << 0;
}

StandardOutput::StandardOutput()
{
    file_.open();
    std::fflush(stdout);
    saved_ = ::dup(STDOUT_FILENO);
    ::dup2(file_.handle(), STDOUT_FILENO);
}

StandardOutput::~StandardOutput()
{
    // A test that fails meanwhile says so here, too.
    const QByteArray taken = text();
    ::dup2(saved_, STDOUT_FILENO);
    ::close(saved_);
    std::fwrite(taken.constData(), 1, static_cast<std::size_t>(taken.size()), stdout);
    std::fflush(stdout);
}

QByteArray StandardOutput::text()
{
    std::fflush(stdout);
    QFile file(file_.fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

ShellCommands::ShellCommands()
{
    Shell::set_recorder([this](const QByteArray& command) {
        commands.append(command);
        return 0;
    });
}

ShellCommands::~ShellCommands()
{
    Shell::set_recorder({});
}

Warnings::Warnings(const QString& what)
{
    watched_for = what;
    watched_count = 0;
    handler_before = qInstallMessageHandler(count_warning);
}

Warnings::~Warnings()
{
    qInstallMessageHandler(handler_before);
}

int Warnings::count() const
{
    return watched_count;
}

FullDisk::FullDisk(unsigned long bytes)
{
    // Without this the system ends the process instead of refusing the write.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit;
    ::getrlimit(RLIMIT_FSIZE, &limit);
    saved_ = limit.rlim_cur;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

FullDisk::~FullDisk()
{
    rlimit limit;
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = saved_;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

NoMemory::NoMemory()
{
    no_memory = true;
}

NoMemory::~NoMemory()
{
    no_memory = false;
}

std::pair<int, int> inked_columns(const QImage& image, const QRect& rectangle, const QImage& ground)
{
    std::pair<int, int> found(-1, -1);
    for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
        for (int y = rectangle.top(); y <= rectangle.bottom(); ++y) {
            if (image.pixel(x, y) == ground.pixel(x, y))
                continue;
            if (found.first < 0)
                found.first = x;
            found.second = x;
            break;
        }
    }
    return found;
}

QColor brightest(const QImage& image, const QRect& rectangle)
{
    QColor result = Qt::black;
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y) {
        for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.red() + colour.green() + colour.blue() > result.red() + result.green() + result.blue())
                result = colour;
        }
    }
    return result;
}

} // namespace lists_fixture
