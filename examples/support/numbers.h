// Numbers in the words of a command line and in the fields of a record.
#ifndef EXAMPLES_SUPPORT_NUMBERS_H
#define EXAMPLES_SUPPORT_NUMBERS_H

#include <charconv>
#include <string_view>
#include <system_error>

// False, and `number` as it was, when the text is anything but a decimal number from `least` to `most`.
template <class Number>
bool ReadNumber(std::string_view text, Number least, Number most, Number& number) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) return false;
    number = value;
    return true;
}

#endif
