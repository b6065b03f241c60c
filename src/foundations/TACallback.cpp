// Publishers share a list by count. A call goes by positions and holds the list, since subscribers may change it or end
// the publisher.

#include "TACallback.h"

#include <utility>

#include "base/failure_report.h"

using namespace zel;

TACallbackSubscriber::~TACallbackSubscriber() = default;
TACallbackPublisher::~TACallbackPublisher() = default;

void TACallbackPublisher::AddSubscriber(TACallbackSubscriber* subscriber) noexcept {
    if (!_subscribers) {
        _subscribers = ZELShared<ZELListPtrTACallbackSubscriber>::Make();
        if (!_subscribers) {
            ReportAllocFailure("TACallbackPublisher", sizeof(ZELListPtrTACallbackSubscriber));
            return;
        }
    }
    _subscribers->Append(subscriber);
}

void TACallbackPublisher::RemoveSubscriber(TACallbackSubscriber* subscriber) noexcept {
    if (!_subscribers) return;
    for (int i = _subscribers->Size(); i >= 1; --i)
        if (std::as_const(*_subscribers)[i] == subscriber) _subscribers->RemovePosition(i);
}

int TACallbackPublisher::SendCallback(const TAEvent* event) {
    const ZELShared<ZELListPtrTACallbackSubscriber> subscribers = _subscribers;  // outlives this publisher
    if (!subscribers || subscribers->Size() == 0) return 1;
    for (int i = 1; i <= subscribers->Size(); ++i)
        if (TACallbackSubscriber* const subscriber = std::as_const(*subscribers)[i])
            subscriber->ReceiveCallback(this, event);
    return 0;
}
