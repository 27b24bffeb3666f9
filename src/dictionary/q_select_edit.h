#pragma once

#include <QtWidgets/QTextEdit>

/// A read-only box of text from which the user marks a word or a passage.
///
/// A tap on a word marks it; drawing over the text, or Shift and the arrow keys, mark more. With the key pad, Left and
/// Right mark the word before and after the marked one.
class QSelectEdit : public QTextEdit
{
    Q_OBJECT

public:
    QSelectEdit(QWidget* parent, const char* name);

    /// Shows @p text as it is, aligned as set by setAlignment(), with nothing marked.
    void setText(const QString& text);
    /// Places all text: horizontally each line, vertically the whole block. Takes the place of QTextEdit's, which knows
    /// lines only.
    void setAlignment(Qt::Alignment alignment);
    /// The marked text, line breaks as "\n"; empty when nothing is marked.
    QString markedText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place_text();
    void mark_word_at(int position);
    void mark_neighbour(bool forward);

    Qt::Alignment alignment_ = Qt::AlignHCenter;
    QPoint press_position_;
};
