// The key is UTF-8, inside the object if it surely fits, otherwise in a block.

#include "filters/memo_key.h"

#include "base/failure_report.h"
#include "base/memory.h"
#include "base/utf8.h"

using namespace zel;

namespace {

// Whether the UTF-8 form of the code is that of no other code, and no NUL.
bool HasUtf8OfItsOwn(char32_t code) noexcept {
    return (code != 0 && code < 0xD800) || (code > 0xDFFF && code <= 0x10FFFF);
}

}  // namespace

MemoKey::MemoKey(std::u32string_view text) noexcept : _bytes(_inside) {
    const std::size_t room = text.size() * MaxUtf8Length + 1;
    if (room > sizeof _inside) _bytes = AllocateArray<char>(room);
    if (_bytes == nullptr)
        ReportAllocFailure("TAUnicodeRegularExpression", room);
    else if (!Write(text))
        Drop();
}

MemoKey::~MemoKey() {
    Drop();
}

bool MemoKey::Write(std::u32string_view text) noexcept {
    char* out = _bytes;
    for (const char32_t code : text) {
        if (code < 0x80 && code != 0)
            *out++ = static_cast<char>(code);
        else if (HasUtf8OfItsOwn(code))
            out += PutUtf8(code, out);
        else
            return false;
    }
    *out = '\0';
    _size = static_cast<std::size_t>(out - _bytes);
    return true;
}

void MemoKey::Drop() noexcept {
    if (_bytes != _inside) Free(_bytes);
    _bytes = nullptr;
}
