// The key under which a filter remembers a text.
#ifndef FILTERS_MEMO_KEY_H
#define FILTERS_MEMO_KEY_H

#include <cstddef>
#include <string_view>

namespace zel {

// The UTF-8 form of a text, where that tells it from every other text. It does not when the text holds U+0000, which
// would end a key, or a code that is no Unicode scalar value: such a text has no key, and neither has one for which
// memory runs out.
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

    char* _bytes;  // malloc'd where the text might not fit inside; null without a key
    std::size_t _size = 0;
    char _inside[1024];
};

}  // namespace zel

#endif
