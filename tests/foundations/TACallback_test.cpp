#include "TACallback.h"

#include "TARefCounter.h"
#include "support/programs.h"
#include "support/slots.h"
#include "support/testing.h"

namespace {

struct Event final : TAEvent {
    const char* GetEventName() const override { return "event"; }
};

// Writes its name down and then does what it was told.
struct Subscriber : TACallbackSubscriber {
    Subscriber(char name, std::string& log) : _name(name), _log(log) {}
    void ReceiveCallback(TACallbackPublisher* publisher, const TAEvent* event) override {
        EXPECT_STREQ(event->GetEventName(), "event");
        _log += _name;
        if (act) act(publisher);
    }

    std::function<void(TACallbackPublisher*)> act;

private:
    char _name;
    std::string& _log;
};

}  // namespace

TEST(TACallbackPublisher, CallsInOrderWhateverTheCallsDo) {
    const Event event;
    std::string log;
    Subscriber a('a', log), b('b', log), c('c', log);
    auto* publisher = new TACallbackPublisher;
    EXPECT_EQ(publisher->SendCallback(&event), 1);
    publisher->RemoveSubscriber(&a);
    for (Subscriber* subscriber : {&a, &b, &a}) publisher->AddSubscriber(subscriber);
    EXPECT_EQ(publisher->SendCallback(&event), 0);
    publisher->RemoveSubscriber(&a);  // both subscriptions
    publisher->SendCallback(&event);
    EXPECT_EQ(log, "abab");

    publisher->AddSubscriber(&c);
    b.act = [&](TACallbackPublisher* from) {
        from->RemoveSubscriber(&b);  // c moves to its place and misses this event
        from->AddSubscriber(&a);     // called in the same round
    };
    log.clear();
    publisher->SendCallback(&event);
    publisher->SendCallback(&event);
    EXPECT_EQ(log, "baca");

    TACallbackPublisher copy(*publisher);
    copy.AddSubscriber(&b);  // to the list that both share
    b.act = nullptr;
    a.act = [&](TACallbackPublisher* from) { delete from; };
    log.clear();
    publisher->SendCallback(&event);
    EXPECT_EQ(log, "cab");  // although a ended the publisher
    copy.RemoveSubscriber(&a);
    copy = TACallbackPublisher();
    EXPECT_EQ(copy.SendCallback(&event), 1);
}

TEST(TARefCounter, DeletesWithTheLastReferenceAndStopsMisuse) {
    struct Counted : TARefCounter {
        explicit Counted(int& ends) : _ends(ends) {}
        ~Counted() override { ++_ends; }
        int& _ends;
    };
    int ends = 0;
    Counted* const counted = new Counted(ends);
    counted->AddRef();
    Counted* const copy = new Counted(*counted);  // with two references of its own
    for (Counted* each : {counted, copy}) each->Release();
    EXPECT_EQ(ends, 0);
    for (Counted* each : {counted, copy}) each->Release();
    EXPECT_EQ(ends, 2);
    delete new Counted(ends);

    const ProgramResult result = RunProgram("process_probe", {"delete"});
    EXPECT_NE(result.exitCode, 0);
    EXPECT_NE(result.err.find("Delete on referenced object"), std::string::npos) << result.err;
}

TEST(TACallback, SlotsStandInTheirOrder) {
    EXPECT_EQ(SlotOf(&TAEvent::GetEventName), 0u);
    EXPECT_EQ(SlotOf(&TACallbackSubscriber::ReceiveCallback), 2u);  // behind the two of the destructor
}
