#pragma once

#include <QtCore/QStringList>

/// What entering and leaving a state does, as lines of the recorded log, for tests that compare whole logs.
namespace chart_calls
{

/// Entering file_parsed_state with a film of ten seconds that can be sought in.
QStringList enter_file_parsed(int index, const QString& file, unsigned int position_ms = 0);
QStringList leave_file_parsed();
QStringList enter_stop();

enum class Controls { Shown, Hidden };

/// Entering file_loaded_state, up to the first step of the wait.
QStringList enter_file_loaded(Controls before = Controls::Shown);
/// The step that finds everybody silent, and what it leads to.
QStringList end_of_wait();
/// From the start of loading to the film's first moment in play_state.
QStringList load_and_show(const QString& file, unsigned int position_ms = 0);
/// @param told_ms the position that the playlist is told
QStringList leave_file_loaded(unsigned int told_ms, Controls before = Controls::Hidden);

} // namespace chart_calls

/// Compares the log of the player with what it should be, and shows the place where they part.
#define COMPARE_CALLS(actual, expected)                                                                                \
    do {                                                                                                               \
        const QStringList actual_calls = (actual);                                                                     \
        const QStringList expected_calls = (expected);                                                                 \
        QVERIFY2(actual_calls == expected_calls, qPrintable(first_difference(actual_calls, expected_calls)));          \
    } while (false)

QString first_difference(const QStringList& actual, const QStringList& expected);
