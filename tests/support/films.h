#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

/// Films for tests, made by the ffmpeg command when they are first asked for and kept in the build directory.
///
/// The picture of each (but where the table in films.cpp says otherwise) is 480x272 at 25 frames a second for six
/// seconds, a key frame a second. Ten bars across its upper quarter spell the frame's number, so that a test can tell
/// which one it sees.
namespace test_films
{

/// Makes the film if need be. Safe to call from several test programs at once.
/// @param name one of names()
/// @return its absolute path. The process ends with a message when ffmpeg fails.
QString path(const QString& name);
inline QString path(const char* name)
{
    return path(QString::fromLatin1(name));
}

/// All films, in a fixed order.
QStringList names();

/// A copy of the film called @p as in @p directory, for tests that damage or remove it.
QString copy(const QString& name, const QString& directory, const QString& as);

/// Reads the number that the bars spell. The picture may be scaled and coloured.
/// @param picture the film's picture alone, without black borders
/// @return -1 when there are no bars.
int frame_number(const QImage& picture);

inline constexpr int frame_rate = 25;
inline constexpr int length_ms = 6000;

} // namespace test_films
