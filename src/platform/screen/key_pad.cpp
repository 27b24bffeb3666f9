#include "key_pad.h"

#include <QKeyEvent>
#include <QVariant>
#include <QWidget>

#include <array>

namespace
{

struct Row {
    int host_key;
    int device_key;
};

/// docs/keys.md carries this table for the users.
constexpr std::array<Row, 12> rows{{
    {Qt::Key_Space, Qt::Key_Return},
    {Qt::Key_Select, Qt::Key_Return},
    {Qt::Key_F, hide_controls_key},
    {Qt::Key_F11, hide_controls_key},
    {Qt::Key_Menu, hide_controls_key},
    {Qt::Key_Back, Qt::Key_Escape},
    {Qt::Key_Exit, Qt::Key_Escape},
    {Qt::Key_Open, Qt::Key_F2},
    {Qt::Key_MediaStop, Qt::Key_F4},
    {Qt::Key_Settings, Qt::Key_F5},
    {Qt::Key_AudioRewind, Qt::Key_F9},
    {Qt::Key_AudioForward, Qt::Key_F10},
}};

} // namespace

int device_key(const QKeyEvent& event, const QWidget* receiver)
{
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return event.key();
    const bool is_text = !event.text().isEmpty() && event.text().front().isPrint();
    // Lists take input methods, too, to search by letters; only an editor has text to answer with.
    if (is_text && receiver && receiver->inputMethodQuery(Qt::ImSurroundingText).isValid())
        return event.key();
    for (const Row& row : rows) {
        if (row.host_key == event.key())
            return row.device_key;
    }
    return event.key();
}
