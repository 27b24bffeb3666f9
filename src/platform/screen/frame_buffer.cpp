#include "frame_buffer.h"

#include <QStringList>

#include <array>

namespace
{

constexpr std::array<QLatin1StringView, 3> plane_names{
    QLatin1StringView("/dev/fb0"),
    QLatin1StringView("/dev/fb1"),
    QLatin1StringView("/dev/fb2"),
};

using Numbers = std::array<int, 2>;

struct Word {
    QLatin1StringView name;
    int number_count; ///< numbers that follow the word
    int lowest;       ///< range of each
    int highest;
    void (*apply)(FrameBuffer&, const Numbers&);
};

constexpr std::array<Word, 4> words{{
    {QLatin1StringView("enable"), 1, 0, 1, [](FrameBuffer& plane, const Numbers& n) { plane.enabled = n[0] != 0; }},
    {QLatin1StringView("size"), 2, 1, 4096,
     [](FrameBuffer& plane, const Numbers& n) {
         plane.size = {n[0], n[1]};
     }},
    {QLatin1StringView("origin"), 2, -4096, 4096,
     [](FrameBuffer& plane, const Numbers& n) {
         plane.origin = {n[0], n[1]};
     }},
    {QLatin1StringView("position"), 2, -4096, 4096,
     [](FrameBuffer& plane, const Numbers& n) {
         plane.position = {n[0], n[1]};
     }},
}};

} // namespace

std::optional<FrameBufferCommand> read_frame_buffer_command(const QString& text, const FrameBuffer* planes)
{
    const QStringList tokens = text.simplified().split(QLatin1Char(' '));
    const auto name = std::find(plane_names.begin(), plane_names.end(), tokens.first());
    if (name == plane_names.end())
        return std::nullopt;

    FrameBufferCommand command;
    command.plane = static_cast<int>(name - plane_names.begin());
    FrameBuffer state = planes[command.plane];
    for (qsizetype at = 1; at < tokens.size();) {
        const auto word =
            std::find_if(words.begin(), words.end(), [&](const Word& row) { return row.name == tokens[at]; });
        if (word == words.end() || at + word->number_count >= tokens.size())
            return std::nullopt;
        Numbers numbers{};
        for (int i = 0; i < word->number_count; ++i) {
            bool is_number = false;
            const int number = tokens[at + 1 + i].toInt(&is_number);
            if (!is_number || number < word->lowest || number > word->highest)
                return std::nullopt;
            numbers.at(static_cast<std::size_t>(i)) = number;
        }
        word->apply(state, numbers);
        command.states.push_back(state);
        at += 1 + word->number_count;
    }
    if (command.states.empty())
        return std::nullopt;
    return command;
}
