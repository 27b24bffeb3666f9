#include "dic_dialog.h"

#include "device_font.h"
#include "device_screen.h"
#include "global.h"
#include "q_select_edit.h"
#include "qcop_envelope.h"
#include "resource.h"
#include "tavel_button.h"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QLabel>

namespace
{

constexpr unsigned int frameless_window = 0x200010;
constexpr const char* dictionary_program = "glossa";
constexpr const char* dictionary_channel = "QPE/Glossa_Channel";
constexpr int wait_steps = 30;
constexpr int wait_step_ms = 500;

void send(const char* channel, const char* message, const QString& argument)
{
    QCopEnvelope envelope(channel, message);
    envelope << argument;
}

} // namespace

DicDialog::DicDialog(QWidget* parent, const char* name, bool modal, unsigned int)
    : DicDialogBase(parent, name, modal, frameless_window)
{
    setAttribute(Qt::WA_TranslucentBackground);
    const QRect stage = parent != nullptr ? parent->window()->geometry() : DeviceScreen::instance()->desktop_geometry();
    move(stage.center() - rect().center());

    m_InstructionLabel->setScaledContents(false);
    m_InstructionLabel->setAlignment(Qt::AlignCenter);
    m_InstructionLabel->setFont(device_font(QStringLiteral("V28"), 13, 50));
    QPalette label_palette = m_InstructionLabel->palette();
    label_palette.setColor(QPalette::WindowText, Qt::white);
    m_InstructionLabel->setPalette(label_palette);

    const QString picture = QStringLiteral("tavel_video/DIC/popup_bg.png");
    background_.set(Resource::loadPixmap(picture));
    label_background_.set(QPixmap::fromImage(Resource::loadImage(picture).copy(m_InstructionLabel->geometry())));
    m_InstructionLabel->installEventFilter(this);

    m_SubtitleEdit->setFont(device_font(QStringLiteral("V28"), 16, 50));
    m_SubtitleEdit->setAlignment(Qt::AlignCenter);
    m_SubtitleEdit->setFrameStyle(QFrame::Box | QFrame::Plain);
    m_SubtitleEdit->setLineWidth(0);
    initTextBox();

    connect(m_SearchButton, &QAbstractButton::clicked, this, &DicDialog::search);
    connect(m_CloseButton, &QAbstractButton::clicked, this, &QDialog::accept);
    m_SubtitleEdit->setFocus(Qt::OtherFocusReason);
}

void DicDialog::initTextBox()
{
    QPalette palette = m_SubtitleEdit->palette();
    // The marked word stays as visible while the focus is on the Search button.
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::WindowText, QColor(128, 128, 128));
        palette.setColor(group, QPalette::Text, QColor(128, 128, 128));
        palette.setColor(group, QPalette::Highlight, QColor(16, 126, 215));
        palette.setColor(group, QPalette::HighlightedText, QColor(255, 255, 255));
        palette.setColor(group, QPalette::Base, QColor(255, 255, 255));
    }
    m_SubtitleEdit->setPalette(palette);
}

void DicDialog::search()
{
    const QString word = m_SubtitleEdit->markedText();
    if (word.isEmpty())
        return;
    send("QPE/System", "execute(QString)", QString::fromLatin1(dictionary_program));
    for (int step = 0; step < wait_steps && !QCopChannel::isRegistered(dictionary_channel); ++step)
        Global::msleep(wait_step_ms);
    send(dictionary_channel, "Search(QString)", word);
}

bool DicDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_InstructionLabel && event->type() == QEvent::Paint)
        label_background_.paint(m_InstructionLabel, static_cast<QPaintEvent*>(event));
    return DicDialogBase::eventFilter(watched, event);
}

void DicDialog::paintEvent(QPaintEvent* event)
{
    if (!background_.pixmap().isNull()) {
        background_.paint(this, event);
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(255, 255, 255, 60));
    painter.setBrush(QColor(24, 25, 29));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
}
