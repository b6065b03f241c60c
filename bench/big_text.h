// A text of 200 MB for the benchmarks of reading, in the system's cache.
#ifndef BENCH_BIG_TEXT_H
#define BENCH_BIG_TEXT_H

#include <fstream>
#include <random>
#include <string>

#include "TAFileName.h"

// Gone with the program.
class BigText {
public:
    BigText() : _name(TAFileName::GetTemporaryFileName()) {
        constexpr std::size_t Size = 200'000'000;
        std::mt19937 random(1);
        std::ofstream file(std::string(_name.GetNativeName()), std::ios::binary);
        for (std::size_t size = 0; size < Size;) {
            std::string line(random() % 109, 'x');
            line += '\n';
            file << line;
            size += line.size();
        }
    }
    BigText(const BigText&) = delete;
    BigText& operator=(const BigText&) = delete;
    ~BigText() { _name.Delete(); }

    // Lines of 55 bytes on average.
    static const TAFileName& Name() {
        static const BigText text;
        return text._name;
    }

private:
    TAFileName _name;
};

#endif
