// The library's headers beside the system's, which turn names of functions into macros.
#include "support/testing.h"

// Of system_names.cpp.
const char* NamesBefore();
const char* NamesAfter();
const char* NamesBeforeUnicode();
const char* NamesAfterUnicode();
const char* NamesBeforeLean();
const char* NamesAfterLean();
const char* NamesBeforeUnicodeLean();
const char* NamesAfterUnicodeLean();

TEST(Headers, StandBesideTheSystemsInEveryOrder) {
    const auto orders = {NamesBefore,     NamesAfter,     NamesBeforeUnicode,     NamesAfterUnicode,
                         NamesBeforeLean, NamesAfterLean, NamesBeforeUnicodeLean, NamesAfterUnicodeLean};
    for (const auto& names : orders) EXPECT_STREQ(names(), nullptr) << "order " << &names - orders.begin();
}
