// What every file of this folder needs for calls that take UTF-16.
#ifndef PLATFORM_WINDOWS_WIDE_TEXT_H
#define PLATFORM_WINDOWS_WIDE_TEXT_H

#include <cstddef>
#include <string_view>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/text.h"

namespace zel {

// A terminated copy of 8-bit text in the system's encoding.
class WideText {
public:
    explicit WideText(std::string_view text) noexcept {
        const std::size_t size = (text.size() + 1) * sizeof(wchar_t);  // no byte gives more than one unit
        _text = static_cast<wchar_t*>(Allocate(size));
        if (_text == nullptr) {
            ReportAllocFailure("WideText", size);
            return;
        }
        _length = ToUtf16(text, reinterpret_cast<unsigned short*>(_text), text.size());
        _text[_length] = L'\0';
    }
    WideText(const WideText&) = delete;
    WideText& operator=(const WideText&) = delete;
    ~WideText() { Free(_text); }

    // Null when memory ran out (said on standard output).
    wchar_t* Text() const noexcept { return _text; }
    std::size_t Length() const noexcept { return _length; }

private:
    wchar_t* _text;
    std::size_t _length = 0;
};

}  // namespace zel

#endif
