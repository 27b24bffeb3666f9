#pragma once

/// The playing library of this program, when it does not do what it should.
///
/// A program that has this part calls the library through it.
namespace library_faults
{

/// Whether copies of the library that are made from now on do not start.
void refuse_to_start(bool refuse);

/// The library gives up the film that it is at, as if decoding had failed.
void break_off();

/// @return whether a question for the position has not been answered yet.
bool owes_position();

} // namespace library_faults
