#include "support/failing_memory.h"

#include "TACallback.h"
#include "TAEnvironment.h"
#include "TARefCounter.h"
#include "ZELListValZELString.h"
#include "ZELTrace.h"
#include "ZELUnicodeString.h"

namespace {

const auto itself = [](const auto& object) -> const auto& {
    return object;
};

}  // namespace

TEST(FailingMemory, LeavesStringsAsTheyWere) {
    const std::string piece(100, 'b');
    const ZELString bytes(Repeat("a", 40).c_str());
    const std::function<void(ZELString&)> changes[] = {
        [&](ZELString& text) { text = piece.c_str(); },
        [](ZELString& text) { text += text; },
        [](ZELString& text) { text.ReplaceSubString("a", "bb"); },
    };
    for (const auto& change : changes) ExpectAllOrNothing(bytes, change, itself);
    FailEachAllocation(
        [&](FailingMemory& memory) {
            ZELString text;
            memory.Begin();
            for (int i = 0; i < 30; ++i) text += piece.c_str();
            memory.End();
            EXPECT_EQ(std::strlen(text), static_cast<std::size_t>(text.Length()));
            EXPECT_EQ(text.Length() % 100, 0);
        },
        Fallback::Possible);

    const ZELUnicodeString units(Repeat("\xC3\xA9", 40).c_str());
    ExpectAllOrNothing(
        units, [](ZELUnicodeString& text) { text += text; }, itself);
    FailEachAllocation([&](FailingMemory& memory) {
        const ZELUnicodeString text(units);
        memory.Begin();
        const bool isEmpty = *text.ConvertToChar() == '\0';
        EXPECT_EQ(isEmpty, memory.End());
        EXPECT_EQ(text.ConvertToChar(), Repeat("\xC3\xA9", 40));
    });
}

TEST(FailingMemory, LeavesCollectionsAsTheyWere) {
    ZELRawCollint numbers, more;
    for (int i = 0; i < 100; ++i) more.Append(i);
    ExpectAllOrNothing(
        numbers, [&](ZELRawCollint& collection) { collection = more; }, itself);
    ZELListValZELString texts;
    for (const char* const text : {"c", "a", "b"}) texts.Append(text);
    ExpectAllOrNothing(
        texts, [](ZELListValZELString& list) { list.Append(ZELListValZELString(list)); }, itself);
    // Without a buffer the halves are merged in place.
    FailEachAllocation(
        [&](FailingMemory& memory) {
            ZELRawCollPV pointers;
            for (int i = 0; i < 100; ++i) pointers.Append(Value(i * 37 % 101));
            memory.Begin();
            pointers.QuickSort([](const void* left, const void* right) { return left < right ? -1 : left > right; });
            memory.End();
            EXPECT_TRUE(std::is_sorted(pointers.begin(), pointers.end()));
        },
        Fallback::Possible);
}

TEST(FailingMemory, LeavesVariablesChannelsAndPublishersUsable) {
    struct Subscriber : TACallbackSubscriber {
        void ReceiveCallback(TACallbackPublisher*, const TAEvent*) override { ++calls; }
        int calls = 0;
    };
    const TemporaryFolder folder;
    TAEnvVariable other("ZEL_TEST_MEMORY_OTHER", 100);
    ASSERT_EQ(other.PutEnvironmentValue("other"), 0);
    ZELTrace::Activate("MEMORY");
    const std::string path = folder / "trace";
    const AllocationFailures failures = FailEachAllocation(
        [&](FailingMemory& memory) {
            memory.Begin();
            TAEnvVariable variable("ZEL_TEST_MEMORY", 10);
            const TAEnvVariable copy(other);
            variable = other;
            std::filesystem::remove(path);
            {
                ZELTrace trace("MEMORY", nullptr, ZELTraAppend, path.c_str(), 8);
                trace.TraPrint("%s\n", std::string(300, 'm').c_str());
            }
            TACallbackPublisher publisher;
            Subscriber subscriber;
            publisher.AddSubscriber(&subscriber);
            memory.End();
            EXPECT_TRUE(copy.Name() == nullptr || std::string(copy.Value()) == other.Value());
            const bool isOther = variable.Name() != nullptr && std::string(variable.Name()) == other.Name();
            EXPECT_TRUE(!isOther || std::string(variable.Value()) == other.Value());
            // The message is written whole or not at all.
            const std::string message = std::filesystem::exists(path) ? WithoutReturns(ReadBytes(path)) : "";
            EXPECT_TRUE(message.empty() || message.size() == 301) << message;
            const int unheard = publisher.SendCallback(nullptr);
            EXPECT_EQ(unheard, 1 - subscriber.calls);
        },
        Fallback::Possible);
    ZELTrace::Deactivate("MEMORY");
    for (const char* who : {"TAEnvVariable", "ZELTrace", "TACallbackPublisher"})
        EXPECT_TRUE(Holds(failures.said, std::string("# Alloc failed in ") + who)) << failures.said;
    EXPECT_EQ(other.UnsetEnvironmentValue(), 0);
}

TEST(ZELHeapObject, ServesOverAlignedClassesAndValues) {
    struct alignas(64) Wide : TARefCounter {
        static bool IsAligned(const void* object) { return reinterpret_cast<std::uintptr_t>(object) % 64 == 0; }
        int number = 7;
    };
    Wide* const fromNew = new Wide;
    Wide* const fromFunction = ZELNew<Wide>();
    EXPECT_TRUE(Wide::IsAligned(fromNew) && Wide::IsAligned(fromFunction));
    fromNew->Release();
    fromFunction->Release();
    ZELDelete(static_cast<TARefCounter*>(new TARefCounter));

    struct alignas(128) Cell {
        int number;
    };
    ZELListVal<Cell> cells;
    for (int i = 1; i <= 20; ++i) cells.Append(Cell{i});
    ZELListVal<Cell> copy(cells);
    copy.RemovePosition(1, 5);
    for (const Cell& cell : copy) EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&cell) % 128, 0u);
    EXPECT_EQ(copy[15].number, 20);
    FailAllocation(1);
    EXPECT_EQ(new TARefCounter, nullptr);
}
