#include "main_title.h"

#include "config.h"
#include "file_manager.h"
#include "file_manager_button.h"
#include "file_manager_look.h"
#include "qpe_application.h"
#include "window_flags.h"

#include <QDir>
#include <QKeyEvent>
#include <QPainter>
#include <QStandardPaths>

namespace
{

namespace look = file_manager_look;

QString settings_name()
{
    return QStringLiteral("file_manager");
}

QString settings_group()
{
    return QStringLiteral("Folder");
}

QString settings_key()
{
    return QStringLiteral("last");
}

/// Where a user who has never chosen a folder begins.
QString first_folder()
{
    const QString films = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    return !films.isEmpty() && QDir(films).exists() ? films : QDir::homePath();
}

} // namespace

mainTitle::mainTitle(QWidget* parent, const char* name, unsigned int flags)
    : QWidget(parent, window_flags(flags))
    , file_manager_(new FileManager(this))
    , close_button_(new FileManagerButton(QString(), "close", FileManagerButton::Look::Cross, this))
{
    setObjectName(QString::fromLatin1(name));
    setAttribute(Qt::WA_TranslucentBackground);
    resize(look::window_width, look::window_height);
    setFocusProxy(file_manager_);
    connect(file_manager_, &FileManager::films_taken, this, &mainTitle::send);
    connect(close_button_, &FileManagerButton::clicked, this, &QWidget::close);
}

mainTitle::~mainTitle() = default;

void mainTitle::setCaption(const QString& caption)
{
    caption_ = caption;
    setWindowTitle(caption);
    update();
}

void mainTitle::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    if (event->key() == Qt::Key_Escape)
        close();
}

void mainTitle::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void mainTitle::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    QLinearGradient ground(0, 0, 0, height());
    ground.setColorAt(0, look::window_top);
    ground.setColorAt(1, look::window_bottom);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(event->rect(), ground);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    const QRect bar(0, 0, width(), look::caption_height);
    painter.fillRect(bar, look::bar);
    painter.fillRect(QRect(0, bar.bottom(), width(), 1), look::line);
    painter.fillRect(QRect(0, 9, 3, bar.height() - 18), look::accent);
    painter.setFont(look::caption_font());
    painter.setPen(look::caption_text);
    painter.drawText(bar.adjusted(14, 0, -look::caption_height, 0), Qt::AlignLeft | Qt::AlignVCenter, caption_);
}

void mainTitle::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    constexpr int cross_width = 48;
    close_button_->setGeometry(width() - cross_width, 0, cross_width, look::caption_height);
    file_manager_->setGeometry(0, look::caption_height, width(), height() - look::caption_height);
}

void mainTitle::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    if (file_manager_->folder().isEmpty()) {
        Config settings(settings_name());
        settings.setGroup(settings_group());
        file_manager_->open_folder(settings.readEntry(settings_key(), first_folder()));
    } else {
        file_manager_->refresh();
    }
    file_manager_->setFocus();
}

void mainTitle::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous())
        remember_folder();
    QWidget::hideEvent(event);
}

void mainTitle::send(const QStringList& films, bool append)
{
    remember_folder();
    emit append_requested(append);
    QPEApplication::send_files(films);
}

void mainTitle::remember_folder() const
{
    Config settings(settings_name());
    settings.setGroup(settings_group());
    settings.writeEntry(settings_key(), file_manager_->folder());
}

#include "moc_main_title.cpp"
