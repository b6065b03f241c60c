// An integer or a pointer that several threads read and write without a lock: the interface of std::atomic.
//
//     ZELAtomic<int> done{0};
//     done.fetch_add(1);
//
// The members of the library's classes use it instead of std::atomic, so that their layout is the library's own. In a
// program of your own, std::atomic is the better choice.
//
// Threads: every operation may be called concurrently, with the guarantees of the operation of std::atomic of that
// name.
#ifndef ZELATOMIC_H
#define ZELATOMIC_H

#include <atomic>

template <class Value>
class ZELAtomic {
public:
    constexpr ZELAtomic() noexcept = default;
    constexpr ZELAtomic(Value value) noexcept : _value(value) {}
    ZELAtomic(const ZELAtomic&) = delete;
    ZELAtomic& operator=(const ZELAtomic&) = delete;

    Value load(std::memory_order order = std::memory_order_seq_cst) const noexcept { return Reference().load(order); }
    void store(Value value, std::memory_order order = std::memory_order_seq_cst) noexcept {
        Reference().store(value, order);
    }
    Value exchange(Value value, std::memory_order order = std::memory_order_seq_cst) noexcept {
        return Reference().exchange(value, order);
    }
    Value fetch_add(Value value, std::memory_order order = std::memory_order_seq_cst) noexcept {
        return Reference().fetch_add(value, order);
    }
    Value fetch_sub(Value value, std::memory_order order = std::memory_order_seq_cst) noexcept {
        return Reference().fetch_sub(value, order);
    }
    bool compare_exchange_strong(Value& expected, Value value,
                                 std::memory_order order = std::memory_order_seq_cst) noexcept {
        return Reference().compare_exchange_strong(expected, value, order);
    }
    Value operator=(Value value) noexcept {
        store(value);
        return value;
    }
    operator Value() const noexcept { return load(); }

private:
    using Access = std::atomic_ref<Value>;
    static_assert(Access::is_always_lock_free);

    Access Reference() const noexcept { return Access(_value); }

    alignas(Access::required_alignment) mutable Value _value{};
};

#endif
