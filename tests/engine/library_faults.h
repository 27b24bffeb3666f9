#pragma once

#include <chrono>

/// The playing library of this program, when it does not do what it should.
///
/// A program that has this part calls the library through it.
namespace library_faults
{

/// Whether copies of the library that are made from now on do not start.
void refuse_to_start(bool refuse);

/// The library gives up the film that it is at, as if decoding had failed.
void break_off();

/// The next filter, such as the one that turns a picture, takes @p delay to be set up, without any work.
void delay_filter(std::chrono::milliseconds delay);

/// @return whether a question for the position has not been answered yet.
bool owes_position();

} // namespace library_faults
