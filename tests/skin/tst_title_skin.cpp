#include "device_font.h"
#include "device_screen.h"
#include "paint_record.h"
#include "skin_directory.h"
#include "title_skin.h"

namespace
{

constexpr int text_alignment = Qt::AlignLeft | Qt::AlignVCenter;

void write_layout(const SkinDirectory& skin)
{
    QImage background(480, 26, QImage::Format_ARGB32);
    for (int x = 0; x < 480; ++x) {
        for (int y = 0; y < 26; ++y)
            background.setPixel(x, y, qRgba(40, 80, 120, x % 256));
    }
    skin.picture("title.png", background);
    skin.plain_picture("button.png", {20, 20}, 0xFFFFFFFF);
    skin.layout("[VIDEO_TITLE]\nbackground = title.png\nbuttons = dic close\n" +
                SkinDirectory::button("dic", {430, 3}) + SkinDirectory::button("close", {456, 3}));
}

QFont title_font()
{
    return device_font("v28", 12, 50);
}

int width_of(const QString& text)
{
    return QFontMetrics(title_font()).horizontalAdvance(text);
}

/// A name of exactly that width in the title's font; empty if there is none.
QString name_of_width(int width)
{
    for (const char letter : {'i', 'l', '.', 'r', 't', 'n'}) {
        for (const char filler : {'M', 'W', 'm', 'o', 'a', '1'}) {
            for (int fillers = 0; fillers < 60; ++fillers) {
                QString name(fillers, QLatin1Char(filler));
                while (width_of(name) < width)
                    name += QLatin1Char(letter);
                if (width_of(name) == width)
                    return name;
            }
        }
    }
    return {};
}

QTimer* timer_of(const TitleSkin& title)
{
    return title.findChild<QTimer*>();
}

void tick(const TitleSkin& title)
{
    QTimer* timer = timer_of(title);
    QVERIFY(timer->isActive());
    QTimerEvent expired(timer->timerId());
    QCoreApplication::sendEvent(timer, &expired);
}

QImage shown(const TitleSkin& title)
{
    return title.backgroundPixmap().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The strip as it should be: fill, label, name, and the label once more.
QImage strip(const TitleSkin& title, unsigned char alpha, const std::function<void(QPainter&)>& draw_name)
{
    const auto label = [&](QPainter& painter) {
        painter.setFont(title_font());
        painter.setPen(QColor(255, 249, 178));
        painter.drawText(10, 0, title.width(), title.height(), text_alignment, "VIDEO");
    };
    QPixmap strip(title.size());
    strip.fill(QColor::fromRgba(static_cast<QRgb>(alpha / 2) << 24));
    QPainter painter(&strip);
    label(painter);
    draw_name(painter);
    painter.end();
    QPixmap installed(title.size());
    installed.fill(Qt::transparent);
    painter.begin(&installed);
    painter.drawPixmap(0, 0, strip);
    label(painter);
    painter.end();
    return installed.toImage().convertToFormat(QImage::Format_ARGB32);
}

} // namespace

class tst_TitleSkin : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SkinDirectory> skin;
    std::unique_ptr<QWidget> window;
    TitleSkin* title = nullptr;

    void make_title()
    {
        window = std::make_unique<QWidget>();
        window->setObjectName("tavel_video");
        window->resize(480, 272);
        title = new TitleSkin(window.get(), "VIDEO_TITLE", 0);
        title->move(0, 0);
        window->show();
    }

    QString long_name() const { return name_of_width(600); }

    QImage still_strip(const QString& name, unsigned char alpha) const
    {
        return strip(*title, alpha, [&](QPainter& painter) {
            painter.setPen(Qt::white);
            painter.drawText(title->label_width() + 10, 0, title->width(), title->height(), text_alignment, name);
        });
    }

    QImage scrolled_strip(const QString& name, unsigned char alpha, int offset) const
    {
        return strip(*title, alpha, [&](QPainter& painter) {
            const QFontMetrics metrics(title_font());
            const int name_width = metrics.horizontalAdvance(name);
            const int label_width = title->label_width();
            const int a = metrics.ascent() + metrics.leading() / 2;
            painter.setPen(Qt::white);
            painter.setClipRect(label_width + 10, 0, 480, 26);
            painter.drawText(label_width + 10 - offset, a + a / 2, name);
            painter.drawText(label_width + 10 - offset + name_width + label_width + 30, a + a / 2, name);
        });
    }

private slots:
    void init()
    {
        skin = std::make_unique<SkinDirectory>();
        write_layout(*skin);
        TitleSkin::set_dictionary_program(skin->path() + "/glossa");
        make_title();
    }

