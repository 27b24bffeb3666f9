#pragma once

#include <QAbstractButton>

/// A button of the file manager window: large enough for a thumb, lit in the accent colour while it has the keys.
/// Return presses it; the arrows move between the buttons and the list.
class FileManagerButton : public QAbstractButton
{
    Q_OBJECT

public:
    enum class Look : int {
        Plain = 0,   ///< a label on a raised ground
        Primary = 1, ///< the same in the accent colour: what most people want
        Cross = 2    ///< the closing cross, without a ground
    };

    FileManagerButton(const QString& text, const char* name, Look look, QWidget* parent);

signals:
    /// An arrow key was pressed: -1 Up, 1 Down.
    void step_requested(int direction);
    void left_pressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    Look look_;
};
