#include "dic_dialog_base.h"

#include "device_font.h"
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
QImage plain_strip(QSize frame)
{
    const std::array<QColor, TavelButton::FRAME_COUNT> faces{QColor(70, 72, 80), QColor(200, 80, 0),
                                                             QColor(255, 102, 0), QColor(60, 60, 64)};
    QImage strip(frame.width() * TavelButton::FRAME_COUNT, frame.height(), QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::transparent);
    QPainter painter(&strip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QRectF place(QPointF(0, 0), frame);
    for (const QColor& face : faces) {
        painter.setBrush(face);
        painter.drawRoundedRect(place, 4, 4);
        painter.translate(frame.width(), 0);
    }
    return strip;
}

/// Gives a button its picture. The picture has no text of its own, so that one skin serves every language; @p text is
/// written on each of its frames.
void set_picture(TavelButton* button, const QString& name, const QString& text)
{
    QImage strip = Resource::loadImage(name);
    if (strip.isNull())
        strip = plain_strip(button->size());
    // A picture with a palette cannot be painted on.
    strip.convertTo(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&strip);
    painter.setFont(device_font(QStringLiteral("V28"), 13, 50));
    QRect frame(0, 0, strip.width() / TavelButton::FRAME_COUNT, strip.height());
    for (int index = 0; index < TavelButton::FRAME_COUNT; ++index) {
        const bool disabled = index == static_cast<int>(TavelButton::Frame::Disabled);
        painter.setPen(disabled ? QColor(120, 120, 120) : QColor(Qt::white));
        painter.drawText(frame, Qt::AlignCenter, text);
        frame.translate(frame.width(), 0);
    }
    painter.end();
    button->set_image(strip);
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
}

void DicDialogBase::languageChange()
{
    m_SearchButton->setText(tr("Search"));
    set_picture(m_SearchButton, QStringLiteral("tavel_video/DIC/search_bt.png"), m_SearchButton->text());
    set_picture(m_CloseButton, QStringLiteral("tavel_video/DIC/bt_popup_close.png"), QString());
    m_InstructionLabel->setText(tr("Select a word to find then hit search."));
}

void DicDialogBase::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        languageChange();
}
