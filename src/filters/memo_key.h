// The key under which a filter remembers a text.
#ifndef FILTERS_MEMO_KEY_H
#define FILTERS_MEMO_KEY_H

#include <cstddef>
#include <string_view>

namespace zel {

// The UTF-8 form of a text, if no other text has the same form. A text that contains U+0000, which would end a key, or
// a code that is no Unicode scalar value has no key. Without memory, which is reported, there is no key either.
class MemoKey {
public:
    explicit MemoKey(std::u32string_view text) noexcept;
    MemoKey(const MemoKey&) = delete;
    MemoKey& operator=(const MemoKey&) = delete;
    ~MemoKey();

    bool Exists() const noexcept { return _bytes != nullptr; }
    // NUL-terminated.
    const char* Text() const noexcept { return _bytes; }
    std::string_view View() const noexcept { return {_bytes, _size}; }

private:
    bool Write(std::u32string_view text) noexcept;
    void Drop() noexcept;

    char* _bytes;  // _inside, or a block if the text might not fit; null without a key
    std::size_t _size = 0;
    char _inside[1024];
};

}  // namespace zel

#endif
