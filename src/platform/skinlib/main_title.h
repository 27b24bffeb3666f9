#pragma once

#include <QWidget>

class FileManager;
class FileManagerButton;

/// The caption window of the file manager: a title, a closing cross, and below them the file manager itself.
///
/// A choice is sent as "transmit_filename(QString)" on the player's channel, as any other program would do it: one
/// absolute path a line. The folder is remembered from one showing to the next, also over a restart. The window reads
/// the folder anew whenever it is shown; hidden it does nothing. GUI thread only.
class mainTitle : public QWidget
{
    Q_OBJECT

public:
    /// @param name object name (Latin-1)
    /// @param flags window flags of the device, see window_flags()
    explicit mainTitle(QWidget* parent = nullptr, const char* name = nullptr, unsigned int flags = 0);
    ~mainTitle() override;

    /// Sets the text of the title.
    void setCaption(const QString& caption);
    const QString& caption() const { return caption_; }

signals:
    /// Sent just before a choice goes out: whether the user wants it added behind the list that is there (true) or
    /// played in its place (false). The message itself cannot carry this.
    void append_requested(bool append);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void send(const QStringList& films, bool append);
    void remember_folder() const;

    QString caption_;
    FileManager* file_manager_;
    FileManagerButton* close_button_;
};
