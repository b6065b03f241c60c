// scan_sources: walks a source tree, counts files, lines, bytes and identifiers, and prints the most frequent ones.
//
//     scan_sources                                  the C++ headers of this machine
//     scan_sources --top 5 ../project               the five most frequent identifiers of a tree
//     scan_sources --match '*.h||*.cpp' ../project  in files of these names
//     scan_sources --record scan.txt ../project     leaves a record for report_run
//
// Comments and literals are no source of identifiers; the rest of the text, directives included, is. The files are
// loaded ahead by a pool while those before them are counted.
//
// The record has lines of fields with a tab between them:
//
//     scan        directory, files, unreadable ones, lines, bytes, identifiers, distinct ones, milliseconds
//     identifier  its text, how often it occurs; one line for each that is printed
//     counter     a counter's report
//
// Exit code 0 when everything was read, 1 when the tree or a part of it could not be, 2 for a wrong command line or a
// record that cannot be written.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <limits>
#include <string>
#include <string_view>

#include "TADiagnostics.h"
#include "TAPerfo.h"
#include "TATextUtilities.h"
#include "ZELDirectory.h"
#include "ZELFileBuffer.h"
#include "ZELFileBufferPool.h"
#include "ZELFilePrepro.h"
#include "ZELHashSCMap.h"
#include "ZELListVal.h"
#include "ZELListValZELString.h"
#include "ZELString.h"
#include "ZELStringPool.h"
#include "support/machine.h"
#include "support/numbers.h"
#include "support/output.h"
#include "support/progress.h"
#include "support/record.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
    int top = 10;
    ZELString match = "*";
    ZELString directory;
    ZELString record;
};

struct Totals {
    long files = 0, unreadable = 0, unfinished = 0, lines = 0, identifiers = 0;
    long long bytes = 0;
};

// The files of a tree whose names match. Links are not followed.
class Tree {
public:
    Tree(const ZELString& directory, const ZELString& match) : _match(match) {
        ZELListValZELString waiting;
        if (waiting.Append(directory) != 0) Miss(directory);
        while (waiting.Size() > 0) {
            const ZELString current = waiting[waiting.Size()];
            waiting.RemovePosition(waiting.Size());
            List(current, waiting);
        }
    }
    const ZELListValZELString& Files() const { return _files; }
    long Unreadable() const { return _unreadable; }

private:
    void List(const ZELString& directory, ZELListValZELString& waiting) {
        ZELDirectoryHandle handle;
        if (ZELOpenDirectory(directory, &handle) != 0) return Miss(directory);
        ZELDirectoryEntry entry;
        int end = 0;
        for (;;) {
            const int result = ZELReadDirectory(&handle, &entry, &end);
            if (result != 0) Miss(directory);  // it failed, or a name was too long
            if (end != 0) return;
            if (result != 0) continue;
            if (std::strcmp(entry.name, ".") == 0 || std::strcmp(entry.name, "..") == 0) continue;
            const ZELString path = directory + "/" + entry.name;
            ZELString name(entry.name);
            // On Linux a name may hold a backslash, which a path reads as a separator: such entries are left out.
            bool isTaken = std::strchr(entry.name, '\\') == nullptr && !name.IsIncomplete();
            if (isTaken && entry.kind == ZELEntryDirectory)
                isTaken = waiting.Append(path) == 0;
            else if (isTaken && entry.kind == ZELEntryFile && TestMatchWithLogExp(name, _match) != 0)
                isTaken = _files.Append(path) == 0;
            if (!isTaken) Miss(path);
        }
    }
    void Miss(const ZELString& path) {
        ++_unreadable;
        TraceErr(ZELString("cannot read ") + path);
    }

    ZELString _match;
    ZELListValZELString _files;
    long _unreadable = 0;
};

// How often each identifier occurs.
class Identifiers {
public:
    struct Word {
        ZELString text;
        long count = 0;
    };

    // False without memory.
    bool Count(std::string_view identifier) {
        void* count = nullptr;
        if (_map.search(identifier, &count) != 0) {
            ++*static_cast<long*>(count);
            return true;
        }
        _counts.push_back(1);
        const ZELString key(identifier);
        return !key.IsIncomplete() && _map.insert(key, &_counts.back()) != nullptr;
    }
    int Distinct() { return _map.size(); }

