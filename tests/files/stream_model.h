// A reading stream, one byte after the other.
#ifndef TESTS_FILES_STREAM_MODEL_H
#define TESTS_FILES_STREAM_MODEL_H

#include "YAVFStream.h"
#include "support/testing.h"

class StreamModel {
public:
    explicit StreamModel(std::string bytes) : _bytes(std::move(bytes)) {}

    int Line(std::string& line, int delimiter, int skipEmpty, std::size_t most = SIZE_MAX) {
        do {
            line.clear();
            bool met = false;
            while (!met && line.size() < most) {
                const int c = Next();
                if (c < 0) break;
                met = c == delimiter;
                if (!met) line += static_cast<char>(c);
            }
            if (line.empty() && !met) return 1;
        } while (line.empty() && skipEmpty);
        return 0;
    }
    std::string Read(std::size_t size) {
        atEnd = false;
        std::string bytes;
        for (int c = 0; bytes.size() < size && (c = Next()) >= 0;) bytes += static_cast<char>(c);
        return bytes;
    }
    int Next() {
        if (_at < _bytes.size()) return static_cast<unsigned char>(_bytes[_at++]);
        atEnd = true;
        return -1;
    }

    bool atEnd = false;

private:
    std::string _bytes;
    std::size_t _at = 0;
};

// Reads all in random ways. With `other`, which borrows the file too, takes turns with it.
inline void Compare(YAVIFStream& stream, std::FILE* other, StreamModel model, std::mt19937& random) {
    const int delimiters[] = {'\n', '\n', '\n', 0, 255, -1, 266};
    std::string expected;
    for (int afterEnd = 0; afterEnd < 4; afterEnd += model.atEnd ? 1 : 0) {
        const int delimiter = delimiters[random() % std::size(delimiters)];
        switch (random() % (other != nullptr ? 4 : 3)) {
            case 0: {
                const int skipEmpty = static_cast<int>(random() % 2);
                ZELString line("old");
                const int result = model.Line(expected, delimiter, skipEmpty);
                ASSERT_EQ(stream.getline(line, delimiter, skipEmpty), result);
                ASSERT_EQ(line.View(), expected);
                break;
            }
            case 1: {
                std::vector<char> block(2 + random() % (random() % 8 == 0 ? 100000 : 60), 'x');
                ASSERT_EQ(model.Line(expected, delimiter, 0, block.size() - 1),
                          stream.getline(block.data(), block.size(), delimiter));
                expected.resize(block.size());
                ASSERT_EQ(std::string(block.begin(), block.end()), expected);
                break;
            }
            case 2: {
                std::vector<char> block(1 + random() % (random() % 8 == 0 ? 150000 : 300));
                const std::size_t size = random() % (block.size() + 1);
                expected = model.Read(size);
                ASSERT_EQ(stream.read(block.data(), size), expected.size());
                ASSERT_EQ(std::string(block.data(), expected.size()), expected);
                break;
            }
            default:
                ASSERT_EQ(std::fgetc(other), model.Next());
        }
        ASSERT_EQ(stream.endOfFile(), model.atEnd ? 1 : 0);
        ASSERT_EQ(stream.GetErrno() + stream.ReadError(), 0);
    }
}

#endif
