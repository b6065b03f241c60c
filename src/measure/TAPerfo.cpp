// Counters are a name, a start and a count under a lock of their own; the two others add a period, and a ring of
// slices.
//
// The plain counter is fed without its lock, so its numbers are atomic words that are loaded and stored: no locked
// operation, and a report beside the counting thread reads a true number. The others change only under the lock.
// Numbers that outgrow their width go round.
// The list of counters is constant-initialised and nothing ends it: counters may be statics of any file.
// The dangerous case is the lock, which a thread must not take twice: what holds it builds its text by TotalText and
// Recent, which take none.

#include "TAPerfo.h"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <utility>

#include "measure/amount_text.h"
#include "measure/whole_seconds.h"

using namespace zel;

namespace {

constexpr int DefaultPeriod = 60;
constexpr char DefaultName[] = "no-name";

// A union, so that nothing ends it.
union LastingList {
    constexpr LastingList() noexcept : list() {}
    ~LastingList() {}
    ZELListPtrTAPerfo list;
};
constinit LastingList counters;

int ValidPeriod(int length) noexcept {
    return std::max(length, 1);
}

// Sums that go round instead of overflowing.
int Sum(int one, int other) noexcept {
    return static_cast<int>(static_cast<std::uint32_t>(one) + static_cast<std::uint32_t>(other));
}

// Passes `text` and an end of line to the stream's buffer in one piece and flushes it; nothing when the stream has
// failed or has no buffer. The stream may belong to another C++ runtime. The virtual functions of its buffer are the
// caller's own code, while the stream's operators would be this library's. Bytes that the buffer rejects are lost.
void WriteLine(std::ostream& stream, std::string_view text) noexcept {
    std::streambuf* const buffer = stream.rdbuf();
    if (buffer == nullptr || !stream.good()) return;
    const ZELString line = ZELString(text) + '\n';
    try {
        buffer->sputn(line.CastToCharPtr(), line.Length());
        buffer->pubsync();
    } catch (...) {
        // No exception of a caller's buffer passes through the library.
    }
}

}  // namespace

constinit ZELListPtrTAPerfo& TAPerfo::globalList = counters.list;

TAPerfo::TAPerfo() noexcept : TAPerfo(DefaultName) {}

TAPerfo::TAPerfo(ZELString name) noexcept : _name(std::move(name)), _start(SecondsNow()), _count(0) {
    globalList.Append(this);
}

TAPerfo::TAPerfo(const TAPerfo& other) noexcept : TAPerfo(other, TALocker(&other._lock)) {}

TAPerfo::TAPerfo(const TAPerfo& other, const TALocker&) noexcept
    : _name(other._name), _start(other._start.load()), _count(other._count.load()) {}

// By way of a copy, so that two counters are never locked at once.
TAPerfo& TAPerfo::operator=(const TAPerfo& other) noexcept {
    const TAPerfo copy(other);
    const TALocker guard(&_lock);
    Assign(copy);
    return *this;
}

void TAPerfo::Assign(const TAPerfo& other) noexcept {
    _name = other._name;
    _start = other._start.load();
    _count = other._count.load();
}

// From the end, where a counter with a short life stands.
TAPerfo::~TAPerfo() {
    for (int position = globalList.Size(); position >= 1; --position)
        if (std::as_const(globalList)[position] == this) {
            globalList.RemovePosition(position);
            return;
        }
}

void TAPerfo::Add(int amount) noexcept {
    const auto count = static_cast<std::uint64_t>(_count.load(std::memory_order_relaxed));
    _count.store(static_cast<__int64>(count + static_cast<std::uint64_t>(amount)), std::memory_order_relaxed);
}

void TAPerfo::Reset() {
    _count = 0;
    _start = SecondsNow();
}

void TAPerfo::Count(int amount) {
    Add(amount);
}

ZELString TAPerfo::TotalText() const noexcept {
    return ZELString(" ") + AmountText(static_cast<int>(_count)) + " in " +
           DurationText(static_cast<int>(SecondsNow() - _start));
}

void TAPerfo::Report(std::ostream& stream) {
    const TALocker guard(&_lock);
    WriteLine(stream, (_name + TotalText()).View());
}

ZELString TAPerfo::Report() {
    const TALocker guard(&_lock);
    return _name + TotalText();
}

ZELString TAPerfo::GetName() const noexcept {
    const TALocker guard(&_lock);
    return _name;
}

void TAPerfo::SetName(ZELString name) noexcept {
    const TALocker guard(&_lock);
    _name = std::move(name);
}

void TAPerfo::GlobalReport(std::ostream& stream) {
    for (int position = globalList.Size(); position >= 1; --position)
        if (TAPerfo* const counter = std::as_const(globalList)[position]) counter->Report(stream);
}

void TAPerfo::GlobalReport(ZELListValZELString& texts) {
    for (int position = globalList.Size(); position >= 1; --position)
        if (TAPerfo* const counter = std::as_const(globalList)[position]) texts.Append(counter->Report());
}

TAPerfoAv::TAPerfoAv() noexcept : TAPerfoAv(DefaultName) {}