    // The most frequent first; those of one frequency in alphabetic order.
    ZELListVal<Word> MostFrequent() const {
        ZELListVal<Word> words;
        for (const auto& [text, count] : _map) words.Append({text, *static_cast<const long*>(count)});
        words.QuickSort([](Word* one, Word* other) {
            if (one->count != other->count) return one->count > other->count ? -1 : 1;
            return CompareTAStrings(&one->text, &other->text);
        });
        return words;
    }

private:
    ZELStringPool _pool;  // outlives the map, whose keys it holds
    ZELHashSCMap _map{&_pool};
    std::deque<long> _counts;  // never moves its elements
};

bool BeginsIdentifier(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool ContinuesIdentifier(char c) {
    return BeginsIdentifier(c) || (c >= '0' && c <= '9');
}

class Scanner {
public:
    // Keeps so many files on their way through the pool: enough for it to be ahead, few enough for any tree.
    static constexpr int Ahead = 64;

    void Scan(const ZELListValZELString& files) {
        ZELFileBufferPool::enableMultiThread();
        ZELFileBufferPool pool;
        std::deque<ZELFileBuffer*> onTheWay;
        Progress progress;
        for (int next = 1, done = 1; done <= files.Size(); ++done) {
            for (; next <= files.Size() && next < done + Ahead; ++next) {
                onTheWay.push_back(new ZELFileBuffer(files[next]));
                pool.append(onTheWay.back());
            }
            ZELFileBuffer* const file = onTheWay.front();
            onTheWay.pop_front();
            ScanFile(*file);
            file->Release();
            progress.Show([&] {
                return toString(done) + " of " + toString(files.Size()) + " files, " +
                       toString(static_cast<int>(_totals.bytes / 1000)) + " KB";
            });
        }
    }

    const Totals& Result() const { return _totals; }
    Identifiers& Words() { return _identifiers; }

private:
    void ScanFile(ZELFileBuffer& file) {
        const char* const text = file.getBuffer();
        if (text == nullptr || file.getStatus() != ZELFileBuffer::Loaded) return Miss(file);
        const std::string_view all(text, static_cast<std::size_t>(file.getBufferSize()));
        ++_totals.files;
        _totals.bytes += static_cast<long long>(all.size());
        _bytesRead.Count(file.getBufferSize());
        for (const char c : all) _totals.lines += c == '\n';
        constexpr int removed = ZELFilePrepro::REMOVE_SLCOMMENTS | ZELFilePrepro::REMOVE_MLCOMMENTS |
                                ZELFilePrepro::REMOVE_SQSTRINGS | ZELFilePrepro::REMOVE_DQSTRINGS;
        char* stripped = nullptr;
        const int result = ZELFilePrepro(text, all.size()).preprocess(removed, stripped);
        if (result == 1) return Miss(file);
        if (result == 2) ++_totals.unfinished;
        const bool isCounted = CountText(stripped);
        std::free(stripped);
        if (!isCounted) Miss(file);
    }

    void Miss(const ZELFileBuffer& file) {
        ++_totals.unreadable;
        TraceErr(ZELString("cannot read ") + file.getFileName());
    }

    // False without memory.
    bool CountText(std::string_view text) {
        bool areCounted = true;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (!ContinuesIdentifier(text[i])) continue;
            const std::size_t begin = i;
            while (i + 1 < text.size() && ContinuesIdentifier(text[i + 1])) ++i;
            if (!BeginsIdentifier(text[begin])) continue;
            ++_totals.identifiers;
            areCounted = _identifiers.Count(text.substr(begin, i + 1 - begin)) && areCounted;
        }
        return areCounted;
    }

    Totals _totals;
    Identifiers _identifiers;
    TAPerfo _bytesRead{"bytes scanned"};
};

