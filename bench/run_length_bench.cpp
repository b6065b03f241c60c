// Run lengths beside general compressors that a user would pick instead, on a MiB of the data that the coder is for
// (sparse, mask, short runs; lengths vary around their means) and of data that it is not for (noise).
//
// The counter "size_percent" is what the data compresses to. "memory" is memset or memcpy of the expansion alone.
#include <benchmark/benchmark.h>
#include <lz4.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "TARunLength.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int Size = 1 << 20;

struct Kind {
    const char* name;
    int zeros, literals, ones;  // mean lengths of the runs that alternate
};

constexpr Kind kinds[] = {{"sparse", 200, 5, 0}, {"mask", 2000, 0, 300}, {"short_runs", 12, 3, 4}, {"noise", 0, 64, 0}};

Bytes Data(const Kind& kind) {
    std::mt19937 random(1);
    Bytes data;
    const auto add = [&](int mean, auto byte) {
        const int length = mean == 0 ? 0 : 1 + static_cast<int>(random() % (2U * static_cast<unsigned>(mean) - 1));
        for (int i = 0; i < length && data.size() < Size; ++i) data.push_back(static_cast<unsigned char>(byte()));
    };
    const bool isNoise = kind.zeros == 0;
    while (data.size() < Size) {
        add(kind.zeros, [] { return 0; });
        add(kind.ones, [] { return 0xFF; });
        add(kind.literals, [&] { return isNoise ? random() % 256 : 1 + random() % 254; });
    }
    return data;
}

struct Ours {
    static int Room(int size) { return rle_max_compressed_size(size); }
    static int Pack(Bytes& in, Bytes& out) {
        return rle_compress(Size, in.data(), static_cast<int>(out.size()), out.data());
    }
    static int Unpack(Bytes& in, int, Bytes& out) { return rle_uncompress(in.data(), Size, out.data()); }
};

template <int Acceleration>
struct Lz4 {
    static int Room(int size) { return LZ4_compressBound(size); }
    static int Pack(Bytes& in, Bytes& out) {
        return LZ4_compress_fast(reinterpret_cast<char*>(in.data()), reinterpret_cast<char*>(out.data()), Size,
                                 static_cast<int>(out.size()), Acceleration);
    }
    static int Unpack(Bytes& in, int size, Bytes& out) {
        return LZ4_decompress_safe(reinterpret_cast<char*>(in.data()), reinterpret_cast<char*>(out.data()), size, Size);
    }
};

// What only fills or copies; it "packs" by reading.
struct Memory {
    static int Room(int size) { return size; }
    static int Pack(Bytes& in, Bytes& out) {
        std::memcpy(out.data(), in.data(), Size);
        return Size;
    }
    static int Unpack(Bytes&, int, Bytes& out) {
        std::memset(out.data(), 0, Size);
        return Size;
    }
};

template <class Coder>
void Register(const std::string& who) {
    for (const Kind& kind : kinds) {
        const auto add = [&](const std::string& operation, bool unpacks) {
            benchmark::RegisterBenchmark(
                (operation + "/" + who + "/" + kind.name).c_str(), [kind, unpacks](benchmark::State& state) {
                    Bytes data = Data(kind), packed(static_cast<std::size_t>(Coder::Room(Size)));
                    const int size = Coder::Pack(data, packed);
                    for (auto _ : state) {
                        benchmark::DoNotOptimize(unpacks ? Coder::Unpack(packed, size, data)
                                                         : Coder::Pack(data, packed));
                        benchmark::ClobberMemory();
                    }
                    if (!unpacks) state.counters["size_percent"] = 100.0 * size / Size;
                });
        };
        add("compress", false);
        add("expand", true);
    }
}

const bool registered = [] {
    Register<Ours>("ours");
    Register<Lz4<1>>("lz4");
    Register<Lz4<16>>("lz4_fast");
    Register<Memory>("memory");
    return true;
}();

}  // namespace
