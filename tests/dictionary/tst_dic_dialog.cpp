#include "dic_dialog.h"

#include "child_program.h"
#include "global.h"
#include "q_select_edit.h"
#include "qcop_channel.h"
#include "qcop_envelope.h"
#include "tavel_button.h"
#include "test_main.h"

#include <QtCore/QTranslator>
#include <QtWidgets/QLabel>

#include <cstdio>

namespace
{

constexpr char system_channel[] = "QPE/System";
constexpr char dictionary_channel[] = "QPE/Glossa_Channel";

/// How the stand-in for the rest of the device goes about the dictionary program.
enum class Start : int { Already = 0, Late = 1, Never = 2 };

void say(const QByteArray& line)
{
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

QString text_of(const QByteArray& data)
{
    QDataStream stream(data);
    stream.setVersion(QCopEnvelope::stream_version);
    QString text;
    stream >> text;
    return text;
}

/// The launcher and the dictionary program in one process: tells each message that comes to either.
int run_device(Start start)
{
    std::unique_ptr<QCopChannel> dictionary;
    const auto open_dictionary = [&dictionary] {
        if (dictionary != nullptr)
            return;
        dictionary = std::make_unique<QCopChannel>(dictionary_channel);
        QObject::connect(dictionary.get(), &QCopChannel::received, dictionary.get(),
                         [](const QCString& message, const QByteArray& data) {
                             say(message + ' ' + text_of(data).toUtf8().toPercentEncoding());
                         });
    };
    QCopChannel system(system_channel);
    QObject::connect(&system, &QCopChannel::received, &system,
                     [start, open_dictionary](const QCString& message, const QByteArray& data) {
                         say(message + ' ' + text_of(data).toUtf8());
                         // Programs take their time to start.
                         if (start == Start::Late)
                             QTimer::singleShot(100, QCoreApplication::instance(), open_dictionary);
                     });
    if (start == Start::Already)
        open_dictionary();
    say("ready");
    return QCoreApplication::exec();
}

/// The device around the player, and the dialog's waits, shortened and counted.
class Device
{
public:
    explicit Device(Start start)
    {
        program_.start_role("device", {QString::number(static_cast<int>(start))});
        // Long enough for a busy machine to start the program meanwhile, where one starts at all.
        const unsigned long shortened_ms = start == Start::Late ? 200 : 1;
        Global::set_sleeper([this, shortened_ms](std::chrono::microseconds wait) {
            waits.append(wait);
            QThread::msleep(shortened_ms);
        });
    }
    ~Device() { Global::set_sleeper({}); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    bool is_ready() { return program_.lines().contains("ready"); }

    /// What came since it was ready.
    QList<QByteArray> messages()
    {
        QList<QByteArray> lines = program_.lines();
        lines.removeAll("ready");
        return lines;
    }

    QList<std::chrono::microseconds> waits;

private:
    ChildProgram program_;
};

/// How many pixels of a red picture are written upon in white.
int ink_on_red(const QImage& picture)
{
    int ink = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ink += picture.pixelColor(x, y).green() > 128 ? 1 : 0;
    }
    return ink;
}

void save_picture(const char* name, QSize size, const QList<QColor>& frames,
                  QImage::Format format = QImage::Format_ARGB32)
{
    const QString path =
        QString::fromLocal8Bit(qgetenv("QPEDIR")) + QStringLiteral("pics/tavel_video/DIC/") + QLatin1String(name);
    QDir().mkpath(QFileInfo(path).path());
    QImage image(size, QImage::Format_ARGB32);
    QPainter painter(&image);
    const int width = size.width() / static_cast<int>(frames.size());
    for (int frame = 0; frame < frames.size(); ++frame)
        painter.fillRect(frame * width, 0, width, size.height(), frames.at(frame));
    painter.end();
    QVERIFY(image.convertToFormat(format).save(path));
    QCOMPARE(QImage(path).format(), format);
}

} // namespace

class DicDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { test_support::reset_directories(); }

    // Searching