TAPerfoAv::TAPerfoAv(ZELString name) noexcept : TAPerfoAv(std::move(name), DefaultPeriod) {}

TAPerfoAv::TAPerfoAv(ZELString name, int length) noexcept : TAPerfo(std::move(name)), _length(ValidPeriod(length)) {}

TAPerfoAv::TAPerfoAv(const TAPerfoAv& other) noexcept : TAPerfoAv(other, TALocker(&other._lock)) {}

TAPerfoAv::TAPerfoAv(const TAPerfoAv& other, const TALocker& held) noexcept
    : TAPerfo(other, held), _length(other._length) {}

TAPerfoAv& TAPerfoAv::operator=(const TAPerfoAv& other) noexcept {
    const TAPerfoAv copy(other);
    const TALocker guard(&_lock);
    Assign(copy);
    _length = copy._length;
    return *this;
}

TAPerfoAv::~TAPerfoAv() = default;

void TAPerfoAv::Reset() {
    const TALocker guard(&_lock);
    _start = SecondsNow();
}

void TAPerfoAv::Count(int amount) {
    const TALocker guard(&_lock);
    Add(amount);
}

void TAPerfoAv::Report(std::ostream& stream) {
    WriteLine(stream, Report().View());
}

ZELString TAPerfoAv::Report() {
    const TALocker guard(&_lock);
    const __int64 elapsed = SecondsNow() - _start;
    const std::int64_t rate = elapsed > 0 ? std::int64_t{static_cast<int>(_count)} * _length / elapsed : 0;
    return _name + ' ' + AmountText(static_cast<int>(rate)) + " per " + DurationText(_length) + ',' + TotalText();
}

void TAPerfoAv::SetLength(int length) {
    {
        const TALocker guard(&_lock);
        _length = ValidPeriod(length);
    }
    Reset();
}

TAPerfoLoad::TAPerfoLoad() noexcept : TAPerfoLoad(DefaultName) {}

TAPerfoLoad::TAPerfoLoad(ZELString name) noexcept : TAPerfoLoad(std::move(name), DefaultPeriod) {}

TAPerfoLoad::TAPerfoLoad(ZELString name, int length) noexcept
    : TAPerfo(std::move(name)), _buckets{}, _bucketStart(_start), _length(ValidPeriod(length)), _current(0) {}

TAPerfoLoad::TAPerfoLoad(const TAPerfoLoad& other) noexcept : TAPerfoLoad(other, TALocker(&other._lock)) {}

TAPerfoLoad::TAPerfoLoad(const TAPerfoLoad& other, const TALocker& held) noexcept : TAPerfo(other, held) {
    CopyRing(other);
}

TAPerfoLoad& TAPerfoLoad::operator=(const TAPerfoLoad& other) noexcept {
    const TAPerfoLoad copy(other);
    const TALocker guard(&_lock);
    Assign(copy);
    CopyRing(copy);
    return *this;
}

TAPerfoLoad::~TAPerfoLoad() = default;

void TAPerfoLoad::CopyRing(const TAPerfoLoad& other) noexcept {
    std::copy(std::begin(other._buckets), std::end(other._buckets), _buckets);
    _bucketStart = other._bucketStart;
    _length = other._length;
    _current = other._current;
}

void TAPerfoLoad::Reset() {
    const TALocker guard(&_lock);
    _current = 0;
    _count = 0;
    _bucketStart = SecondsNow();
    _start = _bucketStart;
    std::fill(std::begin(_buckets), std::end(_buckets), 0);
}

// Empties the slices that have passed. After a long pause more than one round is as good as many: the ring is empty,
// and its start follows by 41 slices at most, so that the calls behind it go on catching up.
void TAPerfoLoad::MoveOn(__int64 now) noexcept {
    const __int64 elapsed = std::max<__int64>(0, now - _bucketStart) * Slices;
    if (elapsed < _length) return;  // nearly always, and spares the division
    __int64 passed = elapsed / _length;
    if (passed > Buckets) passed = Buckets + passed % Buckets;
    for (; passed > 0; --passed) {
        _current = (_current + 1) % Buckets;
        _buckets[_current] = 0;
        _bucketStart += _length / Slices;
    }
}

void TAPerfoLoad::Count(int amount) {
    const TALocker guard(&_lock);
    Add(amount);
    MoveOn(SecondsNow());
    _buckets[_current] = Sum(_buckets[_current], amount);
}

// All slices but the one that is being filled.
int TAPerfoLoad::Recent() const noexcept {
    int sum = 0;
    for (int slice = 1; slice <= Slices; ++slice) sum = Sum(sum, _buckets[(_current + slice) % Buckets]);
    return sum;
}

void TAPerfoLoad::Report(std::ostream& stream) {
    WriteLine(stream, Report().View());
}

ZELString TAPerfoLoad::Report() {
    const TALocker guard(&_lock);
    return _name + ' ' + AmountText(Recent()) + " in last " + DurationText(_length) + ',' + TotalText();
}

void TAPerfoLoad::SetLength(int length) {
    {
        const TALocker guard(&_lock);
        _length = ValidPeriod(length);
    }
    Reset();
}
