#include "custom_event.h"

#include <QCoreApplication>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

QCustomEvent::QCustomEvent(int type, std::any payload)
    : QEvent(static_cast<QEvent::Type>(type)), payload_(std::move(payload))
{
}

QCustomEvent* QCustomEvent::clone() const
{
    return new QCustomEvent(type(), payload_);
}

void post_custom_event(QObject* receiver, QCustomEvent* event)
{
    if (!receiver) {
        delete event;
        return;
    }
#if defined(__SANITIZE_THREAD__)
    // The hand-over happens inside a Qt that the sanitizer does not see; QPEApplication::notify() holds the other end.
    __tsan_release(event);
#endif
    QCoreApplication::postEvent(receiver, event);
}

void post_custom_event(QObject* receiver, int type, std::any payload)
{
    post_custom_event(receiver, new QCustomEvent(type, std::move(payload)));
}
