#pragma once

#include <QByteArray>

/// What makes a message well formed: "name(type,...)" and arguments that decode by these types.
namespace QCopMessage
{

/// The longest channel or message name, in bytes, and the most that the arguments may take.
constexpr qsizetype longest_name = 255;
constexpr qsizetype most_argument_bytes = 16 * 1024 * 1024;

/// @return null, or what is wrong with the message. A type that is not known here is the receiver's matter and so is
/// all behind it.
const char* fault(const QByteArray& message, const QByteArray& data);

} // namespace QCopMessage