    void a_running_dictionary_is_asked_at_once()
    {
        Device device(Start::Already);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        mark(dialog, QStringLiteral("have"));
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        QTRY_COMPARE(device.messages(), QList<QByteArray>({"execute(QString) glossa", "Search(QString) have"}));
        QVERIFY(device.waits.isEmpty());
        QVERIFY(dialog.isVisible());
    }

    void a_dictionary_that_starts_late_is_waited_for()
    {
        Device device(Start::Late);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        mark(dialog, QStringLiteral("have"));
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        QTRY_COMPARE(device.messages(), QList<QByteArray>({"execute(QString) glossa", "Search(QString) have"}));
        QVERIFY(!device.waits.isEmpty());
        QVERIFY(device.waits.size() < 30);
    }

    void a_dictionary_that_never_starts_is_given_up_after_15_seconds()
    {
        Device device(Start::Never);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        mark(dialog, QStringLiteral("have"));
        // Takes the question, but only as somebody who listens in: nobody has opened the channel.
        QCopChannel listener(dictionary_channel, QCopChannel::Delivery::Queued, QCopChannel::Presence::Hidden);
        QSignalSpy asked(&listener, &QCopChannel::received);
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        QCOMPARE(device.waits.size(), 30);
        for (const std::chrono::microseconds wait : std::as_const(device.waits))
            QCOMPARE(wait, std::chrono::microseconds(std::chrono::milliseconds(500)));
        QTRY_COMPARE(asked.size(), 1);
        QCOMPARE(asked.first().at(0).toByteArray(), QByteArray("Search(QString)"));
        QCOMPARE(text_of(asked.first().at(1).toByteArray()), QStringLiteral("have"));
        QCOMPARE(device.messages(), QList<QByteArray>({"execute(QString) glossa"}));
        QVERIFY2(dialog.isVisible(), "nothing is reported, the dialog stays");
    }

    void search_pressed_twice_asks_twice()
    {
        Device device(Start::Already);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        mark(dialog, QStringLiteral("you"));
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        QTRY_COMPARE(device.messages().count("Search(QString) you"), 2);
        QCOMPARE(device.messages().count("execute(QString) glossa"), 2);
    }

    void a_passage_over_two_lines_is_sent_as_it_is()
    {
        Device device(Start::Already);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        dialog.m_SubtitleEdit->setText(QStringLiteral("Where have\nyou been"));
        dialog.show();
        dialog.m_SubtitleEdit->selectAll();
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        QTRY_COMPARE(device.messages().size(), 2);
        QCOMPARE(device.messages().last(), QByteArray("Search(QString) Where%20have%0Ayou%20been"));
    }

    void without_a_marked_word_search_does_nothing()
    {
        Device device(Start::Already);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        dialog.m_SubtitleEdit->setText(QStringLiteral("Where have you been"));
        dialog.show();
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        // A question of our own, behind which anything the dialog had sent would have come.
        {
            QCopEnvelope envelope(dictionary_channel, "Search(QString)");
            envelope << QStringLiteral("last");
        }
        QTRY_COMPARE(device.messages(), QList<QByteArray>({"Search(QString) last"}));
    }

    void without_a_subtitle_the_box_is_empty_and_search_does_nothing()
    {
        Device device(Start::Already);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        dialog.m_SubtitleEdit->setText(QString());
        dialog.show();
        QTest::keyClick(dialog.m_SubtitleEdit, Qt::Key_Right);
        QVERIFY(dialog.m_SubtitleEdit->toPlainText().isEmpty());
        QTest::mouseClick(dialog.m_SearchButton, Qt::LeftButton);
        {
            QCopEnvelope envelope(dictionary_channel, "Search(QString)");
            envelope << QStringLiteral("last");
        }
        QTRY_COMPARE(device.messages(), QList<QByteArray>({"Search(QString) last"}));
    }

