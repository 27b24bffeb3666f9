#pragma once

#include <QImage>
#include <QPushButton>

/// A push button drawn from a picture: a horizontal strip of four frames of one width.
class TavelButton : public QPushButton
{
    Q_OBJECT

public:
    /// Frames of the strip, from the left.
    enum class Frame : int {
        Normal = 0,
        Pressed = 1,
        Focused = 2,
        Disabled = 3,
    };
    static constexpr int FRAME_COUNT = 4;

    explicit TavelButton(QWidget* parent = nullptr, const char* name = nullptr);

    /// A null image draws nothing.
    void set_image(const QImage& strip);
    /// Which frame the button shows in its present state; disabled goes before pressed, pressed before focus.
    Frame frame() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage strip_;
};
