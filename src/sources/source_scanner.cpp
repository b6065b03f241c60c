// One function for each kind of element, each of which goes from one byte that means something to the next and treats
// what lies between as a run: sixteen bytes at a time are compared with the few bytes that matter in the element, and
// copied in the same step when they stay.
//
// Invariants: _at <= _end, and the output is never longer than what was read. Steps read and write up to 16 bytes
// behind the two ends, where both blocks have room; bytes that a step wrote too many are overwritten by the next.
// The dangerous cases are the last bytes: a backslash, a slash or a star there has no second byte.

#include "sources/source_scanner.h"

#include <bit>

#include "ZELFilePrepro.h"
#include "base/bytes16.h"

using namespace zel;

namespace {

class Scanner {
public:
    Scanner(const char* text, std::size_t length, char* output) noexcept
        : _at(text), _end(text + length), _output(output) {}

    void Strip(int removed) noexcept;
    bool IsComplete() const noexcept { return _complete; }
    const char* OutputEnd() const noexcept { return _output; }

private:
    template <bool Keep, char... Stops>
    void Run() noexcept;
    void Take(bool keep) noexcept {
        *_output = *_at++;
        if (keep) ++_output;
    }
    void TakePair(bool keep) noexcept {
        Take(keep);
        Take(keep);
    }
    bool HasSecond() const noexcept { return _end - _at > 1; }

    template <bool Keep>
    bool LineComment() noexcept;
    template <bool Keep>
    bool BlockComment() noexcept;
    template <bool Keep>
    bool PreprocessorLine() noexcept;
    template <bool Keep, char Quote>
    bool Literal() noexcept;

    const char* _at;
    const char* const _end;
    char* _output;
    bool _complete = true;
};

// Goes to the next of the stops, or to the end.
template <bool Keep, char... Stops>
void Scanner::Run() noexcept {
    constexpr std::ptrdiff_t Step = 16;
    while (_at < _end) {
        const Bytes16 bytes = LoadBytes(_at);
        if constexpr (Keep) StoreBytes(_output, bytes);
        const unsigned found = ByteMask((EqualBytes(bytes, RepeatByte(Stops)) | ...));
        std::ptrdiff_t count = found != 0 ? std::countr_zero(found) : Step;
        if (count > _end - _at) count = _end - _at;
        _at += count;
        if constexpr (Keep) _output += count;
        if (found != 0) return;
    }
}

// The elements. Each begins behind its opening byte or pair, and is false when the text ends in it.

template <bool Keep>
bool Scanner::LineComment() noexcept {
    Run<Keep, '\n'>();
    if (_at == _end) return false;
    Take(true);
    return true;
}

template <bool Keep>
bool Scanner::BlockComment() noexcept {
    for (;;) {
        if constexpr (Keep)
            Run<true, '*'>();
        else
            Run<false, '*', '\n'>();
        if (_at == _end) return false;
        if (*_at == '*' && HasSecond() && _at[1] == '/') {
            TakePair(Keep);
            return true;
        }
        Take(Keep || *_at == '\n');
    }
}

template <bool Keep>
bool Scanner::PreprocessorLine() noexcept {
    for (;;) {
        Run<Keep, '\n', '\\'>();
        if (_at == _end) return false;
        if (*_at == '\n') {
            Take(true);
            return true;
        }
        if (HasSecond())
            TakePair(Keep);
        else
            Take(Keep);
    }
}

template <bool Keep, char Quote>
bool Scanner::Literal() noexcept {
    for (;;) {
        if constexpr (Keep)
            Run<true, Quote, '\\'>();
        else
            Run<false, Quote, '\\', '\n'>();
        if (_at == _end) return false;
        if (*_at == Quote) {
            Take(Keep);
            return true;
        }
        if (*_at == '\\' && HasSecond())
            TakePair(Keep);
        else
            Take(Keep || *_at == '\n');
    }
}

void Scanner::Strip(int removed) noexcept {
    const auto keeps = [=](int element) { return (removed & element) == 0; };
    const bool keepLineComments = keeps(ZELFilePrepro::REMOVE_SLCOMMENTS);
    const bool keepBlockComments = keeps(ZELFilePrepro::REMOVE_MLCOMMENTS);
    const bool keepPreprocessor = keeps(ZELFilePrepro::REMOVE_PREPRO);
    const bool keepSingle = keeps(ZELFilePrepro::REMOVE_SQSTRINGS);
    const bool keepDouble = keeps(ZELFilePrepro::REMOVE_DQSTRINGS);
    while (_complete) {
        Run<true, '/', '"', '\'', '#', '\\'>();
        if (_at == _end) return;
        const char second = HasSecond() ? _at[1] : '\0';
        if (*_at == '/' && second == '*') {
            TakePair(keepBlockComments);
            _complete = keepBlockComments ? BlockComment<true>() : BlockComment<false>();
        } else if (*_at == '/' && second == '/') {
            TakePair(keepLineComments);
            _complete = keepLineComments ? LineComment<true>() : LineComment<false>();
        } else if (*_at == '"') {
            Take(keepDouble);
            _complete = keepDouble ? Literal<true, '"'>() : Literal<false, '"'>();
        } else if (*_at == '\'') {
            Take(keepSingle);
            _complete = keepSingle ? Literal<true, '\''>() : Literal<false, '\''>();
        } else if (*_at == '#') {
            Take(keepPreprocessor);
            _complete = keepPreprocessor ? PreprocessorLine<true>() : PreprocessorLine<false>();
        } else if (*_at == '\\' && HasSecond()) {
            TakePair(true);
        } else {
            Take(true);
        }
    }
}

}  // namespace

std::size_t zel::StripSource(const char* text, std::size_t length, int removed, char* output, bool& complete) noexcept {
    Scanner scanner(text, length, output);
    scanner.Strip(removed);
    complete = scanner.IsComplete();
    return static_cast<std::size_t>(scanner.OutputEnd() - output);
}
