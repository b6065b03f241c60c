// Publishing named events to whoever subscribed.
//
//     class Loader : public TACallbackSubscriber {
//         void ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) override {
//             if (strcmp(event->GetEventName(), "EventBufferDeletion") == 0) Forget(publisher);
//         }
//     };
//     Loader loader;
//     buffer.AddSubscriber(&loader);
//
// Neither class locks: who publishes and subscribes from several threads brings a lock. Subscribers belong to their
// owners, who remove them from every publisher before they end them. Nothing throws; a subscription for which there is
// no memory is left out, after a line that starts "# Alloc failed in TACallbackPublisher".
#ifndef TACALLBACK_H
#define TACALLBACK_H

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELListPtr.h"
#include "ZELShared.h"

class TACallbackPublisher;

// The base of all events, which are told apart by their names. Never deleted through this type.
class ZEL_API TAEvent {
public:
    virtual const char* GetEventName() const = 0;

protected:
    TAEvent() noexcept = default;
    TAEvent(const TAEvent&) noexcept = default;
    TAEvent& operator=(const TAEvent&) noexcept = default;
    ~TAEvent() = default;
};

class ZEL_API TACallbackSubscriber {
public:
    virtual ~TACallbackSubscriber();
    // `publisher` sends `event`, which is valid for the call.
    virtual void ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) = 0;
};

class ZELListPtrTACallbackSubscriber : public ZELListPtr<TACallbackSubscriber> {
public:
    using ZELListPtr<TACallbackSubscriber>::ZELListPtr;
};

// Copies that were made after the first subscription share one list.
class ZEL_API TACallbackPublisher : public ZELHeapObject {
public:
    TACallbackPublisher() noexcept = default;
    TACallbackPublisher(const TACallbackPublisher&) noexcept = default;
    TACallbackPublisher& operator=(const TACallbackPublisher&) noexcept = default;
    virtual ~TACallbackPublisher();

    // Who subscribes twice is called twice.
    void AddSubscriber(TACallbackSubscriber* subscriber) noexcept;
    // Takes every subscription of it back.
    void RemoveSubscriber(TACallbackSubscriber* subscriber) noexcept;
    // Calls the subscribers in the order of their subscription, and returns 0; 1 when there is none. A subscriber that
    // is added meanwhile is called as well; one that removes itself makes the one behind it miss this event. A
    // subscriber may end this publisher: the others are called all the same.
    int SendCallback(const TAEvent* event);

private:
    ZELShared<ZELListPtrTACallbackSubscriber> _subscribers;  // null until the first subscription
};

#endif