    void the_key_pad_alone_looks_a_word_up()
    {
        Device device(Start::Already);
        QTRY_VERIFY(device.is_ready());
        DicDialog dialog;
        dialog.m_SubtitleEdit->setText(QString::fromUtf8("오늘 밤에 만나요"));
        dialog.show();
        QCOMPARE(dialog.focusWidget(), static_cast<QWidget*>(dialog.m_SubtitleEdit));
        QTest::keyClick(dialog.m_SubtitleEdit, Qt::Key_Right);
        QTest::keyClick(dialog.m_SubtitleEdit, Qt::Key_Right);
        QTest::keyClick(dialog.m_SubtitleEdit, Qt::Key_Down);
        QCOMPARE(dialog.focusWidget(), static_cast<QWidget*>(dialog.m_SearchButton));
        QTest::keyClick(dialog.m_SearchButton, Qt::Key_Return);
        QTRY_COMPARE(device.messages().size(), 2);
        QCOMPARE(device.messages().last(), "Search(QString) " + QString::fromUtf8("밤에").toUtf8().toPercentEncoding());
        QTest::keyClick(dialog.m_SearchButton, Qt::Key_Down);
        QCOMPARE(dialog.focusWidget(), static_cast<QWidget*>(dialog.m_CloseButton));
        QTest::keyClick(dialog.m_CloseButton, Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    }

    // Closing

    void the_close_button_ends_the_look_up()
    {
        DicDialog dialog;
        QTimer::singleShot(0, &dialog, [&dialog] { QTest::mouseClick(dialog.m_CloseButton, Qt::LeftButton); });
        QCOMPARE(dialog.exec(), static_cast<int>(QDialog::Accepted));
    }

    void escape_ends_the_look_up()
    {
        DicDialog dialog;
        QTimer::singleShot(0, &dialog, [&dialog] { QTest::keyClick(&dialog, Qt::Key_Escape); });
        QCOMPARE(dialog.exec(), static_cast<int>(QDialog::Rejected));
    }

    // Form

    void each_control_has_its_place_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("class_name");
        QTest::addColumn<QRect>("place");
        QTest::newRow("search") << "m_SearchButton" << QByteArray("TavelButton") << QRect(124, 159, 65, 23);
        QTest::newRow("text") << "m_SubtitleEdit" << QByteArray("QSelectEdit") << QRect(10, 35, 291, 90);
        QTest::newRow("instruction") << "m_InstructionLabel" << QByteArray("QLabel") << QRect(10, 133, 290, 20);
        QTest::newRow("close") << "m_CloseButton" << QByteArray("TavelButton") << QRect(274, 3, 35, 25);
    }

