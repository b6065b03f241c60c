// The checksum of a C string, whose end must be found first, beside checksums of 32 bits that are told the length.
#include <benchmark/benchmark.h>
#include <libdeflate.h>
#include <zlib.h>

#include <boost/crc.hpp>
#include <random>
#include <string>

#include "TARunLength.h"

namespace {

std::string Text(std::size_t length) {
    std::mt19937 random(1);
    std::string text(length, 'x');
    for (char& character : text) character = static_cast<char>(1 + random() % 255);
    return text;
}

unsigned BitByBit(const std::string& text) {
    unsigned remainder = 0;
    for (const char character : text)
        for (int bit = 7; bit >= 0; --bit) {
            const unsigned top = remainder >> 31;
            remainder = (remainder << 1 | (static_cast<unsigned char>(character) >> bit & 1)) ^ (top ? 0xC5U : 0);
        }
    return remainder;
}

void Add(const std::string& who, unsigned (*sum)(const std::string& text)) {
    for (const int length : {16, 64, 1024, 65536, 1 << 24}) {
        benchmark::RegisterBenchmark(("checksum/" + who + "/" + std::to_string(length)).c_str(),
                                     [length, sum](benchmark::State& state) {
                                         const std::string text = Text(static_cast<std::size_t>(length));
                                         for (auto _ : state) {
                                             benchmark::DoNotOptimize(text.data());
                                             benchmark::DoNotOptimize(sum(text));
                                         }
                                     });
    }
}

const bool registered = [] {
    Add("ours", [](const std::string& text) { return crc(text.c_str(), 0); });
    Add("bit_by_bit", BitByBit);
    Add("zlib", [](const std::string& text) {
        return static_cast<unsigned>(crc32(0, reinterpret_cast<const Bytef*>(text.data()), text.size()));
    });
    Add("libdeflate",
        [](const std::string& text) { return static_cast<unsigned>(libdeflate_crc32(0, text.data(), text.size())); });
    Add("boost::crc", [](const std::string& text) {
        boost::crc_optimal<32, 0xC5> sum;  // the same polynomial
        sum.process_bytes(text.data(), text.size());
        return static_cast<unsigned>(sum.checksum());
    });
    return true;
}();

}  // namespace
