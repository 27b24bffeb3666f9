#pragma once

/// Stands between the program and its disk: reading files whose path holds a certain word can be made to hang, as on a
/// disk that does not answer.
namespace slow_disk
{

/// From now on reading any open file whose path holds @p word blocks until release().
void hold(const char* word);
/// Lets all reads go on.
void release();
/// How many reads have been held so far; grows as they come in.
int held();

} // namespace slow_disk
