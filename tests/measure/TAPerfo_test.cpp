#include "TAPerfo.h"

#include "measure/amount_text.h"
#include "measure/whole_seconds.h"
#include "support/slots.h"
#include "support/testing.h"

namespace {

// The time stands still, and tests move it.
struct Counters : testing::Test {
    void SetUp() override { Pass(0); }
    void TearDown() override { HoldTime(-1); }
    void Pass(std::int64_t seconds) { HoldTime(_now += seconds); }

private:
    std::int64_t _now = 1'700'000'000;
};

// The ring as a list of everything that was ever counted: what lies in the 20 slices before the present one.
struct LoadModel {
    void Count(int amount, std::int64_t now) {
        std::int64_t passed = std::max<std::int64_t>(0, now - sliceStart) * 20 / length;
        if (passed > 21) passed = 21 + passed % 21;
        sliceStart += passed * (length / 20);
        counted[slice += passed] += amount;
    }
    int Recent() const {
        int sum = 0;
        for (const auto& [at, amount] : counted) sum += at < slice && at >= slice - 20 ? amount : 0;
        return sum;
    }
    int length;
    std::int64_t sliceStart, slice = 0;
    std::map<std::int64_t, int> counted = {};
};

// A stream buffer that refuses everything, in the given way.
struct Refusing : std::streambuf {
    explicit Refusing(bool throws) : _throws(throws) {}
    int_type overflow(int_type) override { return _throws ? throw 1 : traits_type::eof(); }
    bool _throws;
};

}  // namespace

TEST(Counter, WritesAmountsAndTimesAsTold) {
    const auto check = [](const char* rows, ZELString (*write)(int) noexcept) {
        std::istringstream words(rows);
        std::string text;
        for (int number = 0; words >> number >> text;) EXPECT_EQ(write(number), text.c_str()) << number;
        EXPECT_TRUE(words.eof());
    };
    check(
        "-2147483648 0 -1 0 0 0 1000 1000 1001 0.97k 1024 1k 1035 1.01k 2048 2k 5000 4.88k 10240 10k 10300 10k "
        "12800 12.5k 102399 99.9k 150000 146k 1025023 1000k 1025024 0.97M 1048576 1M 2621440 2.5M 1049624576 0.97T "
        "1073741824 1T 2147483647 1.99T",
        AmountText);
    check(
        "-2147483648 0s 0 0s 59 59s 60 1m 61 1m1s 3600 1h 3605 1h5s 3725 1h2m5s 86399 23h59m59s 86400 1d 86401 1d1s "
        "86460 1d1m 86465 1d1m5s 90001 1d1h 90061 1d1h 2147483647 24855d3h",
        DurationText);
}

TEST_F(Counters, ReportTheAmountSinceTheyStarted) {
    TAPerfo plain("x");
    TAPerfoAv average("y", 60);
    TAPerfoLoad load;
    EXPECT_EQ(plain.Report(), "x 0 in 0s");
    for (TAPerfo* counter : {&plain, static_cast<TAPerfo*>(&average), static_cast<TAPerfo*>(&load)})
        counter->Count(5000);
    EXPECT_EQ(average.Report(), "y 0 per 1m, 4.88k in 0s") << "no time has passed";
    Pass(30);
    EXPECT_EQ(plain.Report(), "x 4.88k in 30s");
    EXPECT_EQ(average.Report(), "y 9.76k per 1m, 4.88k in 30s");
    EXPECT_EQ(load.Report(), "no-name 0 in last 1m, 4.88k in 30s") << "a report does not move the ring";
    load.Count(1);
    EXPECT_EQ(load.Report(), "no-name 4.88k in last 1m, 4.88k in 30s");
    for (TAPerfo* counter : {&plain, static_cast<TAPerfo*>(&average), static_cast<TAPerfo*>(&load)}) counter->Reset();
    EXPECT_EQ(plain.Report(), "x 0 in 0s");
    EXPECT_EQ(average.Report(), "y 0 per 1m, 4.88k in 0s") << "an average keeps its amount";
    EXPECT_EQ(load.Report(), "no-name 0 in last 1m, 0 in 0s");
    Pass(-5);
    EXPECT_EQ(plain.Report(), "x 0 in 0s") << "the clock was set back";
}

TEST_F(Counters, WorkWithWideNumbers) {
    TAPerfoAv average("a", 3600);
    average.Count(INT_MAX);
    Pass(3600);
    EXPECT_EQ(average.Report(), "a 1.99T per 1h, 1.99T in 1h") << "the product has 43 bits";
    average.Count(INT_MAX);
    EXPECT_EQ(average.Report(), "a 0 per 1h, 0 in 1h") << "reports see 32 bits";
    average.Count(7);
    EXPECT_EQ(average.Report(), "a 5 per 1h, 5 in 1h") << "the count itself is wider";
    average.SetLength(0);
    Pass(2);
    EXPECT_EQ(average.Report(), "a 2 per 1s, 5 in 2s") << "a period below 1 counts as 1";
    TAPerfoLoad load("l", -3);
    load.Count(INT_MAX);
    load.Count(INT_MAX);
    Pass(1);
    load.Count(1);
    EXPECT_EQ(load.Report(), "l 0 in last 1s, 0 in 1s");
}

