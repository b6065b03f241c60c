// scan_sources: walks a source tree, counts files, lines, bytes and identifiers, and prints the most frequent ones.
//
//     scan_sources                       the C++ headers of this machine
//     scan_sources --top 5 ../project    the five most frequent identifiers of a tree
//
// Exit code 0 when everything was read, 1 when the tree or a part of it could not be, 2 for a wrong command line.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <string>
#include <string_view>

#include "TADiagnostics.h"
#include "TAIndex.h"
#include "ZELDirectory.h"
#include "ZELListVal.h"
#include "ZELListValZELString.h"
#include "ZELString.h"
#include "support/machine.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Word {
    ZELString text;
    long count = 0;
};

struct Totals {
    long files = 0, unreadable = 0, lines = 0, identifiers = 0;
    long long bytes = 0;
};

// A line that rewrites itself on a terminal, and a plain line now and then elsewhere.
class Progress {
public:
    void Show(const Totals& totals) {
        const auto pause = _terminal ? std::chrono::milliseconds(100) : std::chrono::milliseconds(5000);
        if (Clock::now() - _shown < pause) return;
        _shown = Clock::now();
        std::fprintf(stderr, _terminal ? "\r   %ld files, %lld KB" : "   %ld files, %lld KB\n", totals.files,
                     totals.bytes / 1000);
    }
    ~Progress() {
        if (_terminal) std::fputs("\r                                        \r", stderr);
    }

private:
    bool _terminal = IsTerminal(stderr);
    Clock::time_point _shown = Clock::now();
};

bool BeginsIdentifier(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool ContinuesIdentifier(char c) {
    return BeginsIdentifier(c) || (c >= '0' && c <= '9');
}

class Scanner {
public:
    // Every regular file below `directory`; links are not followed.
    void ScanTree(const ZELString& directory) {
        ZELListValZELString waiting;
        waiting.Append(directory);
        while (waiting.Size() > 0) {
            const ZELString current = waiting[waiting.Size()];
            waiting.RemovePosition(waiting.Size());
            ScanDirectory(current, waiting);
        }
    }

    const Totals& Result() const { return _totals; }
    int DistinctIdentifiers() const { return _index.Size(); }

    // All identifiers, the most frequent first; those of one frequency in alphabetic order.
    ZELListVal<Word> MostFrequent() const {
        ZELListVal<Word> words;
        for (int i = 0; i < _index.Size(); ++i) words.Append({_index[i], *static_cast<const long*>(_index.Get(i))});
        words.QuickSort([](Word* one, Word* other) {
            return one->count == other->count ? 0 : one->count > other->count ? -1 : 1;
        });
        return words;
    }

private:
    void ScanDirectory(const ZELString& directory, ZELListValZELString& waiting) {
        ZELDirectoryHandle handle;
        if (ZELOpenDirectory(directory, &handle) != 0) return Unreadable(directory);
        ZELDirectoryEntry entry;
        int end = 0;
        while (ZELReadDirectory(&handle, &entry, &end) == 0 && end == 0) {
            if (std::strcmp(entry.name, ".") == 0 || std::strcmp(entry.name, "..") == 0) continue;
            const ZELString path = directory + "/" + entry.name;
            // On Linux a name may hold a backslash, which would read as a separator: such entries are left out.
            if (std::strchr(entry.name, '\\') != nullptr)
                Unreadable(path);
            else if (entry.kind == ZELEntryDirectory)
                waiting.Append(path);
            else if (entry.kind == ZELEntryFile)
                ScanFile(path);
        }
    }

    void ScanFile(const ZELString& path) {
        std::ifstream file(path, std::ios::binary);
        if (!file) return Unreadable(path);
        _text.clear();
        while (file) {
            constexpr std::size_t Step = 1 << 16;
            const std::size_t before = _text.size();
            _text.resize(before + Step);
            file.read(_text.data() + before, Step);
            _text.resize(before + static_cast<std::size_t>(file.gcount()));
        }
        if (file.bad()) return Unreadable(path);
        ++_totals.files;
        _totals.bytes += static_cast<long long>(_text.size());
        CountText(_text);
        _progress.Show(_totals);
    }

    void CountText(std::string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\n') ++_totals.lines;
            if (!ContinuesIdentifier(text[i])) continue;
            const std::size_t begin = i;
            while (i + 1 < text.size() && ContinuesIdentifier(text[i + 1])) ++i;
            if (BeginsIdentifier(text[begin])) CountIdentifier(text.substr(begin, i + 1 - begin));
        }
    }

    void CountIdentifier(std::string_view identifier) {
        ++_totals.identifiers;
        const ZELString key(identifier);
        if (void* const count = _index[key]) {
            ++*static_cast<long*>(count);
        } else {
            _counts.push_back(1);
            _index.Append(key, &_counts.back());
        }
    }

    void Unreadable(const ZELString& path) {
        ++_totals.unreadable;
        TraceErr(ZELString("cannot read ") + path);
    }

    Totals _totals;
    Progress _progress;
    TAIndex _index;            // identifier -> its count
    std::deque<long> _counts;  // never moves its elements
    std::string _text;
};

void Report(const Scanner& scanner, int top, double seconds) {
    const Totals& totals = scanner.Result();
    const ZELListVal<Word> words = scanner.MostFrequent();
    std::printf("   %-32s %12s %8s\n", "identifier", "count", "share");
    for (int i = 1; i <= top && i <= words.Size(); ++i) {
        const double share = 100.0 * static_cast<double>(words[i].count) / static_cast<double>(totals.identifiers);
        std::printf("   %-32s %12ld %7.2f%%\n", words[i].text.CastToCharPtr(), words[i].count, share);
    }
    std::printf("\n   %ld files, %ld lines, %lld bytes, %ld identifiers, %d distinct\n", totals.files, totals.lines,
                totals.bytes, totals.identifiers, scanner.DistinctIdentifiers());
    std::printf("   %.2f s: %.0f files/s, %.0f lines/s, %.1f MB/s\n", seconds,
                static_cast<double>(totals.files) / seconds, static_cast<double>(totals.lines) / seconds,
                static_cast<double>(totals.bytes) / 1e6 / seconds);
    std::fflush(stdout);
}

int Usage(std::FILE* stream, int result) {
    std::fputs("usage: scan_sources [--top N] [DIRECTORY]\n", stream);
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    int top = 10;
    ZELString directory;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument(argv[i]);
        if (argument == "--help") return Usage(stdout, 0);
        if (argument == "--top" && i + 1 < argc && (top = static_cast<int>(std::strtol(argv[i + 1], nullptr, 10))) > 0)
            ++i;
        else if (argument.starts_with("-") || directory.Length() > 0)
            return Usage(stderr, 2);
        else
            directory = argv[i];
    }
    if (directory.Length() == 0) directory = DefaultHeaderDirectory();
    if (directory.Length() == 0) {
        TraceStdErr("scan_sources: this machine does not tell where its C++ headers are; name a directory");
        return 2;
    }
    ZELDirectoryHandle test;
    if (ZELOpenDirectory(directory, &test) != 0) {
        TraceStdErr(ZELString("scan_sources: ") + directory + " is no directory that can be read");
        return 1;
    }

    Trace(ZELString("scan_sources ") + directory, 1);
    const Clock::time_point begin = Clock::now();
    Scanner scanner;
    scanner.ScanTree(directory);
    const std::chrono::duration<double> elapsed = Clock::now() - begin;
    Report(scanner, top, elapsed.count());
    return scanner.Result().unreadable == 0 ? 0 : 1;
}
