#pragma once

#include <QtWidgets/QComboBox>

/// A combo box for a finger: a list of tall rows, and an arrow of its own.
class TouchComboBox : public QComboBox
{
    Q_OBJECT

public:
    TouchComboBox(QWidget* parent, const char* name);

protected:
    void paintEvent(QPaintEvent* event) override;
};
