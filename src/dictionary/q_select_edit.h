#pragma once

#include <QtWidgets/QTextEdit>

/// A read-only box of text from which the user marks a word or a passage.
///
/// A tap on a word marks it, drawing over the text marks a passage. With the key pad, Right marks the next word and
/// Left the one before; Up and Down leave the box.
class QSelectEdit : public QTextEdit
{
    Q_OBJECT

public:
    QSelectEdit(QWidget* parent, const char* name);

    /// Shows @p text as it is, never as markup, with nothing marked.
    void setText(const QString& text);
    /// Places the text: each line horizontally, the whole of it vertically. Goes in the place of QTextEdit's, which
    /// places only the current paragraph.
    void setAlignment(Qt::Alignment alignment);
    /// The marked text, line breaks as "\n"; empty when nothing is marked.
    QString markedText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void place_text();
    void mark(int start, int end);

    Qt::Alignment alignment_ = Qt::AlignHCenter;
    QPoint press_position_;
};
