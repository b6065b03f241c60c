#include "TAMutex.h"

#include "support/programs.h"
#include "support/slots.h"
#include "support/test_system.h"
#include "support/testing.h"

namespace {

// A name that nobody else has. A mutex that is locked as it closes leaves a file, which ends with the name.
struct NewName : std::string {
    NewName() : std::string("zeltest" + std::to_string(std::random_device()())) {}
    ~NewName() {
        std::error_code ignored;
        if (const std::string file = File(); !file.empty()) std::filesystem::remove(file, ignored);
    }
    // Where the system keeps it in a file, and has one.
    std::string File() const {
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", missing))
            if (entry.path().string().ends_with("." + *this)) return entry.path().string();
        return {};
    }
};

int UnlockElsewhere(TAMutex& mutex) {
    int result = -1;
    std::jthread([&] { result = mutex.Unlock(); }).join();
    return result;
}

}  // namespace

TEST(TAMutex, BelongsToAThreadWhichMayLockItAgain) {
    const NewName named;
    for (const std::string& name : {std::string(named), std::string()}) {
        TAMutex mutex(name.c_str());
        EXPECT_EQ(mutex.Unlock(), 0);
        EXPECT_TRUE(mutex.Lock() == 0 && mutex.Lock() == 0);
        EXPECT_EQ(UnlockElsewhere(mutex), 0);
        EXPECT_TRUE(mutex.Unlock() != 0 && mutex.Unlock() != 0 && mutex.Unlock() == 0);

        std::jthread([&] { mutex.Lock(); }).join();  // ends without unlocking
        EXPECT_EQ(mutex.Lock(), 128);
        std::jthread waiter([&] { EXPECT_TRUE(mutex.Lock() == 0 && mutex.Unlock() != 0); });
        EXPECT_NE(mutex.Unlock(), 0);
    }
}

TEST(TAMutex, TheFirstCopyToEndClosesItForAll) {
    const NewName name;
    TAMutex copied(name.c_str()), assigned("");
    {
        TAMutex copy(copied);
        assigned = copy;
        EXPECT_TRUE(copy.Lock() == 0 && assigned.Unlock() != 0);
    }
    EXPECT_TRUE(copied.Lock() == -1 && assigned.Unlock() == 0);
    TAMutex open(name.c_str());
    EXPECT_TRUE(open.Lock() == 0 && open.Unlock() != 0);
}

TEST(TAMutex, OneNameIsOneMutexWhateverItsBytes) {
    std::string all;
    for (int byte = 1; byte < 128; ++byte)
        if (byte != '\\') all += static_cast<char>(byte);
    const NewName base;
    const std::string names[] = {
        base, base + "/x", base + "%2Fx", base + std::string(150, '.'), base + all, base + std::string(150, '.') + "x"};
    for (const std::string& name : names) {
        TAMutex first(name.c_str()), second(name.c_str());
        EXPECT_EQ(first.Lock(), 0) << name;
        EXPECT_NE(second.Unlock(), 0) << name;
        EXPECT_EQ(first.Lock(), 0);
        for (const std::string& other : names) {
            if (other == name) continue;
            TALockProcess distinct(other.c_str());
            EXPECT_EQ(distinct.Unlock(), 0) << other;
        }
        EXPECT_NE(first.Unlock(), 0);
    }
}

TEST(TAMutex, ExcludesProcesses) {
    const TemporaryFolder folder;
    const NewName name;
    const std::string file = folder / "number";
    WriteBytes(file, "0");
    std::vector<std::jthread> runs;
    for (int i = 0; i < 4; ++i)
        runs.emplace_back([&] { EXPECT_EQ(RunProgram("process_probe", {"count", name, file}).exitCode, 0); });
    runs.clear();
    EXPECT_EQ(ReadBytes(file), "400");
}

TEST(TAMutex, ADeadOwnerIsToldToWhoHadItOpen) {
    const NewName name;
    EXPECT_EQ(RunProgram("process_probe", {"die", name}).out, "0\n");
    TAMutex mutex(name.c_str());
    EXPECT_TRUE(mutex.Lock() == 0 && mutex.Unlock() != 0);  // nobody had it open: it counts as new
    std::atomic<int> told{0};
    std::vector<std::jthread> runs;
    for (int i = 0; i < 4; ++i)
        runs.emplace_back([&] {
            for (int round = 0; round < 3; ++round)
                if (RunProgram("process_probe", {"die", name}).out == "128\n") ++told;
        });
    runs.clear();
    EXPECT_EQ(told, 11);
    EXPECT_TRUE(mutex.Lock() == 128 && mutex.Unlock() != 0);

    // Locked as it ends: whoever has it open gets it when the thread ends.
    std::jthread([&] { EXPECT_EQ(TAMutex(name.c_str()).Lock(), 0); }).join();
    EXPECT_EQ(mutex.Lock(), 128);
}

TEST(TAMutex, FilesThatAreLeftOverOrForeignNeitherHangNorAdmitTwo) {
    const NewName name;
    std::string path;
    {
        TAMutex mutex(name.c_str());
        path = name.File();
        if (path.empty()) GTEST_SKIP() << "the system keeps its mutexes elsewhere";
        EXPECT_EQ(mutex.Lock() + mutex.Lock(), 0);
        mutex.Unlock();
        mutex.Unlock();
    }
    EXPECT_EQ(name.File(), "");  // the last to close removes it
    using std::filesystem::perms;
    constexpr perms own = perms::owner_read | perms::owner_write;
    for (const auto& [bytes, rights, expected] :
         {std::tuple{"", own, 0}, std::tuple{"garbage", own, 0}, std::tuple{"", own | perms::others_write, -1}}) {
        WriteBytes(path, bytes);
        std::filesystem::permissions(path, rights);
        TAMutex first(name.c_str()), second(name.c_str());
        EXPECT_EQ(first.Lock(), expected);
        EXPECT_EQ(second.Unlock() != 0, expected == 0);
        std::filesystem::remove(path);
    }
    std::filesystem::create_directory(path);
    EXPECT_EQ(TAMutex(name.c_str()).Lock(), -1);
    std::filesystem::remove(path);
}

TEST(TAMutex, SlotsStandInTheirOrder) {
    ExpectSlots(2, &TAMutex::Lock, &TAMutex::Unlock);  // behind the two of the destructor
}
