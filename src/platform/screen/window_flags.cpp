#include "window_flags.h"

#include <array>

namespace
{

struct Row {
    unsigned int device_flags;
    Qt::WindowFlags flags;
};

constexpr std::array<Row, 3> rows{{
    {16, Qt::FramelessWindowHint},
    {0x200010, Qt::FramelessWindowHint},
    {0x40, Qt::Dialog | Qt::FramelessWindowHint},
}};

} // namespace

Qt::WindowFlags window_flags(unsigned int device_flags)
{
    for (const Row& row : rows) {
        if (row.device_flags == device_flags)
            return row.flags;
    }
    return {};
}
