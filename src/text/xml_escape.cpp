// The five entities of XML, written and read on heap blocks and strings, in time that is linear in the result.
//
// Writing counts first, grows the block once, and fills it from the end, so that each byte moves once and what is not
// read yet is never overwritten: the place that is written stays at or behind the place that is read.
// Reading goes through the block once, as a stack: each ";" that arrives may complete an entity at the end of what was
// kept, and the "&" that "&amp;" leaves there may begin another. That gives what a pass for each entity, begun again
// after every replacement, would give: no two occurrences overlap, and only "&amp;" makes new ones.

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "TATextUtilities.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "foundations/text_search.h"
#include "text/xml_text.h"

using namespace zel;

namespace {

struct Entity {
    char character;
    std::string_view text;
};
constexpr std::array<Entity, 5> entities{
    {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&apos;"}}};

// The entity's text between others that do not matter, so that eight bytes which begin or end with it can be copied at
// once, and how much longer than the character it is.
struct Escape {
    static constexpr std::size_t Block = 8;
    char padded[2 * Block];  // the text ends in the middle
    std::uint8_t growth;

    constexpr std::size_t Size() const noexcept { return growth + std::size_t{1}; }
    constexpr const char* Text() const noexcept { return padded + Block - Size(); }
};
struct EscapeTable {
    std::array<std::uint8_t, 256> growth{};  // apart as well, since counting needs nothing else
    std::array<std::uint8_t, 256> number{};
    std::array<Escape, entities.size()> escapes{};
};
constexpr EscapeTable table = [] {
    EscapeTable made;
    for (std::size_t i = 0; i < entities.size(); ++i) {
        const Entity& entity = entities[i];
        const auto byte = static_cast<unsigned char>(entity.character);
        made.number[byte] = static_cast<std::uint8_t>(i);
        made.growth[byte] = made.escapes[i].growth = static_cast<std::uint8_t>(entity.text.size() - 1);
        for (std::size_t c = 0; c < entity.text.size(); ++c)
            made.escapes[i].padded[Escape::Block - entity.text.size() + c] = entity.text[c];
    }
    return made;
}();

std::uint8_t GrowthOf(char character) noexcept {
    return table.growth[static_cast<unsigned char>(character)];
}
const Escape& EscapeOf(char character) noexcept {
    return table.escapes[table.number[static_cast<unsigned char>(character)]];
}

// Spreads the first `length` bytes of `text` to the `write` bytes that their escaped form takes.
void EscapeFromEnd(char* text, std::size_t length, std::size_t write) noexcept {
    std::size_t read = length;
    while (read != write) {  // once they meet, nothing in front has to be escaped
        const std::size_t runEnd = read;
        while (GrowthOf(text[read - 1]) == 0) --read;
        const std::size_t run = runEnd - read;
        write -= run;
        if (run != 0) std::memmove(text + write, text + read, run);
        --read;
        const Escape& escape = EscapeOf(text[read]);
        // A whole block where the bytes in front of the entity are to be written later anyway.
        if (write - read >= Escape::Block)
            std::memcpy(text + write - Escape::Block, escape.padded, Escape::Block);
        else
            std::memcpy(text + write - escape.Size(), escape.Text(), escape.Size());
        write -= escape.Size();
    }
}

// The entity that `text` ends with, or null.
const Entity* EntityAtEnd(std::string_view text) noexcept {
    for (const Entity& entity : entities)
        if (text.ends_with(entity.text)) return &entity;
    return nullptr;
}

// Appends in large pieces: a piece for each entity would cost more than the work on it.
void PutEscaped(XMLOutput& output, std::string_view text) noexcept {
    char room[4096];
    std::size_t used = 0;
    for (const char character : text) {
        if (used + Escape::Block > sizeof room) {
            output.Put({room, used});
            used = 0;
        }
        if (GrowthOf(character) == 0) {
            room[used++] = character;
            continue;
        }
        const Escape& escape = EscapeOf(character);
        std::memcpy(room + used, escape.Text(), Escape::Block);
        used += escape.Size();
    }
    output.Put({room, used});
}

}  // namespace

int encodeXMLString(char*& text) noexcept {
    if (text == nullptr) return 0;
    const std::size_t length = std::strlen(text);
    std::size_t growth = 0;
    for (std::size_t i = 0; i < length; ++i) growth += GrowthOf(text[i]);
    if (growth == 0) return 0;
    char* const grown = static_cast<char*>(Reallocate(text, length + growth + 1));
    if (grown == nullptr) {
        ReportAllocFailure("encodeXMLString", length + growth + 1);
        return 0;
    }
    text = grown;
    text[length + growth] = '\0';
    EscapeFromEnd(text, length, length + growth);
    return 1;
}

int decodeXMLString(char*& text) noexcept {
    if (text == nullptr) return 0;
    const char* read = text;
    const char* const end = text + std::strlen(text);
    char* write = text;
    while (read != end) {
        const void* const semicolon = std::memchr(read, ';', static_cast<std::size_t>(end - read));
        const char* const next = semicolon != nullptr ? static_cast<const char*>(semicolon) + 1 : end;
        const auto size = static_cast<std::size_t>(next - read);
        if (write != read) std::memmove(write, read, size);
        write += size;
        read = next;
        if (const Entity* entity = EntityAtEnd({text, static_cast<std::size_t>(write - text)})) {
            write -= entity->text.size() - 1;
            write[-1] = entity->character;
        }
    }
    if (write == end) return 0;
    *write = '\0';
    return 1;
}

ZELString substituteEntities(ZELString& text) noexcept {
    constexpr std::string_view mark = "toreplace";
    const std::string_view source = text.View();
    XMLOutput output;
    std::size_t done = 0;
    for (std::size_t at; (at = FindText(source, mark, done)) != std::string_view::npos; done = at + mark.size()) {
        PutEscaped(output, source.substr(done, at - done));
        output.Put("&amp;");
    }
    PutEscaped(output, source.substr(done));
    if (text.IsIncomplete()) output.Fail();
    return output.Take();
}
