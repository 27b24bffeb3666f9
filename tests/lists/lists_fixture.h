#pragma once

#include <QtCore/QtCore>
#include <QtWidgets/QtWidgets>
#include <sys/resource.h>

class ListBoxSkin;

/// What the tests of the lists share: a skin of their own, a main window that notes what reaches its filter, and ears
/// for what is printed.
namespace lists_fixture
{

inline constexpr QRect play_list_box(2, 26, 188, 110);
inline constexpr QRect bookmark_box(2, 26, 208, 110);
inline constexpr QSize play_list_size(192, 166);
inline constexpr QSize bookmark_size(212, 166);

/// Fresh directories and a small skin for the window "tavel_video": two panels whose background has another colour and
/// alpha at each pixel, and buttons with transparent corners.
void start_from_scratch();

/// Opaque parts of the buttons' pictures.
inline constexpr QColor button_colour(0, 200, 0);

/// The panels' background picture.
QImage panel_background(const QSize& size);

/// Directory of the lists' files, without a slash at its end.
QString data_directory();

/// A main window. It keeps what its event filter was given.
class MainWindow : public QWidget
{
public:
    struct Seen {
        QObject* object;
        QEvent::Type type;
        int key;
    };

    MainWindow();
    bool eventFilter(QObject* object, QEvent* event) override;

    QList<Seen> seen;
    bool filters_all = false; ///< what the filter answers
};

/// The panel's list box.
ListBoxSkin* list_box_of(QWidget* panel);

/// Rows of data for a move of the row under the cursor in a list of moved_list_length rows, of which the view holds
/// five: int step (-1 up, 1 down), int cursor, int top (first row in view before the move), int top_after.
void add_moves_to_scroll_after();
inline constexpr int moved_list_length = 20;

/// Takes what the program prints to its standard output as long as it lives.
class StandardOutput
{
public:
    StandardOutput();
    ~StandardOutput();
    QByteArray text();

private:
    QTemporaryFile file_;
    int saved_ = -1;
};

/// Takes the commands to the shell, in place of the shell, as long as it lives.
class ShellCommands
{
public:
    ShellCommands();
    ~ShellCommands();
    QByteArrayList commands;
};

/// Counts the warnings that name @p what as long as it lives, and keeps them from the test's output.
class Warnings
{
public:
    explicit Warnings(const QString& what);
    ~Warnings();
    int count() const;
};

/// Lets no file of this process grow beyond @p bytes as long as it lives, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(unsigned long bytes);
    ~FullDisk();

private:
    rlim_t saved_;
};

/// Lets every allocation that may fail (new with std::nothrow) fail as long as it lives.
class NoMemory
{
public:
    NoMemory();
    ~NoMemory();
    Q_DISABLE_COPY_MOVE(NoMemory)
};

/// Leftmost and rightmost column of @p rectangle in which a pixel of @p image differs from @p ground; -1, -1 when there
/// is none.
std::pair<int, int> inked_columns(const QImage& image, const QRect& rectangle, const QImage& ground);

/// The colour that stands out most from black in @p rectangle.
QColor brightest(const QImage& image, const QRect& rectangle);

} // namespace lists_fixture
