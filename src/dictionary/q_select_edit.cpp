#include "q_select_edit.h"

#include <QtCore/QTextBoundaryFinder>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QTextFrame>
#include <QtWidgets/QApplication>

namespace
{

const QColor focus_color(255, 102, 0);

struct Word {
    int start;
    int end; ///< behind the last character
};

/// The words of a text, in order: stretches between word boundaries that hold a letter or a digit.
QVector<Word> words_of(const QString& text)
{
    QVector<Word> words;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end != -1; end = finder.toNextBoundary()) {
        const QStringView piece = QStringView(text).mid(start, end - start);
        if (std::any_of(piece.begin(), piece.end(), [](QChar c) { return c.isLetterOrNumber() || c.isSurrogate(); }))
            words.append({static_cast<int>(start), static_cast<int>(end)});
        start = end;
    }
    return words;
}

} // namespace

QSelectEdit::QSelectEdit(QWidget* parent, const char* name) : QTextEdit(parent)
{
    setObjectName(QString::fromLatin1(name));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setContextMenuPolicy(Qt::NoContextMenu);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(4);
    setAlignment(alignment_);
}

void QSelectEdit::setText(const QString& text)
{
    setPlainText(text);
    place_text();
}

void QSelectEdit::setAlignment(Qt::Alignment alignment)
{
    alignment_ = alignment;
    QTextOption option = document()->defaultTextOption();
    option.setAlignment(alignment & Qt::AlignHorizontal_Mask);
    document()->setDefaultTextOption(option);
    place_text();
}

QString QSelectEdit::markedText() const
{
    QString marked = textCursor().selectedText();
    marked.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    marked.replace(QChar::LineSeparator, QLatin1Char('\n'));
    return marked;
}

void QSelectEdit::mark(int start, int end)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void QSelectEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    const QTextCursor cursor = textCursor();
    const QVector<Word> words = words_of(toPlainText());
    switch (event->key()) {
    case Qt::Key_Right: {
        const auto next = std::find_if(words.begin(), words.end(),
                                       [&cursor](const Word& word) { return word.start >= cursor.selectionEnd(); });
        if (next != words.end())
            mark(next->start, next->end);
        break;
    }
    case Qt::Key_Left: {
        const auto previous = std::find_if(words.rbegin(), words.rend(),
                                           [&cursor](const Word& word) { return word.end <= cursor.selectionStart(); });
        if (previous != words.rend())
            mark(previous->start, previous->end);
        break;
    }
    case Qt::Key_Up:
        focusPreviousChild();
        break;
    case Qt::Key_Down:
        focusNextChild();
        break;
    default:
        QTextEdit::keyPressEvent(event);
        return;
    }
    event->accept();
}

void QSelectEdit::mousePressEvent(QMouseEvent* event)
{
    press_position_ = event->position().toPoint();
    // A press on marked text would begin to drag it about.
    QTextCursor cursor = textCursor();
    cursor.clearSelection();
    setTextCursor(cursor);
    QTextEdit::mousePressEvent(event);
}

void QSelectEdit::mouseReleaseEvent(QMouseEvent* event)
{
    QTextEdit::mouseReleaseEvent(event);
    const QPoint position = event->position().toPoint();
    if ((position - press_position_).manhattanLength() >= QApplication::startDragDistance())
        return;
    const int tapped = cursorForPosition(position).position();
    const QVector<Word> words = words_of(toPlainText());
    const auto hit = std::find_if(words.begin(), words.end(),
                                  [tapped](const Word& word) { return word.start <= tapped && tapped <= word.end; });
    if (hit != words.end())
        mark(hit->start, hit->end);
}

void QSelectEdit::mouseDoubleClickEvent(QMouseEvent* event)
{
    // Two taps are a tap and another tap.
    mousePressEvent(event);
}

void QSelectEdit::paintEvent(QPaintEvent* event)
{
    QTextEdit::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(viewport());
    painter.setPen(QPen(focus_color, 2));
    painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
}

void QSelectEdit::resizeEvent(QResizeEvent* event)
{
    QTextEdit::resizeEvent(event);
    place_text();
}

void QSelectEdit::changeEvent(QEvent* event)
{
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        place_text();
}

void QSelectEdit::place_text()
{
    QTextFrame* root = document()->rootFrame();
    QTextFrameFormat format = root->frameFormat();
    const qreal margin = document()->documentMargin();
    format.setTopMargin(margin);
    root->setFrameFormat(format);
    if (!alignment_.testFlag(Qt::AlignVCenter))
        return;
    const qreal room = viewport()->height() - document()->documentLayout()->documentSize().height();
    if (room <= 0)
        return;
    format.setTopMargin(margin + room / 2);
    root->setFrameFormat(format);
}
