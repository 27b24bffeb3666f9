#pragma once

#include "qcop_channel.h"

#include <QBuffer>
#include <QDataStream>

/// A message that is being written: arguments are streamed in, and it is sent when the envelope goes.
///
/// `QCopEnvelope e("QPE/System", "setBacklight(int)"); e << 5;`
class QCopEnvelope : public QDataStream
{
public:
    /// The version of QDataStream that all arguments travel in, whatever Qt the two programs are built with.
    static constexpr QDataStream::Version stream_version = QDataStream::Qt_6_0;

    QCopEnvelope(const QCString& channel, const QCString& message);
    ~QCopEnvelope();

private:
    QCString channel_;
    QCString message_;
    QBuffer arguments_;
};
