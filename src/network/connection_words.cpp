// Compressed blocks: each word travels in full once, and then as its number.
//
// A word enters the table of the sender when both its number and its text were accepted, so that the tables of both
// ends agree as long as the connection exists. An item that would be rejected in the middle of a block is
// found before the block begins.
//
// Hazard: a peer that makes much of little. A number of four bytes is a word of any length, so the length of the
// rebuilt text is limited to that of a block.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "network/block_header.h"
#include "network/connection.h"

using namespace zel;

namespace {

constexpr int EndOfWords = -1;

// Blanks cut and so do NULs.
bool Cuts(char c) noexcept {
    return (c & 0xDF) == 0;
}

// Calls `visit` with each word of the text, empty ones included, until it fails.
template <class Visit>
bool ForEachWord(std::string_view text, Visit visit) noexcept {
    for (;;) {
        const auto end = std::find_if(text.begin(), text.end(), Cuts);
        const auto length = static_cast<std::size_t>(end - text.begin());
        if (!visit(text.substr(0, length))) return false;
        if (length == text.size()) return true;
        text.remove_prefix(length + 1);
    }
}

}  // namespace

bool zel::SplitAtBlanks(std::string_view text, ZELListValZELString& words) noexcept {
    for (;;) {
        const std::size_t length = std::min(text.find(' '), text.size());
        if (words.Append(ZELString(text.substr(0, length))) != 0) return false;
        if (length == text.size()) return true;
        text.remove_prefix(length + 1);
    }
}

// Whether the buffer can ever hold the word with its length.
bool TASocketConnection::TakesWord(std::string_view word) const noexcept {
    return static_cast<std::int64_t>(word.size()) + 4 < _out.Capacity();
}

// Gives the number of the word, and sends both first when they are new.
int TASocketConnection::DefineWord(std::string_view word, int& number) noexcept {
    number = _sent.Find(word);
    if (number >= 0) return 0;
    number = _sent.Next();
    if (PutInteger(number) != 0 || PutString(word) != 0) return 1;
    return _sent.Add(word) ? 0 : Fail("Unable to flush buffer");
}

int TASocketConnection::PutCompressedText(std::string_view text) noexcept {
    const auto length = static_cast<int>(text.size());
    if (length > MostBlockBytes) return _owner.RefuseItem(length);
    if (!TakesWord(text)) {
        // Perhaps because of one of its words.
        std::int64_t tooLong = -1;
        ForEachWord(text, [&](std::string_view word) {
            if (!TakesWord(word)) tooLong = static_cast<std::int64_t>(word.size());
            return tooLong < 0;
        });
        if (tooLong >= 0) return _owner.RefuseItem(tooLong);
    }
    const auto count = static_cast<int>(std::count_if(text.begin(), text.end(), Cuts)) + 1;
    const std::unique_ptr<int, FreeBlock> numbers(AllocateArray<int>(static_cast<std::size_t>(count)));
    if (numbers == nullptr) {
        ReportAllocFailure("TASocket", static_cast<std::size_t>(count) * sizeof(int));
        return _owner.RefuseItem(length);
    }
    if (MakeRoom(BlockHeaderSize, length) != 0) return 1;
    AppendHeader(-length);
    int* next = numbers.get();
    if (!ForEachWord(text, [&](std::string_view word) { return DefineWord(word, *next++) == 0; })) return 1;
    if (PutInteger(EndOfWords) != 0 || PutInteger(count) != 0) return 1;
    return std::all_of(numbers.get(), next, [&](int number) { return PutInteger(number) == 0; }) ? 0 : 1;
}

int TASocketConnection::PutCompressedList(const ZELListValZELString& words) noexcept {
    for (const ZELString& word : words)
        if (!TakesWord(word.View())) return _owner.RefuseItem(word.Length());
    if (MakeRoom(BlockHeaderSize, words.Size()) != 0) return 1;
    AppendHeader(-words.Size());
    int ignored = 0;
    for (const ZELString& word : words)
        if (DefineWord(word.View(), ignored) != 0) return 1;
    if (PutInteger(EndOfWords) != 0 || PutInteger(words.Size()) != 0) return 1;
    // In full, although the peer knows them now: this is how lists travel.
    for (const ZELString& word : words)
        if (PutString(word.View()) != 0) return 1;
    return 0;
}

bool TASocketConnection::ReadDictionary() noexcept {
    for (;;) {
        int number = 0;
        if (!ReadInteger(number)) return false;
        if (number == EndOfWords) return true;
        ZELString word;
        if (!ReadString(word) || !_received.Add(number, std::move(word))) return false;
    }
}

// Into an empty `text`.
bool TASocketConnection::ReadCompressedText(ZELString& text) noexcept {
    int count = 0;
    if (!ReadDictionary() || !ReadInteger(count) || count < 0) return false;
    for (int i = 0; i < count; ++i) {
        int number = 0;
        const ZELString* const word = ReadInteger(number) ? _received.Find(number) : nullptr;
        if (word == nullptr) return false;
        const std::int64_t wanted = std::int64_t{text.Length()} + (i > 0 ? 1 : 0) + word->Length();
        if (wanted > MostBlockBytes) return false;
        if (i > 0) text += ' ';
        text += *word;
        if (text.Length() != wanted) return false;
    }
    return true;
}

// Appends the items, and returns their bytes.
bool TASocketConnection::ReadCompressedList(ZELListValZELString& words, std::int64_t& bytes) noexcept {
    bytes = 0;
    int count = 0;
    if (!ReadDictionary() || !ReadInteger(count) || count < 0) return false;
    for (int i = 0; i < count; ++i) {
        ZELString item;
        if (!ReadString(item)) return false;
        bytes += item.Length();
        if (words.Append(item) != 0) return false;
    }
    return true;
}
