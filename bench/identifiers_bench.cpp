// Identifiers as text, and the clock that each of ours reads.
#include <benchmark/benchmark.h>
#include <uuid/uuid.h>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <ctime>
#include <random>

#include "TAUUIDGenerator.h"

namespace {

template <class Draw>
void Add(const char* name, Draw draw) {
    benchmark::RegisterBenchmark(name, [draw](benchmark::State& state) mutable {
        for (auto _ : state) benchmark::DoNotOptimize(draw());
    });
}

template <void (*Generate)(uuid_t)>
char* LibuuidText() {
    static char text[UUID_STR_LEN];
    uuid_t id;
    Generate(id);
    uuid_unparse_lower(id, text);
    return text;
}

// 128 random bits, written down in hexadecimal.
char* RandomText(std::mt19937_64& random) {
    static char text[33];
    for (int half = 0; half < 2; ++half) {
        std::uint64_t bits = random();
        for (int i = 0; i < 16; ++i, bits >>= 4) text[16 * half + i] = "0123456789abcdef"[bits & 15];
    }
    return text;
}

const bool registered = [] {
    Add("identifier/ours", [generator = TAUUIDGenerator()]() mutable { return generator.Get(); });
    Add("identifier/libuuid_time", LibuuidText<uuid_generate_time>);
    Add("identifier/libuuid_random", LibuuidText<uuid_generate_random>);
    Add("identifier/mt19937", [random = std::mt19937_64(1)]() mutable { return RandomText(random); });
    Add("identifier/boost_mt19937", [generate = boost::uuids::random_generator_mt19937()]() mutable {
        return boost::uuids::to_string(generate());
    });
    Add("identifier/time_alone", [] { return std::time(nullptr); });
    return true;
}();

}  // namespace
