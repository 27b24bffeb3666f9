#include "shots.h"

#include "device_screen.h"
#include "dic_dialog.h"
#include "qpe_application.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <cstdio>

namespace
{

constexpr int patience_ms = 20000;

} // namespace

void Shots::take(const char* name)
{
    settle(350);
    save(DeviceScreen::instance()->grab_output(),
         QStringLiteral("%1-%2").arg(++number_, 2, 10, QLatin1Char('0')).arg(QLatin1String(name)));
}

void Shots::save(const QImage& picture, const QString& name)
{
    const QString path = directory_.absoluteFilePath(name + QStringLiteral(".png"));
    if (picture.save(path)) {
        std::printf("%s\n", qPrintable(path));
    } else {
        std::printf("%s could not be written\n", qPrintable(path));
        ++missing_;
    }
    std::fflush(stdout);
}

bool Shots::wait_until(const char* what, const std::function<bool()>& condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < patience_ms)
        settle(20);
    if (condition())
        return true;
    std::printf("%s: did not happen\n", what);
    ++missing_;
    return false;
}

void Shots::settle(int ms) const
{
    QTest::qWait(ms);
}

void Shots::key(Qt::Key key) const
{
    QTest::keyClick(DeviceScreen::instance()->viewport(), key, Qt::NoModifier, 30);
}

void Shots::tap(int x, int y) const
{
    QWidget* viewport = DeviceScreen::instance()->viewport();
    const QSize output = DeviceScreen::instance()->output_size();
    const double scale = std::min(static_cast<double>(viewport->width()) / output.width(),
                                  static_cast<double>(viewport->height()) / output.height());
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier,
                      QPoint(static_cast<int>(x * scale), static_cast<int>(y * scale)), 30);
}

void Shots::hand_over(const QStringList& films) const
{
    QPEApplication::send_files(films);
}

void Shots::show_controls()
{
    post(player_event::leave_full_screen);
    wait_until("the controls", [this] { return !window_->is_full_screen(); });
}

void Shots::show_full_screen()
{
    post(player_event::enter_full_screen);
    wait_until("full screen", [this] { return window_->is_full_screen(); });
}

void Shots::pause()
{
    post(player_event::pause);
    wait_until("the pause", [this] { return window_->isIn(&TavelVideo::pause_state) != 0; });
}

void Shots::wait_for_play()
{
    wait_until("playing", [this] { return window_->isIn(&TavelVideo::play_state) != 0 && window_->position() > 0; });
}

void Shots::wait_for_position(Time position)
{
    wait_until("the place in the film", [this, position] { return window_->position() >= position; });
}

/// A notice runs its own event loop: the picture is taken from inside it.
void Shots::take_notice(const char* name, TavelVideoString text)
{
    auto* notice = window_->findChild<MessageBox*>();
    if (notice == nullptr) {
        ++missing_;
        return;
    }
    notice->setText(window_->text(text));
    QTimer::singleShot(400, window_, [this, notice, name] {
        take(name);
        notice->stop();
    });
    notice->exec();
}

void Shots::take_dictionary(const char* name)
{
    QTimer::singleShot(900, window_, [this, name] {
        take(name);
        if (auto* dialog = window_->findChild<DicDialog*>())
            dialog->accept();
    });
    window_->control_event(window_, QStringLiteral("dic"));
}
