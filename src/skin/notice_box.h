#pragma once

#include <QMessageBox>
#include <QTimer>

/// What the player's notices have in common: a modal box without buttons that closes by itself.
///
/// A key or a tap anywhere takes the notice down early. While one is up, another exec() restarts its time and returns
/// at once, so that a text set in between replaces the one on screen.
class NoticeBox : public QMessageBox
{
    Q_OBJECT

public:
    /// @p display_time_ms is how long exec() shows the notice.
    NoticeBox(const QString& caption, const QString& text, QWidget* parent, int display_time_ms);

    /// Shows the notice and waits until it is gone. @return 0
    int exec() override;
    /// Takes the notice down early; the waiting exec() returns 0.
    void stop();

    void set_display_time(int display_time_ms);
    int display_time() const { return display_time_ms_; }

    QSize sizeHint() const override;
    bool eventFilter(QObject* object, QEvent* event) override;

private slots:
    void time_out();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    /// Takes the size that the text needs and the middle of the parent's window.
    void fit_to_window();

private:
    QTimer timer_{this};
    int display_time_ms_;
};