    void cleanup()
    {
        window.reset();
        skin.reset();
        TitleSkin::set_dictionary_program({});
    }

    void starts_with_the_close_button_in_focus_and_no_keyboard()
    {
        QCOMPARE(title->objectName(), QString("VIDEO_TITLE"));
        QCOMPARE(title->size(), QSize(480, 26));
        QCOMPARE(title->font(), title_font());
        QCOMPARE(title->focusPolicy(), Qt::NoFocus);
        QCOMPARE(title->alphaOverride(), 128);
        QCOMPARE(title->label_width(), width_of("VIDEO") + 10);
        QVERIFY(title->button("close")->state() == SkinButton::State::Focus);
        QVERIFY(!title->is_scrolling());
    }

    void dictionary_button_is_hidden_without_the_program()
    {
        QVERIFY(!title->hasDicSupport());
        QVERIFY(title->button("dic")->isHidden());
    }

    void dictionary_button_is_disabled_until_it_can_be_used()
    {
        QFile program(skin->path() + "/glossa");
        QVERIFY(program.open(QIODevice::WriteOnly));
        program.close();
        // Looked up afresh: the strip made before sees it too.
        QVERIFY(title->hasDicSupport());
        make_title();
        QVERIFY(!title->button("dic")->isHidden());
        QVERIFY(title->button("dic")->state() == SkinButton::State::Disabled);
        QVERIFY(program.remove());
        QVERIFY(!title->hasDicSupport());
    }

    void dictionary_program_is_looked_for_where_the_device_has_it()
    {
        TitleSkin::set_dictionary_program({});
        QCOMPARE(TitleSkin::dictionary_program(), QString("/opt/Qtopia/bin/glossa"));
    }

    void short_name_stands_after_the_label()
    {
        title->setAlphaOverride(200);
        title->set_filename("film.avi");
        QVERIFY(!title->is_scrolling());
        QCOMPARE(shown(*title), still_strip("film.avi", 200));
    }

    void fill_is_black_at_half_the_opacity_data()
    {
        QTest::addColumn<int>("alpha");
        QTest::newRow("transparent") << 0;
        QTest::newRow("odd") << 129;
        QTest::newRow("opaque") << 255;
    }

    void fill_is_black_at_half_the_opacity()
    {
        QFETCH(int, alpha);
        title->setAlphaOverride(static_cast<unsigned char>(alpha));
        QCOMPARE(shown(*title).pixel(475, 2), static_cast<QRgb>(alpha / 2) << 24);
    }

    void strip_without_opacity_is_still_drawn()
    {
        title->set_filename("film.avi");
        title->setAlphaOverride(0);
        QCOMPARE(shown(*title), still_strip("film.avi", 0));
        QVERIFY(shown(*title) != SkinDirectory::plain({480, 26}, 0));
    }

    void name_of_431_pixels_scrolls_and_one_less_does_not()
    {
        const int rest = 431 - 10 - title->label_width();
        const QString fits = name_of_width(rest - 1);
        const QString scrolls = name_of_width(rest);
        QVERIFY(!fits.isEmpty() && !scrolls.isEmpty());
        title->set_filename(fits);
        QVERIFY(!title->is_scrolling());
        title->set_filename(scrolls);
        QVERIFY(title->is_scrolling());
        QCOMPARE(timer_of(*title)->interval(), 300);
        QVERIFY(!timer_of(*title)->isSingleShot());
    }

    void scrolling_limit_does_not_follow_the_width_of_the_panel()
    {
        title->resize(2000, 26);
        title->set_filename(name_of_width(431 - 10 - title->label_width()));
        QVERIFY(title->is_scrolling());
    }

    void scrolling_name_moves_by_three_pixels_and_has_a_second_copy_behind_it()
    {
        const QString name = long_name();
        title->setAlphaOverride(128);
        title->set_filename(name);
        QCOMPARE(title->scroll_offset(), 0);
        QCOMPARE(shown(*title), scrolled_strip(name, 128, 0));
        for (int step = 0; step < 100; ++step) {
            tick(*title);
            QCOMPARE(title->scroll_offset(), 3 * (step + 1));
            QCOMPARE(shown(*title), scrolled_strip(name, 128, 3 * step));
        }
    }

