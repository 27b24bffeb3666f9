#pragma once

#include <QByteArrayView>
#include <QString>

#include <atomic>

/// How the bytes of a subtitle file stand for characters.
enum class SubtitleEncoding {
    Utf8 = 0,
    Cp949 = 1,
    Utf16LittleEndian = 2,
    Utf16BigEndian = 3,
};

/// For readers that are never to be stopped.
inline const std::atomic<bool> not_cancelled = false;

/// Finds out how @p bytes are encoded.
///
/// A byte order mark decides. Without one it is whichever of UTF-8 and CP949 reads the bytes with fewer faults, so that
/// a damaged byte never makes a whole file be taken for something else. Any thread.
/// @param cancelled looked at all the time: when it turns true the answer means nothing.
SubtitleEncoding guess_encoding(QByteArrayView bytes, const std::atomic<bool>& cancelled = not_cancelled);

/// Whether @p bytes are a text at all, by their beginning: hardly any of it stands for a control character.
bool is_text(QByteArrayView bytes);

/// Reads @p bytes, without their byte order mark. A damaged byte costs the character that it belonged to, which becomes
/// U+FFFD, and none of those around it. Never fails; any thread.
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
QString decode(QByteArrayView bytes, SubtitleEncoding encoding, const std::atomic<bool>& cancelled = not_cancelled);

/// Reads @p bytes in the encoding that guess_encoding() finds.
QString decode_guessed(QByteArrayView bytes, const std::atomic<bool>& cancelled = not_cancelled);
