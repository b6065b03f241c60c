#include "TAUUIDGenerator.h"

#include <ctime>

#include "support/programs.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

const std::string alphabet = "+-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

struct Opened : TAUUIDGenerator {
    using TAUUIDGenerator::ComputeEpoch, TAUUIDGenerator::Copy, TAUUIDGenerator::counter, TAUUIDGenerator::epoch,
        TAUUIDGenerator::FileTimeToInt, TAUUIDGenerator::GetMachineIdent, TAUUIDGenerator::GetProcessIdent,
        TAUUIDGenerator::GetTime, TAUUIDGenerator::init_done, TAUUIDGenerator::machine_ident,
        TAUUIDGenerator::process_ident;
};

// Each test begins like a process of its own.
struct Identifiers : testing::Test {
    void SetUp() override { Opened::init_done = 0; }
};

struct Fields {
    std::int64_t seconds, machine, marker, process, count;
    auto operator<=>(const Fields&) const = default;
};

// The bits of the characters, from the first on.
Fields Decoded(const std::string& text) {
    std::string bits;
    for (const char character : text)
        for (int bit = 5; bit >= 0; --bit) bits += (alphabet.find(character) >> bit & 1) != 0 ? '1' : '0';
    const auto number = [&](std::size_t byte, std::size_t count) {
        return static_cast<std::int64_t>(std::stoull(bits.substr(8 * byte, 8 * count), nullptr, 2));
    };
    return {number(0, 4), number(4, 4), number(8, 1), number(9, 4), number(13, 2)};
}

Fields Drawn() {
    Opened generator;
    const std::string text = generator.Get();
    EXPECT_EQ(text.size(), 20U);
    EXPECT_EQ(text.find_first_not_of(alphabet), std::string::npos) << text;
    return Decoded(text);
}

// What the next identifier must hold, apart from its time.
Fields Expected(std::int64_t seconds) {
    return {seconds, static_cast<std::uint32_t>(Opened::machine_ident), 5,
            static_cast<std::uint32_t>(Opened::process_ident), static_cast<std::uint16_t>(Opened::counter)};
}

}  // namespace

TEST_F(Identifiers, EncodesTimeMachineProcessAndCount) {
    const std::int64_t before = std::time(nullptr);
    const Fields drawn = Drawn();
    const std::int64_t after = Opened::GetTime();
    EXPECT_TRUE(drawn.seconds >= before && drawn.seconds <= after) << drawn.seconds;
    EXPECT_EQ(Opened::machine_ident, Opened::GetMachineIdent());
    EXPECT_NE(Opened::process_ident, 0);
    EXPECT_EQ(Opened::GetProcessIdent(), Opened::process_ident);
    Opened::counter = 32767;
    EXPECT_EQ(Drawn().count, 32767);
    EXPECT_EQ(Opened::counter, -32768);
}

TEST_F(Identifiers, FollowsItsMembers) {
    Drawn();
    std::mt19937 random(1);
    for (int round = 0; round < 1000; ++round) {
        if (random() % 4 == 0) Opened::machine_ident = static_cast<int>(random());
        if (random() % 4 == 0) Opened::process_ident = static_cast<int>(random());
        if (random() % 4 == 0) Opened::counter = static_cast<short>(random());
        // The real epoch, others by whole seconds and by a fraction, and none.
        constexpr __int64 Epoch = 116444736000000000;
        const __int64 epochs[] = {Epoch, Epoch - 10'000'000, Epoch + 86400'000'000'000, Epoch + 5'000'001, 0};
        Opened::epoch = epochs[random() % 5];
        for (bool settled = false; !settled;) {
            const std::int64_t before = Opened::GetTime();
            const Fields expected = Expected(static_cast<std::uint32_t>(before));
            Fields drawn = Drawn();
            settled = Opened::GetTime() == before;
            // The C runtime's clock may be a tick behind the precise one.
            if (drawn.seconds == static_cast<std::uint32_t>(before - 1)) drawn.seconds = expected.seconds;
            EXPECT_TRUE(!settled || drawn == expected);
        }
    }
}

TEST_F(Identifiers, RepeatsAfterAllCountsOfASecond) {
    TAUUIDGenerator generator;
    bool withinOneSecond = false;
    while (!withinOneSecond && !HasFailure()) {  // on a busy machine it may take several
        const std::string first = generator.Get();
        const std::size_t length = first.size();
        std::string all = first;  // told apart behind the hurry
        for (int i = 1; i < 65536; ++i) all.append(generator.Get(), length);
        const std::string again = generator.Get();
        std::set<std::string_view> drawn;
        for (std::size_t at = 0; at < all.size(); at += length) drawn.insert(std::string_view(all).substr(at, length));
        EXPECT_EQ(drawn.size(), 65536U);
        EXPECT_EQ(again.substr(6), first.substr(6));
        withinOneSecond = Decoded(again).seconds == Decoded(first).seconds;
        EXPECT_EQ(again == first, withinOneSecond);
    }
}

TEST_F(Identifiers, HasHelpersForBytes) {
    char text[] = "untouched";
    for (const int count : {0, -1, INT_MIN}) Opened::Copy(text, "abc", count);
    EXPECT_STREQ(text, "untouched");
    Opened::Copy(text, "abcd", 4);
    EXPECT_STREQ(text, "dcbauched");

    const std::uint64_t instant = 0xFEDCBA9876543210;
    __int64 value = 7;
    FILETIME* const time = reinterpret_cast<FILETIME*>(const_cast<std::uint64_t*>(&instant));
    Opened::FileTimeToInt(nullptr, &value);
    Opened::FileTimeToInt(time, nullptr);
    EXPECT_EQ(value, 7);
    Opened::FileTimeToInt(time, &value);
    EXPECT_EQ(static_cast<std::uint64_t>(value), instant);
    Opened::ComputeEpoch(nullptr);
}

TEST_F(Identifiers, TakesItsProcessNumberAnewInAForkedChild) {
    const Fields parent = Drawn();
    const auto drawTwice = [] { return std::string(TAUUIDGenerator().Get()) + TAUUIDGenerator().Get(); };
    const std::string child = OutputOfFork(drawTwice);
    if (child.empty()) GTEST_SKIP() << "no forks here";
    for (const std::size_t from : {0, 20}) {
        const Fields drawn = Decoded(child.substr(from, 20));
        EXPECT_NE(drawn.process, parent.process);
        EXPECT_EQ(drawn.machine, parent.machine);
    }
    EXPECT_EQ(Drawn().process, parent.process);
    // A number of a derived class's own stays.
    Opened::process_ident = 77;
    EXPECT_EQ(Decoded(OutputOfFork(drawTwice).substr(0, 20)).process, 77);
}

TEST_F(Identifiers, DiffersAmongProcesses) {
    // A hundred, but for systems on which starting them would take too long.
    const std::time_t end = std::time(nullptr) + 15;
    std::set<std::string> drawn;
    std::size_t processes = 0;
    while (processes < 100 && (processes < 5 || std::time(nullptr) < end)) {
        const ProgramResult result = RunProgram("probe", {"identifiers", "600"});
        ASSERT_EQ(result.exitCode, 0);
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) drawn.insert(line);
        ASSERT_EQ(drawn.size(), ++processes * 600);
    }
}