    void scrolling_name_starts_over_once_it_has_passed()
    {
        const QString name = long_name();
        title->set_filename(name);
        const int limit = width_of(name) + title->label_width() + 33;
        int largest_drawn = 0;
        while (title->scroll_offset() <= limit) {
            largest_drawn = title->scroll_offset();
            tick(*title);
        }
        QVERIFY(largest_drawn > limit - 3);
        QCOMPARE(shown(*title), scrolled_strip(name, 128, largest_drawn));
        tick(*title);
        QCOMPARE(shown(*title), scrolled_strip(name, 128, 0));
        QCOMPARE(title->scroll_offset(), 3);
    }

    void each_step_of_a_scrolling_name_comes_to_the_screen()
    {
        title->set_filename(long_name());
        PaintRecord painted(title);
        QVERIFY(painted.begin());
        tick(*title);
        QTRY_VERIFY(painted.covers_all());
    }

    void time_moves_the_name()
    {
        title->set_filename(long_name());
        QTRY_COMPARE_WITH_TIMEOUT(title->scroll_offset(), 6, 3000);
    }

    void hidden_strip_rests_and_goes_on_where_it_was()
    {
        title->set_filename(long_name());
        tick(*title);
        tick(*title);
        title->hide();
        QVERIFY(!title->is_scrolling());
        QVERIFY(!title->isVisible());
        QCOMPARE(title->scroll_offset(), 6);
        title->show();
        QVERIFY(title->isVisible());
        QVERIFY(title->is_scrolling());
        QCOMPARE(timer_of(*title)->interval(), 300);
        QCOMPARE(title->scroll_offset(), 6);
    }

    void hidden_strip_with_a_short_name_stays_at_rest_when_shown()
    {
        title->set_filename("film.avi");
        title->hide();
        title->show();
        QVERIFY(!title->is_scrolling());
    }

    void new_name_starts_from_its_beginning()
    {
        title->set_filename(long_name());
        tick(*title);
        title->set_filename(long_name() + "W");
        QCOMPARE(title->scroll_offset(), 0);
        QVERIFY(title->is_scrolling());
        title->set_filename("film.avi");
        QVERIFY(!title->is_scrolling());
        QCOMPARE(shown(*title), still_strip("film.avi", 128));
    }

    void new_name_of_a_hidden_strip_starts_from_its_beginning()
    {
        title->set_filename(long_name());
        tick(*title);
        title->hide();
        QCOMPARE(title->scroll_offset(), 3);
        title->set_filename(long_name() + "W");
        title->show();
        QCOMPARE(title->scroll_offset(), 0);
        QCOMPARE(shown(*title), scrolled_strip(long_name() + "W", 128, 0));
    }

    void buttons_take_the_opacity_at_once()
    {
        title->setAlphaOverride(255);
        QCOMPARE(title->button("close")->pixmap(SkinButton::State::Normal).toImage().pixel(5, 5), 0xFFFFFFFFU);
        title->setAlphaOverride(0);
        QCOMPARE(qAlpha(title->button("close")->pixmap(SkinButton::State::Normal).toImage().pixel(5, 5)), 0);
    }

    void pressing_close_sends_its_name()
    {
        QSignalSpy clicks(title, &SkinBase::button_clicked);
        QTest::mouseClick(title, Qt::LeftButton, {}, title->button("close")->rectangle().center());
        QCOMPARE(clicks.count(), 1);
        QCOMPARE(clicks[0][1].toString(), QString("close"));
    }

    void button_pictures_are_blended_with_the_background_by_the_rounding_rule()
    {
        const auto by_255 = [](int v) { return ((v + 128) + ((v + 128) >> 8)) >> 8; };
        for (const int alpha_override : {0, 1, 77, 128, 254, 255}) {
            title->setAlphaOverride(static_cast<unsigned char>(alpha_override));
            for (int a = 0; a < 256; a += 5) {
                // The background's alpha is its column.
                QImage picture = SkinDirectory::plain({256, 1}, qRgba(200, 100, 10, a));
                title->redrawImage(picture, 0, 7);
                for (int b = 0; b < 256; ++b) {
                    const int alpha = by_255((a + by_255((255 - a) * b)) * alpha_override);
                    QCOMPARE(qAlpha(picture.pixel(b, 0)), alpha);
                }
            }
        }
    }

