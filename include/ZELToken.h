// Cuts a text into tokens.
//
//     ZELToken tokens("/usr/bin:/bin");
//     ZELUnicodeString next = tokens.GetNextToken(":");
//     while (next.GetLengthInChar() > 0) {
//         Search(next);
//         next = tokens.GetNextToken(":");
//     }
//
// Every character of the separators separates; they may differ from call to call. Separators in front of a token are
// skipped and the one that ends it is taken away, so no token is empty: an empty one says that none is left.
// A tokenizer keeps a copy of the text. Distinct objects may be used from distinct threads.
#ifndef ZELTOKEN_H
#define ZELTOKEN_H

#include <cstddef>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELUnicodeString.h"

class ZEL_API ZELToken : public ZELHeapObject {
public:
    explicit ZELToken(const ZELUnicodeString& text) noexcept;
    virtual ~ZELToken();
    ZELToken(const ZELToken&) = default;
    ZELToken& operator=(const ZELToken&) = default;

    // The next token; empty (not null) when none is left. Without separators, all that is left.
    ZELUnicodeString GetNextToken(const ZELUnicodeString& separators) noexcept;

private:
    ZELUnicodeString _text;
    std::size_t _position = 0;  // of the first character that no call has taken yet
};

#endif
