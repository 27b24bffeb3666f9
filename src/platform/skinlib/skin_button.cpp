#include "skin_button.h"

#include "skin_layout.h"

namespace
{

// How much of a button is left when it is disabled and the skin has no picture for that.
constexpr unsigned char faded_alpha = 96;

} // namespace

SkinButton::SkinButton(const QString& name, const QPoint& position) : m_name(name), m_position(position) {}

void SkinButton::setImage(State state, const QImage& image)
{
    m_images[static_cast<std::size_t>(state)] = image;
    m_rectangle = QRect();
    for (const State candidate : {State::Normal, State::Focus, State::Pressed, State::Disabled}) {
        if (!given(candidate).isNull()) {
            m_rectangle = QRect(m_position, given(candidate).size());
            break;
        }
    }
}

QImage SkinButton::image(State state) const
{
    QImage result = given(state);
    if (result.isNull() && state == State::Pressed)
        result = given(State::Focus);
    if (result.isNull() && state == State::Disabled)
        result = SkinLayout::with_alpha(given(State::Normal), faded_alpha);
    if (result.isNull())
        result = given(State::Normal);
    if (result.isNull() || result.size() == m_rectangle.size())
        return result;
    return result.copy(QRect(QPoint(0, 0), m_rectangle.size()));
}