void Report(Scanner& scanner, const ZELListVal<Identifiers::Word>& words, int top, double seconds) {
    const Totals& totals = scanner.Result();
    std::printf("   %-32s %12s %8s\n", "identifier", "count", "share");
    for (int i = 1; i <= top && i <= words.Size(); ++i) {
        const double share = 100.0 * static_cast<double>(words[i].count) / static_cast<double>(totals.identifiers);
        std::printf("   %-32s %12ld %7.2f%%\n", words[i].text.CastToCharPtr(), words[i].count, share);
    }
    std::printf("\n   %ld files, %ld lines, %lld bytes, %ld identifiers, %d distinct\n", totals.files, totals.lines,
                totals.bytes, totals.identifiers, scanner.Words().Distinct());
    if (totals.unfinished > 0)
        std::printf("   %ld files end inside a comment, a literal or a directive\n", totals.unfinished);
    std::printf("   %.2f s: %.0f files/s, %.0f lines/s, %.1f MB/s\n", seconds,
                static_cast<double>(totals.files) / seconds, static_cast<double>(totals.lines) / seconds,
                static_cast<double>(totals.bytes) / 1e6 / seconds);
    std::fflush(stdout);
}

void WriteRecord(Scanner& scanner, const ZELListVal<Identifiers::Word>& words, const Options& options, double seconds,
                 Record& record) {
    const Totals& totals = scanner.Result();
    record.Add({"scan", options.directory.View(), std::to_string(totals.files), std::to_string(totals.unreadable),
                std::to_string(totals.lines), std::to_string(totals.bytes), std::to_string(totals.identifiers),
                std::to_string(scanner.Words().Distinct()), std::to_string(static_cast<long long>(seconds * 1000))});
    for (int i = 1; i <= options.top && i <= words.Size(); ++i)
        record.Add({"identifier", words[i].text.View(), std::to_string(words[i].count)});
    record.AddCounters();
}

int NoRecord(const Options& options) {
    TraceStdErr(ZELString("scan_sources: cannot write ") + options.record);
    return 2;
}

int Usage(std::FILE* stream, int result) {
    std::fputs(
        "usage: scan_sources [--top N] [--match FORMULA] [--record FILE] [DIRECTORY]\n"
        "\n"
        "  --top     prints so many identifiers, 10 at first\n"
        "  --match   reads files whose names match, such as '*.h||*.cpp'\n"
        "  --record  leaves what was counted in FILE, for report_run\n",
        stream);
    return result;
}

// False for a command line that makes no sense.
bool Read(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument(argv[i]);
        const bool hasValue = i + 1 < argc;
        if (argument == "--top" && hasValue) {
            if (!ReadNumber(argv[++i], 1, std::numeric_limits<int>::max(), options.top)) return false;
        } else if (argument == "--record" && hasValue) {
            options.record = argv[++i];
        } else if (argument == "--match" && hasValue) {
            options.match = argv[++i];
        } else if (argument.starts_with("-") || options.directory.Length() > 0) {
            return false;
        } else {
            options.directory = argv[i];
        }
    }
    return true;
}

int Main(int argc, char** argv) {
    Options options;
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) return Usage(stdout, 0);
    if (!Read(argc, argv, options)) return Usage(stderr, 2);
    if (options.directory.Length() == 0) options.directory = DefaultHeaderDirectory();
    if (options.directory.Length() == 0) {
        TraceStdErr("scan_sources: this machine does not tell where its C++ headers are; name a directory");
        return 2;
    }
    ZELDirectoryHandle test;
    if (ZELOpenDirectory(options.directory, &test) != 0) {
        TraceStdErr(ZELString("scan_sources: ") + options.directory + " is no directory that can be read");
        return 1;
    }

    Record record(options.record);
    if (!record.IsWhole()) return NoRecord(options);
    Trace(ZELString("scan_sources ") + options.directory, 1);
    const Clock::time_point begin = Clock::now();
    const Tree tree(options.directory, options.match);
    Scanner scanner;
    scanner.Scan(tree.Files());
    const std::chrono::duration<double> elapsed = Clock::now() - begin;
    const ZELListVal<Identifiers::Word> words = scanner.Words().MostFrequent();
    Report(scanner, words, options.top, elapsed.count());
    WriteRecord(scanner, words, options, elapsed.count(), record);
    if (!record.Finish()) return NoRecord(options);
    return tree.Unreadable() + scanner.Result().unreadable == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    return ExitCode("scan_sources", Main(argc, argv));
}
