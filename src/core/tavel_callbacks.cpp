#include "tavel_callbacks.h"

TavelCallbacks::TavelCallbacks(QObject* parent) : QObject(parent) {}

TavelCallbacks::~TavelCallbacks() = default;

int TavelCallbacks::notify_state_change(PlayerState state)
{
    emit state_signal(state);
    return 1;
}

int TavelCallbacks::notify_time_update(long long position)
{
    emit time_signal(position);
    return 1;
}

int TavelCallbacks::notify_error(unsigned int status)
{
    emit error_signal(status);
    return 1;
}

int TavelCallbacks::notify_stream_change(StreamType type, StreamState state)
{
    emit stream_signal(type, state);
    return 1;
}
