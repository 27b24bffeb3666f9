#pragma once

#include <QEvent>
#include <any>
#include <utility>

class QObject;

/// A request to the player: a number (1000 and above) and, for some, a value that travels with it.
///
/// The event owns its value. An event that was delivered is never posted again; clone() makes a new one with a copy of
/// the value.
class QCustomEvent : public QEvent
{
public:
    /// @param type the request's number, 1000 to 65535; a value that is handed over must be copyable.
    explicit QCustomEvent(int type, std::any payload = {});

    /// The value the event carries, or null when it carries none or one of another type. Valid as long as the event
    /// lives.
    template<typename T> const T* data() const { return std::any_cast<T>(&payload_); }

    /// A new event with the same number and a copy of the value; the caller owns it (post_custom_event takes it over).
    QCustomEvent* clone() const override;

private:
    std::any payload_;
};

/// Posts @p event to @p receiver: the one place where the player posts its own events. May be called on any thread.
///
/// Takes @p event over. The receiver must outlive the call; a null receiver deletes the event.
void post_custom_event(QObject* receiver, QCustomEvent* event);

/// Posts a new event of number @p type that carries @p payload. May be called on any thread.
void post_custom_event(QObject* receiver, int type, std::any payload = {});
