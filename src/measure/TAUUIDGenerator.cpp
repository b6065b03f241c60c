// An identifier is 15 bytes in base 64. All but the last four characters stay the same for a second, so they are kept,
// beside what they were made from, and only the process's low byte and the count are encoded anew: an identifier costs
// little more than the look at the clock.
//
// The members are protected and may be changed by derived classes, so the kept characters are compared with the members
// as they are, not with what Init once found. The time is the C runtime's in whole seconds, unless a derived class
// moved the epoch. Whether the process was forked meanwhile is one load (GetProcessMark).
//
// Nothing is locked, by contract; the process mark alone is atomic.

#include "TAUUIDGenerator.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "base/failure_report.h"
#include "platform/identity.h"
#include "platform/system.h"

using namespace zel;

constinit short TAUUIDGenerator::counter = 0;
constinit __int64 TAUUIDGenerator::epoch = 0;
constinit int TAUUIDGenerator::init_done = 0;
constinit int TAUUIDGenerator::machine_ident = 0;
constinit int TAUUIDGenerator::process_ident = 0;

namespace {

constexpr std::size_t BlockSize = 15;
constexpr std::size_t GroupSize = 3;  // bytes, which become four characters
constexpr std::size_t TextSize = BlockSize / GroupSize * 4;
constexpr unsigned char Marker = 5;
constexpr __int64 TicksPerSecond = 10'000'000;

using Ticks = std::chrono::duration<__int64, std::ratio<1, TicksPerSecond>>;
constexpr __int64 UnixEpoch = Ticks(std::chrono::sys_days(std::chrono::year{1970} / 1 / 1) -
                                    std::chrono::sys_days(std::chrono::year{1601} / 1 / 1))
                                  .count();

constexpr char alphabet[] = "+-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// The source of all but the last four characters.
struct Stem {
    std::uint32_t seconds;
    int machine;
    int process;
};

constinit char text[TextSize + 1] = {};  // empty before the first identifier
constinit Stem textStem = {};

void PutHighFirst(std::uint32_t number, unsigned char* bytes) noexcept {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(number >> (24 - 8 * i));
}

// Everything but the count, which is 0.
void FillBlock(const Stem& stem, unsigned char (&block)[BlockSize]) noexcept {
    PutHighFirst(stem.seconds, block);
    PutHighFirst(static_cast<std::uint32_t>(stem.machine), block + 4);
    block[8] = Marker;
    PutHighFirst(static_cast<std::uint32_t>(stem.process), block + 9);
    block[13] = block[14] = 0;
}

void ConvertGroup(std::uint32_t bits, char* characters) noexcept {
    // Written out: this is most of the cost of an identifier.
    characters[0] = alphabet[bits >> 18 & 63];
    characters[1] = alphabet[bits >> 12 & 63];
    characters[2] = alphabet[bits >> 6 & 63];
    characters[3] = alphabet[bits & 63];
}

Ticks Now() noexcept {
    return std::chrono::floor<Ticks>(std::chrono::system_clock::now().time_since_epoch());
}

// The number of this process at the last look.
constinit int ownProcess = -1;

constinit std::atomic<std::uint32_t>* processMark = nullptr;

// Whether the process has been forked since the last look, or that is unknown.
bool IsNewProcess() noexcept {
    if (processMark != nullptr && processMark->load(std::memory_order_relaxed) != 0) return false;
    processMark = GetProcessMark();
    if (processMark != nullptr) processMark->store(1, std::memory_order_relaxed);
    return true;
}

}  // namespace

TAUUIDGenerator::~TAUUIDGenerator() = default;

void TAUUIDGenerator::Init() noexcept {
    if (init_done == 1) return;
    machine_ident = GetMachineIdent();
    process_ident = ownProcess = GetOwnProcessId();
    counter = FirstCounter();
    ComputeEpoch(&epoch);
    init_done = 1;
}

__int64 TAUUIDGenerator::GetTime() noexcept {
    // The difference wraps for every epoch that a derived class chooses.
    const auto now = static_cast<std::uint64_t>(UnixEpoch + Now().count());
    return static_cast<__int64>(now - static_cast<std::uint64_t>(epoch)) / TicksPerSecond;
}

int TAUUIDGenerator::GetMachineIdent() noexcept {
    AdapterAddress address;
    if (!GetAdapterAddress(address)) return 0;
    const unsigned char* const bytes = address.bytes;
    return static_cast<int>(std::uint32_t{bytes[5]} << 24 | std::uint32_t{bytes[4]} << 16 |
                            std::uint32_t{bytes[3]} << 8 | bytes[2]);
}

int TAUUIDGenerator::GetProcessIdent() noexcept {
    return process_ident;
}

short TAUUIDGenerator::FirstCounter() noexcept {
    return static_cast<short>(std::chrono::floor<std::chrono::milliseconds>(Now()).count() % 1000);
}

void TAUUIDGenerator::ComputeEpoch(__int64* result) noexcept {
    if (result != nullptr) *result = UnixEpoch;
}

void TAUUIDGenerator::FileTimeToInt(FILETIME* time, __int64* result) noexcept {
    if (time != nullptr && result != nullptr) std::memcpy(result, time, sizeof *result);
}

void TAUUIDGenerator::Copy(void* to, const void* from, int count) noexcept {
    for (int i = 0; i < count; ++i)
        static_cast<unsigned char*>(to)[count - 1 - i] = static_cast<const unsigned char*>(from)[i];
}

void TAUUIDGenerator::Convert(const unsigned char* block, char* characters) noexcept {
    for (std::size_t i = 0; i < BlockSize; i += GroupSize, characters += 4)
        ConvertGroup(std::uint32_t{block[i]} << 16 | std::uint32_t{block[i + 1]} << 8 | block[i + 2], characters);
    *characters = '\0';
}

void TAUUIDGenerator::Error() noexcept {
    WriteText(stdout, {"Unable to allocate an UUID\n"});
}

const char* TAUUIDGenerator::Get() noexcept {
    if (init_done != 1) [[unlikely]]
        Init();
    if (IsNewProcess()) [[unlikely]] {
        // A number that a derived class chose stays.
        const bool isOwn = process_ident == ownProcess;
        ownProcess = GetOwnProcessId();
        if (isOwn) process_ident = ownProcess;
    }
    __int64 time = std::time(nullptr);
    if (epoch != UnixEpoch) [[unlikely]]
        time = GetTime();
    const auto seconds = static_cast<std::uint32_t>(time);
    const int machine = machine_ident, process = process_ident;
    if (seconds != textStem.seconds || machine != textStem.machine || process != textStem.process || *text == '\0')
        [[unlikely]] {
        textStem = {seconds, machine, process};
        unsigned char block[BlockSize];
        FillBlock(textStem, block);
        Convert(block, text);
    }
    const auto count = static_cast<std::uint16_t>(counter);
    counter = static_cast<short>(count + 1);
    ConvertGroup(static_cast<std::uint32_t>(process & 0xFF) << 16 | count, text + TextSize - 4);
    return text;
}
