#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QVector>

QT_BEGIN_NAMESPACE
class QKeyEvent;
class QWidget;
QT_END_NAMESPACE

/// Lets a form be worked with the key pad alone: the arrow keys move the focus to the next control that lies that way,
/// Return opens a list or presses a button.
///
/// A row of tabs and a slider keep Left and Right for themselves. Escape and every key without a meaning go on to the
/// form.
class KeyPadNavigator : public QObject
{
    Q_OBJECT

public:
    /// Adopts every control inside @p form that takes the focus, and is owned by it.
    explicit KeyPadNavigator(QWidget* form);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handle_key(QWidget* control, const QKeyEvent& key);
    QWidget* neighbour(const QWidget* control, int key) const;

    QWidget* form_;
    QVector<QPointer<QWidget>> controls_;
};