    void colour_of_a_blended_picture_lies_between_picture_and_background()
    {
        title->setAlphaOverride(255);
        QImage picture = SkinDirectory::plain({1, 1}, qRgba(200, 100, 10, 255));
        title->redrawImage(picture, 100, 5);
        QCOMPARE(picture.pixel(0, 0), qRgba(200, 100, 10, 255));

        picture = SkinDirectory::plain({1, 1}, qRgba(200, 100, 10, 0));
        title->redrawImage(picture, 255, 5);
        QCOMPARE(picture.pixel(0, 0), qRgba(40, 80, 120, 255));

        picture = SkinDirectory::plain({1, 1}, qRgba(200, 100, 10, 51));
        title->redrawImage(picture, 255, 5);
        QCOMPARE(picture.pixel(0, 0), qRgba(72, 84, 98, 255));
    }

    void button_picture_beyond_the_background_keeps_its_colour()
    {
        title->setAlphaOverride(255);
        QImage picture = SkinDirectory::plain({4, 4}, qRgba(200, 100, 10, 60));
        title->redrawImage(picture, 478, -2);
        QCOMPARE(picture.pixel(3, 0), qRgba(200, 100, 10, 60));
    }

    void background_gets_the_label_on_top()
    {
        QPixmap given(480, 26);
        given.fill(QColor(10, 20, 30));
        title->setBackgroundPixmap(given);
        QPixmap expected(480, 26);
        expected.fill(Qt::transparent);
        QPainter painter(&expected);
        painter.drawPixmap(0, 0, given);
        painter.setFont(title_font());
        painter.setPen(QColor(255, 249, 178));
        painter.drawText(10, 0, 480, 26, text_alignment, "VIDEO");
        painter.end();
        QCOMPARE(shown(*title), expected.toImage().convertToFormat(QImage::Format_ARGB32));
    }

    void background_of_the_whole_window_is_taken_at_the_panels_own_place()
    {
        QImage whole = SkinDirectory::plain({480, 272}, 0xFF000000);
        whole.setPixel(300, 45, 0xFF00FF00);
        title->move(0, 40);
        title->setBackgroundPixmap(QPixmap::fromImage(whole));
        QCOMPARE(shown(*title).pixel(300, 5), 0xFF00FF00U);
        QCOMPARE(shown(*title).pixel(300, 6), 0xFF000000U);
    }

    void name_is_readable_wherever_a_skin_puts_the_strip()
    {
        title->set_filename("film.avi");
        const QImage at_the_top = shown(*title);
        title->move(0, 200);
        title->refresh();
        QCOMPARE(shown(*title), at_the_top);
    }

    void enlarged_display_gets_the_text_at_its_own_pixels()
    {
        DeviceScreen* screen = DeviceScreen::instance();
        screen->resize(480, 272);
        make_title();
        title->set_filename("film.avi");
        screen->grab_output();
        QCOMPARE(title->backgroundPixmap().size(), QSize(480, 26));
        screen->resize(960, 544);
        screen->grab_output();
        QTRY_COMPARE(title->backgroundPixmap().size(), QSize(960, 52));
        QCOMPARE(title->backgroundPixmap().deviceIndependentSize(), QSizeF(480, 26));
        title->set_filename("other.avi");
        QCOMPARE(title->backgroundPixmap().size(), QSize(960, 52));
        window.reset();
        screen->resize(480, 272);
    }

    void strip_without_a_skin_draws_nothing_and_still_works()
    {
        SkinDirectory empty("other");
        QWidget other;
        other.setObjectName("other");
        TitleSkin bare(&other, "VIDEO_TITLE", 0);
        QCOMPARE(bare.size(), QSize(0, 0));
        bare.setAlphaOverride(128);
        bare.set_filename(long_name());
        QVERIFY(bare.is_scrolling());
        tick(bare);
        bare.setBackgroundPixmap(QPixmap(10, 10));
        bare.show();
        bare.hide();
        QCOMPARE(bare.scroll_offset(), 3);
    }
};

TAVEL_TEST_MAIN(tst_TitleSkin)
#include "tst_title_skin.moc"
