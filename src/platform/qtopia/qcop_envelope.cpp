#include "qcop_envelope.h"

QCopEnvelope::QCopEnvelope(const QCString& channel, const QCString& message) : channel_(channel), message_(message)
{
    arguments_.open(QIODevice::WriteOnly);
    setDevice(&arguments_);
    setVersion(stream_version);
}

QCopEnvelope::~QCopEnvelope()
{
    QCopChannel::send(channel_, message_, arguments_.data());
}
