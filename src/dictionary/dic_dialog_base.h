#pragma once

#include <QtWidgets/QDialog>

QT_BEGIN_NAMESPACE
class QLabel;
QT_END_NAMESPACE

class QSelectEdit;
class TavelButton;

/// The form of the dictionary dialog: its controls, their places and texts. The controls belong to the form.
class DicDialogBase : public QDialog
{
    Q_OBJECT

public:
    /// @p flags are the device's window flags.
    DicDialogBase(QWidget* parent, const char* name, bool modal, unsigned int flags);

    TavelButton* m_SearchButton;
    QSelectEdit* m_SubtitleEdit;
    QLabel* m_InstructionLabel;
    TavelButton* m_CloseButton;

protected slots:
    /// Sets the texts in the user's language.
    virtual void languageChange();

protected:
    void changeEvent(QEvent* event) override;
};
