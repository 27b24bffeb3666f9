#pragma once

#include <QStyledItemDelegate>

/// Draws the file manager's rows: a box that tells whether the row is chosen, what it is, its name, and below the name
/// type, length and size.
class FileManagerDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// "812 KB", "12.3 MB", "4.2 GB"; empty for a negative number of bytes.
    static QString size_text(qint64 bytes);
    /// "3:07" or "1:42:05"; empty for a length that is not known.
    static QString length_text(qint64 milliseconds);
};
