#pragma once

#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <QtGui/QPixmap>

#include <array>

/// One button of a skin panel: its name, its state, its pictures and its place. Not a widget; the panel draws it and
/// hands it its input. GUI thread only.
class SkinButton
{
public:
    /// What a button is drawn as.
    enum class State : int {
        Normal = 0,   ///< at rest
        Pressed = 1,  ///< held down by a key or a pointer
        Focus = 2,    ///< released, or the one that the key pad acts on
        Disabled = 3, ///< takes no input
    };
    static constexpr int state_count = 4;

    SkinButton(const QString& name, const QPoint& position);

    const QString& name() const { return m_name; }

    State state() const { return m_state; }
    /// Changes the state only; SkinBase::drawButton() shows it.
    void setState(State state) { m_state = state; }

    bool isHidden() const { return m_hidden; }
    void setHidden(bool hidden) { m_hidden = hidden; }

    /// Whether key pad and pointer can reach it: shown, not disabled and with a picture.
    bool isUsable() const { return !m_hidden && m_state != State::Disabled && !m_rectangle.isEmpty(); }

    /// Place in the panel; as large as the picture of the normal state (or else the first picture there is). Empty
    /// without one.
    const QRect& rectangle() const { return m_rectangle; }

    /// The picture of a state as the skin gives it. A null image counts as "not given".
    void setImage(State state, const QImage& image);
    /// The picture drawn for a state before the panel's alpha is applied. A state without one borrows: focus from
    /// normal, pressed from focus, disabled from normal (faded). Null when there is nothing to borrow.
    QImage image(State state) const;

    /// The picture of a state as it goes on the panel, made by SkinBase::redrawButtonImages().
    const QPixmap& pixmap(State state) const { return m_pixmaps[static_cast<std::size_t>(state)]; }
    void setPixmap(State state, const QPixmap& pixmap) { m_pixmaps[static_cast<std::size_t>(state)] = pixmap; }

    /// Name of the button in whose place this one stands (only one of them is shown at a time); empty for most.
    const QString& replaces() const { return m_replaces; }
    void setReplaces(const QString& name) { m_replaces = name; }

private:
    const QImage& given(State state) const { return m_images[static_cast<std::size_t>(state)]; }

    QString m_name;
    QString m_replaces;
    QPoint m_position;
    QRect m_rectangle;
    State m_state = State::Normal;
    bool m_hidden = false;
    std::array<QImage, state_count> m_images;
    std::array<QPixmap, state_count> m_pixmaps;
};
