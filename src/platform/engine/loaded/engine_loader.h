#pragma once

/// Begins to load the engine's module on a thread of its own and returns at once. Any thread; only the first call does
/// anything.
///
/// The media libraries bring more than two hundred others with them: binding those takes longer than making all the
/// panels, so a program that makes panels begins with it before. It is best called when the toolkit has loaded its own
/// plug-ins, because two threads cannot load at once. Whatever needs the engine waits for it. A module that is missing
/// or broken ends the program with one line.
void begin_to_load_engine();
