// The hash that decides the bucket of a key, and with it the order of every walk: it must never change.
//
// Starting at 0, each byte b makes it hash * 31 + b modulo 2^32, with b taken as a signed 8-bit number.
#ifndef CONTAINERS_TEXT_HASH_H
#define CONTAINERS_TEXT_HASH_H

#include <cstdint>
#include <string_view>

std::uint32_t HashText(std::string_view text) noexcept;

#endif
