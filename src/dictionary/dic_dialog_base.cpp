#include "dic_dialog_base.h"

#include "q_select_edit.h"
#include "resource.h"
#include "tavel_button.h"
#include "window_flags.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QLabel>

namespace
{

constexpr QSize form_size(312, 192);

/// Stands in for a picture that the skin lacks: the four looks of a button, so that it can still be seen and pressed.
QImage plain_strip(QSize frame, const QString& text)
{
    struct Look {
        QColor face;
        QColor text;
    };
    const std::array<Look, TavelButton::FRAME_COUNT> looks{{
        {QColor(70, 72, 80), Qt::white},
        {QColor(200, 80, 0), Qt::white},
        {QColor(255, 102, 0), Qt::white},
        {QColor(60, 60, 64), QColor(120, 120, 120)},
    }};
    QImage strip(frame.width() * TavelButton::FRAME_COUNT, frame.height(), QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::transparent);
    QPainter painter(&strip);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF place(QPointF(0, 0), frame);
    for (const Look& look : looks) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(look.face);
        painter.drawRoundedRect(place, 4, 4);
        painter.setPen(look.text);
        painter.drawText(place, Qt::AlignCenter, text);
        place.translate(frame.width(), 0);
    }
    return strip;
}

void set_picture(TavelButton* button, const QString& name, const QString& text)
{
    const QImage picture = Resource::loadImage(name);
    button->set_image(picture.isNull() ? plain_strip(button->size(), text) : picture);
}

} // namespace

DicDialogBase::DicDialogBase(QWidget* parent, const char* name, bool modal, unsigned int flags)
    : QDialog(parent, window_flags(flags))
    , m_SearchButton(new TavelButton(this, "m_SearchButton"))
    , m_SubtitleEdit(new QSelectEdit(this, "m_SubtitleEdit"))
    , m_InstructionLabel(new QLabel(this))
    , m_CloseButton(new TavelButton(this, "m_CloseButton"))
{
    setObjectName(name == nullptr ? QStringLiteral("DicDialogBase") : QString::fromLatin1(name));
    setModal(modal);
    setFixedSize(form_size);
    m_InstructionLabel->setObjectName(QStringLiteral("m_InstructionLabel"));

    m_SearchButton->setGeometry(124, 159, 65, 23);
    m_SubtitleEdit->setGeometry(10, 35, 291, 90);
    m_SubtitleEdit->setAlignment(Qt::AlignHCenter);
    m_InstructionLabel->setGeometry(10, 133, 290, 20);
    m_CloseButton->setGeometry(274, 3, 35, 25);
    // Return looks the word up from wherever the focus is, but on the close button.
    m_SearchButton->setDefault(true);
    setTabOrder(m_SubtitleEdit, m_SearchButton);
    setTabOrder(m_SearchButton, m_CloseButton);

    languageChange();
    set_picture(m_SearchButton, QStringLiteral("tavel_video/DIC/search_bt.png"), m_SearchButton->text());
    set_picture(m_CloseButton, QStringLiteral("tavel_video/DIC/bt_popup_close.png"), QStringLiteral("\u00d7"));
}

void DicDialogBase::languageChange()
{
    m_SearchButton->setText(tr("Search"));
    m_InstructionLabel->setText(tr("Select a word to find then hit search."));
}

void DicDialogBase::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        languageChange();
}