    void each_control_has_its_place()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, class_name);
        QFETCH(QRect, place);
        DicDialog dialog;
        const auto* found = dialog.findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
        QVERIFY(found != nullptr);
        QVERIFY(found->inherits(class_name.constData()));
        QCOMPARE(found->geometry(), place);
    }

    void the_controls_were_made_in_their_order()
    {
        DicDialog dialog;
        QStringList names;
        const QObjectList children = dialog.children();
        for (const QObject* child : children) {
            if (child->isWidgetType())
                names.append(child->objectName());
        }
        QCOMPARE(names, QStringList({"m_SearchButton", "m_SubtitleEdit", "m_InstructionLabel", "m_CloseButton"}));
    }

    void the_dialog_has_one_size_and_no_frame()
    {
        DicDialog dialog(nullptr, nullptr, true, 0);
        QCOMPARE(dialog.objectName(), QStringLiteral("DicDialogBase"));
        QCOMPARE(dialog.size(), QSize(312, 192));
        QCOMPARE(dialog.minimumSize(), QSize(312, 192));
        QCOMPARE(dialog.maximumSize(), QSize(312, 192));
        QVERIFY(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
        QVERIFY(dialog.isModal());
        const DicDialog named(nullptr, "dictionary", false, 0x200010);
        QCOMPARE(named.objectName(), QStringLiteral("dictionary"));
        QVERIFY(!named.isModal());
    }

    void the_dialog_stands_in_the_middle_of_its_window()
    {
        QWidget window(nullptr, Qt::FramelessWindowHint);
        window.setGeometry(80, 104, 480, 272);
        QWidget inner(&window);
        const DicDialog dialog(&inner);
        QVERIFY((dialog.geometry().center() - window.geometry().center()).manhattanLength() <= 2);
        const DicDialog alone;
        QVERIFY((alone.geometry().center() - QRect(80, 104, 480, 272).center()).manhattanLength() <= 2);
    }

    void the_box_of_text_has_its_looks()
    {
        DicDialog dialog;
        const QSelectEdit* box = dialog.m_SubtitleEdit;
        QCOMPARE(box->font().family().toLower(), QStringLiteral("v28"));
        QCOMPARE(box->font().pixelSize(), 16);
        QCOMPARE(box->font().weight(), QFont::Normal);
        QCOMPARE(box->frameShape(), QFrame::Box);
        QCOMPARE(box->frameShadow(), QFrame::Plain);
        QCOMPARE(box->lineWidth(), 0);
        const QPalette palette = box->palette();
        QCOMPARE(palette.color(QPalette::Active, QPalette::WindowText), QColor(128, 128, 128));
        QCOMPARE(palette.color(QPalette::Active, QPalette::Text), QColor(128, 128, 128));
        QCOMPARE(palette.color(QPalette::Active, QPalette::Highlight), QColor(16, 126, 215));
        QCOMPARE(palette.color(QPalette::Active, QPalette::HighlightedText), QColor(255, 255, 255));
        QCOMPARE(palette.color(QPalette::Active, QPalette::Base), QColor(255, 255, 255));
    }

    void the_instruction_does_not_stretch_its_contents()
    {
        DicDialog dialog;
        QPixmap small(10, 10);
        small.fill(Qt::red);
        dialog.m_InstructionLabel->setPixmap(small);
        dialog.show();
        const QImage label = dialog.m_InstructionLabel->grab().toImage();
        QCOMPARE(label.pixelColor(label.rect().center()), QColor(Qt::red));
        QVERIFY(label.pixelColor(2, label.height() / 2) != QColor(Qt::red));
    }

    void a_subtitle_of_two_lines_stands_in_the_middle_of_the_box()
    {
        DicDialog dialog;
        dialog.m_SubtitleEdit->setText(QStringLiteral("HHHH\nHHHH"));
        dialog.show();
        // Without the ring of the focus there is nothing but the text.
        dialog.m_SearchButton->setFocus();
        const QImage box = dialog.m_SubtitleEdit->grab().toImage();
        QRect ink;
        for (int y = 0; y < box.height(); ++y) {
            for (int x = 0; x < box.width(); ++x) {
                if (box.pixelColor(x, y).lightness() < 200)
                    ink |= QRect(x, y, 1, 1);
            }
        }
        QVERIFY(ink.height() > 16);
        const int above = ink.top();
        const int below = box.height() - 1 - ink.bottom();
        const int left = ink.left();
        const int right = box.width() - 1 - ink.right();
        // A line has a little more room above its capitals than below them.
        QVERIFY2(std::abs(above - below) <= 6, qPrintable(QStringLiteral("%1 and %2").arg(above).arg(below)));
        QVERIFY2(std::abs(left - right) <= 2, qPrintable(QStringLiteral("%1 and %2").arg(left).arg(right)));
    }

    void a_marked_word_stays_visible_while_the_search_button_has_the_focus()
    {
        DicDialog dialog;
        mark(dialog, QStringLiteral("have"));
        dialog.m_SearchButton->setFocus();
        const QImage box = dialog.m_SubtitleEdit->grab().toImage();
        int highlighted = 0;
        for (int y = 0; y < box.height(); ++y) {
            for (int x = 0; x < box.width(); ++x)
                highlighted += box.pixelColor(x, y) == QColor(16, 126, 215) ? 1 : 0;
        }
        QVERIFY(highlighted > 100);
    }

    void the_texts_are_there_in_both_languages()
    {
        DicDialog dialog;
        QCOMPARE(dialog.m_SearchButton->text(), QStringLiteral("Search"));
        QCOMPARE(dialog.m_InstructionLabel->text(), QStringLiteral("Select a word to find then hit search."));
        QTranslator korean;
        QVERIFY(korean.load(QStringLiteral(":/translations/tavel_video_ko.qm")));
        QCoreApplication::installTranslator(&korean);
        QTRY_COMPARE(dialog.m_SearchButton->text(), QString::fromUtf8("검색"));
        const QLabel* instruction = dialog.m_InstructionLabel;
        QVERIFY(instruction->text() != QStringLiteral("Select a word to find then hit search."));
        QVERIFY(instruction->sizeHint().width() <= instruction->width());
        QCoreApplication::removeTranslator(&korean);
        QTRY_COMPARE(dialog.m_SearchButton->text(), QStringLiteral("Search"));
        QVERIFY(instruction->sizeHint().width() <= instruction->width());
    }

    // Pictures

    void the_dialog_wears_the_skins_pictures()
    {
        save_picture("popup_bg.png", QSize(312, 192), {QColor(20, 30, 40), QColor(60, 70, 80)});
        save_picture("search_bt.png", QSize(260, 23), {Qt::red, Qt::green, Qt::blue, Qt::gray});
        save_picture("bt_popup_close.png", QSize(140, 25), {Qt::cyan, Qt::magenta, Qt::yellow, Qt::gray});
        DicDialog dialog;
        dialog.show();
        const QImage shown = dialog.grab().toImage();
        QCOMPARE(shown.pixelColor(2, 2), QColor(20, 30, 40));
        QCOMPARE(shown.pixelColor(310, 190), QColor(60, 70, 80));
        // The label shows the piece of the picture that it covers.
        QCOMPARE(shown.pixelColor(12, 135), QColor(20, 30, 40));
        QCOMPARE(shown.pixelColor(298, 135), QColor(60, 70, 80));
        QCOMPARE(shown.pixelColor(125, 160), QColor(Qt::red));
        QCOMPARE(shown.pixelColor(275, 4), QColor(Qt::cyan));
        dialog.m_SearchButton->setFocus();
        QCOMPARE(dialog.grab().toImage().pixelColor(125, 160), QColor(Qt::blue));
    }

    void the_search_button_bears_its_word()
    {
        save_picture("search_bt.png", QSize(260, 23), {Qt::red, Qt::green, Qt::blue, Qt::gray});
        DicDialog dialog;
        dialog.show();
        QVERIFY(ink_on_red(dialog.m_SearchButton->grab().toImage()) > 20);
    }

    void a_picture_with_a_palette_bears_the_word_too()
    {
        save_picture("search_bt.png", QSize(260, 23), {Qt::red, Qt::green, Qt::blue, Qt::gray},
                     QImage::Format_Indexed8);
        DicDialog dialog;
        dialog.show();
        const QImage button = dialog.m_SearchButton->grab().toImage();
        QCOMPARE(button.pixelColor(1, 1), QColor(Qt::red));
        QVERIFY(ink_on_red(button) > 20);
    }

    void without_the_skins_pictures_everything_can_still_be_seen()
    {
        DicDialog dialog;
        dialog.show();
        const QImage shown = dialog.grab().toImage();
        QVERIFY(shown.pixelColor(156, 16) != shown.pixelColor(280, 6));
        QVERIFY(shown.pixelColor(130, 175) != shown.pixelColor(60, 175));
        for (QWidget* button :
             {static_cast<QWidget*>(dialog.m_SearchButton), static_cast<QWidget*>(dialog.m_CloseButton)}) {
            const QImage plain = button->grab().toImage();
            button->setFocus();
            QVERIFY(button->grab().toImage() != plain);
        }
    }

private:
    /// Shows the dialog with a subtitle in which @p word is marked.
    static void mark(DicDialog& dialog, const QString& word)
    {
        dialog.m_SubtitleEdit->setText(QStringLiteral("Where have you been"));
        dialog.show();
        QVERIFY(dialog.m_SubtitleEdit->find(word));
        QCOMPARE(dialog.m_SubtitleEdit->markedText(), word);
    }
};

int main(int argc, char** argv)
{
    if (ChildProgram::role() == "device") {
        const QCoreApplication application(argc, argv);
        return run_device(static_cast<Start>(application.arguments().value(1).toInt()));
    }
    test_support::prepare_process();
    QApplication application(argc, argv);
    DicDialogTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dic_dialog.moc"
