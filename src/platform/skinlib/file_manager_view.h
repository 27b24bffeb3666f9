#pragma once

#include <QListView>

/// The file manager's list for thumb and key pad: a drag scrolls, a tap on a row enters it, a tap on its box marks it;
/// Return enters the row under the cursor, Left and Right leave the list. Escape and other keys that mean nothing here
/// are left to the window.
class FileManagerView : public QListView
{
    Q_OBJECT

public:
    explicit FileManagerView(QWidget* parent = nullptr);

    /// What stands in the middle of the list while there are no rows but the way up; empty for nothing.
    void set_empty_text(const QString& text);

    /// The first and the last row that can be seen, -1 without rows.
    int first_visible_row() const;
    int last_visible_row() const;

signals:
    void row_entered(int row);
    void row_marked(int row);
    void left_pressed();
    void right_pressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString empty_text_;
    QPoint press_position_;
    QPersistentModelIndex pressed_row_;
    int press_scroll_ = 0; ///< scroll position when the press began
    bool is_dragging_ = false;
};
