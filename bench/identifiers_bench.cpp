// Identifiers as text, and the clock that each of ours reads.
#include <benchmark/benchmark.h>
#include <uuid/uuid.h>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <ctime>
#include <random>
#include <string>

#include "TAUUIDGenerator.h"

namespace {

template <class Draw>
void Add(const char* name, Draw draw) {
    benchmark::RegisterBenchmark(name, [draw](benchmark::State& state) {
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
char* RandomText() {
    static std::mt19937_64 random(1);
    static char text[33];
    for (int half = 0; half < 2; ++half) {
        std::uint64_t bits = random();
        for (int i = 0; i < 16; ++i, bits >>= 4) text[16 * half + i] = "0123456789abcdef"[bits & 15];
    }
    return text;
}

const char* OurText() {
    static TAUUIDGenerator generator;
    return generator.Get();
}

std::string BoostText() {
    static boost::uuids::random_generator_mt19937 generate;
    return boost::uuids::to_string(generate());
}

const bool registered = [] {
    Add("identifier/ours", OurText);
    Add("identifier/libuuid_time", LibuuidText<uuid_generate_time>);
    Add("identifier/libuuid_random", LibuuidText<uuid_generate_random>);
    Add("identifier/mt19937", RandomText);
    Add("identifier/boost_mt19937", BoostText);
    Add("identifier/time_alone", [] { return std::time(nullptr); });
    return true;
}();

}  // namespace
