#pragma once

#include "media_callback.h"

#include <QtCore/QObject>

/// Turns the engine's reports into signals.
///
/// The signals are emitted on the engine's thread; whoever connects to them does so with Qt::DirectConnection and only
/// stores and posts.
class TavelCallbacks : public QObject, public MediaCallback
{
    Q_OBJECT

public:
    explicit TavelCallbacks(QObject* parent = nullptr);
    ~TavelCallbacks() override;

    int notify_state_change(PlayerState state) override;
    int notify_time_update(long long position) override;
    int notify_error(unsigned int status) override;
    int notify_stream_change(StreamType type, StreamState state) override;

signals:
    void state_signal(PlayerState state);
    void time_signal(Time position);
    void error_signal(RaskStatus status);
    void stream_signal(StreamType type, StreamState state);
};
