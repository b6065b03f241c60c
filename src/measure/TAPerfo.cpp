// Counters are a name, a start and a count under a lock of their own. The two others add a period, and one of them a
// ring of slices.
//
// The plain counter is fed without its lock, so its numbers are atomic words that are loaded and stored: no locked
// operation, and a concurrent report reads a true number. The others change only under the lock. Numbers that exceed
// their width wrap.
// The list of counters is constant-initialised and never destroyed: counters may be statics of any file.
// Hazard: a thread must not take the lock twice, so a function that holds it builds its text by TotalText and Recent,
// which take none.

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

constexpr int DefaultPeriod = 60;  // in seconds
constexpr char DefaultName[] = "no-name";

// A union, so that the list is never destroyed.
union LastingList {
    constexpr LastingList() noexcept : list() {}
    ~LastingList() {}
    ZELListPtrTAPerfo list;
};
constinit LastingList counters;

int ValidPeriod(int length) noexcept {
    return std::max(length, 1);
}

// A sum that wraps.
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
    if (line.IsIncomplete()) return;  // which was told
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

// By way of a copy, so that two counters are never locked at the same time; so do the other classes.
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

// From the end: a counter with a short life is among the last.
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

TAPerfoPeriod::TAPerfoPeriod(ZELString name, int length) noexcept
    : TAPerfo(std::move(name)), _length(ValidPeriod(length)) {}

TAPerfoPeriod::TAPerfoPeriod(const TAPerfoPeriod& other, const TALocker& held) noexcept
    : TAPerfo(other, held), _length(other._length) {}

TAPerfoPeriod::~TAPerfoPeriod() = default;

void TAPerfoPeriod::Assign(const TAPerfoPeriod& other) noexcept {
    TAPerfo::Assign(other);
    _length = other._length;
}

void TAPerfoPeriod::Report(std::ostream& stream) {
    WriteLine(stream, Report().View());
}

void TAPerfoPeriod::SetLength(int length) {
    {
        const TALocker guard(&_lock);
        _length = ValidPeriod(length);
    }
    Reset();
}

TAPerfoAv::TAPerfoAv() noexcept : TAPerfoAv(DefaultName) {}

TAPerfoAv::TAPerfoAv(ZELString name) noexcept : TAPerfoAv(std::move(name), DefaultPeriod) {}

TAPerfoAv::TAPerfoAv(ZELString name, int length) noexcept : TAPerfoPeriod(std::move(name), length) {}

TAPerfoAv::TAPerfoAv(const TAPerfoAv& other) noexcept : TAPerfoPeriod(other, TALocker(&other._lock)) {}

TAPerfoAv& TAPerfoAv::operator=(const TAPerfoAv& other) noexcept {
    const TAPerfoAv copy(other);
    const TALocker guard(&_lock);
    Assign(copy);
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

ZELString TAPerfoAv::Report() {
    const TALocker guard(&_lock);
    const __int64 elapsed = SecondsNow() - _start;
    const std::int64_t rate = elapsed > 0 ? std::int64_t{static_cast<int>(_count)} * _length / elapsed : 0;
    return _name + ' ' + AmountText(static_cast<int>(rate)) + " per " + DurationText(_length) + ',' + TotalText();
}

TAPerfoLoad::TAPerfoLoad() noexcept : TAPerfoLoad(DefaultName) {}

TAPerfoLoad::TAPerfoLoad(ZELString name) noexcept : TAPerfoLoad(std::move(name), DefaultPeriod) {}

TAPerfoLoad::TAPerfoLoad(ZELString name, int length) noexcept
    : TAPerfoPeriod(std::move(name), length), _ring{{}, _start, 0} {}

TAPerfoLoad::TAPerfoLoad(const TAPerfoLoad& other) noexcept : TAPerfoLoad(other, TALocker(&other._lock)) {}

TAPerfoLoad::TAPerfoLoad(const TAPerfoLoad& other, const TALocker& held) noexcept
    : TAPerfoPeriod(other, held), _ring(other._ring) {}

TAPerfoLoad& TAPerfoLoad::operator=(const TAPerfoLoad& other) noexcept {
    const TAPerfoLoad copy(other);
    const TALocker guard(&_lock);
    Assign(copy);
    _ring = copy._ring;
    return *this;
}

TAPerfoLoad::~TAPerfoLoad() = default;

void TAPerfoLoad::Reset() {
    const TALocker guard(&_lock);
    _count = 0;
    _start = SecondsNow();
    _ring = {{}, _start, 0};
}

// Empties the slices that have passed. After a long pause more than one round is as good as many: the ring is empty,
// and its start follows by 41 slices at most, so the next calls go on catching up.
void TAPerfoLoad::MoveOn(__int64 now) noexcept {
    const __int64 elapsed = std::max<__int64>(0, now - _ring.bucketStart) * Slices;
    if (elapsed < _length) return;  // nearly always, and spares the division
    __int64 passed = elapsed / _length;
    if (passed > Buckets) passed = Buckets + passed % Buckets;
    for (; passed > 0; --passed) {
        _ring.current = (_ring.current + 1) % Buckets;
        _ring.buckets[_ring.current] = 0;
        _ring.bucketStart += _length / Slices;
    }
}

void TAPerfoLoad::Count(int amount) {
    const TALocker guard(&_lock);
    Add(amount);
    MoveOn(SecondsNow());
    int& bucket = _ring.buckets[_ring.current];
    bucket = Sum(bucket, amount);
}

// All slices but the one that is being filled.
int TAPerfoLoad::Recent() const noexcept {
    int sum = 0;
    for (int slice = 1; slice <= Slices; ++slice) sum = Sum(sum, _ring.buckets[(_ring.current + slice) % Buckets]);
    return sum;
}

ZELString TAPerfoLoad::Report() {
    const TALocker guard(&_lock);
    return _name + ' ' + AmountText(Recent()) + " in last " + DurationText(_length) + ',' + TotalText();
}
