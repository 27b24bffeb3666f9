#pragma once

namespace test_support
{

/// How often a test repeats what has chance in it: as often as it says, and a fifth of that on an emulated processor,
/// where what is looked for, a difference of the processor, shows at once.
constexpr int rounds(int natively)
{
#ifdef TAVEL_EMULATED
    return natively / 5;
#else
    return natively;
#endif
}

} // namespace test_support