TEST_F(Counters, KeepTheLoadLikeAListOfAllThatWasCounted) {
    std::mt19937 random(7);
    for (const int length : {60, 20, 40, 50, 3600, 19, 1}) {
        std::int64_t now = 1'700'000'000;
        HoldTime(now);
        TAPerfoLoad load("l", length);
        LoadModel model{length, now};
        for (int step = 0; step < 2000; ++step) {
            now += random() % 4 != 0 ? random() % (length / 10 + 2) : random() % (5 * length);
            if (random() % 50 == 0) now += std::int64_t{100} * length;
            if (random() % 50 == 0) now -= 3;
            HoldTime(now);
            const int amount = static_cast<int>(random() % 4);
            load.Count(amount);
            model.Count(amount, now);
            const std::string text = load.Report().CastToCharPtr();
            ASSERT_EQ(text.substr(0, text.find(" in last")), "l " + std::to_string(model.Recent()))
                << "period " << length << ", step " << step;
        }
    }
}

TEST_F(Counters, StandInTheListWhileTheyLiveAndCopiesDoNot) {
    ZELListPtrTAPerfo& list = TAPerfo::globalList;
    const int before = list.Size();
    TAPerfo first("first");
    TAPerfo* const second = new TAPerfoAv("second", 10);
    TAPerfoLoad third("third", 20);
    {
        second->Count(3);
        third.Count(4);
        Pass(5);
        third.Count(0);
        TAPerfo copy(first);
        TAPerfoAv average(static_cast<TAPerfoAv&>(*second));
        TAPerfoLoad load(third);
        EXPECT_EQ(average.Report(), "second 6 per 10s, 3 in 5s");
        EXPECT_EQ(load.Report(), "third 4 in last 20s, 4 in 5s");
        load.Count(1);
        load.SetName("changed");
        load = third;
        const TAPerfoAv& same = average;
        average = same;
        copy = *second;
        EXPECT_EQ(load.Report(), third.Report());
        EXPECT_EQ(copy.Report(), "second 3 in 5s");
        EXPECT_EQ(average.GetName(), "second");
        EXPECT_EQ(list.Size(), before + 3);
    }
    ASSERT_EQ(list.Size(), before + 3) << "the ends of copies leave the list alone";
    ZELListValZELString texts;
    TAPerfo::GlobalReport(texts);
    ASSERT_EQ(texts.Size(), before + 3);
    EXPECT_EQ(texts[1], third.Report());
    EXPECT_EQ(texts[2], second->Report());
    EXPECT_EQ(texts[3], "first 0 in 5s");
    delete second;
    EXPECT_TRUE(list.Size() == before + 2 && list[before + 1] == &first && list[before + 2] == &third);
}

TEST_F(Counters, ReportToStreams) {
    TAPerfo plain("plain");
    TAPerfoAv average("average");
    TAPerfoLoad load("load");
    std::ostringstream stream;
    TAPerfo::GlobalReport(stream);
    EXPECT_EQ(stream.str().substr(0, 67), "load 0 in last 1m, 0 in 0s\naverage 0 per 1m, 0 in 0s\nplain 0 in 0s\n");
    for (const bool throws : {false, true}) {
        Refusing buffer(throws);
        std::ostream refusing(&buffer);
        TAPerfo::GlobalReport(refusing);
    }
    std::ostream without(nullptr);
    TAPerfo::GlobalReport(without);
    EXPECT_EQ(plain.Report(), "plain 0 in 0s") << "the lock is free again";
}

TEST(Counter, CountsExactlyFromManyThreads) {
    TAPerfoAv average("average");
    TAPerfoLoad load("load", 3600);
    TAPerfo plain("plain");
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] {
                for (int count = 0; count < 10'000; ++count) {
                    average.Count(1);
                    load.Count(3);
                }
            });
        for (int count = 0; count < 1000; ++count) {
            plain.Count(1);
            if (count % 10 != 0) continue;
            const TAPerfoLoad copy(load);
            ZELListValZELString texts;
            TAPerfo::GlobalReport(texts);
        }
    }
    const std::string texts = std::string(average.Report()) + std::string(load.Report()) + std::string(plain.Report());
    for (const char* part : {" 78.1k in ", " 234k in ", "plain 1000 in "})
        EXPECT_NE(texts.find(part), std::string::npos) << texts;
}

// Statics of files in any order, and ends behind the end of main.
static TAPerfo early("early");
static const bool wasEntered = TAPerfo::globalList.Size() > 0;

TEST(Counter, ServesStaticsAndOldPrograms) {
    EXPECT_TRUE(wasEntered && TAPerfo::globalList[1] == &early);
    ExpectSlots(0, &TAPerfo::Reset, &TAPerfo::Count, static_cast<void (TAPerfo::*)(std::ostream&)>(&TAPerfo::Report),
                static_cast<ZELString (TAPerfo::*)()>(&TAPerfo::Report));
}
