// An arena for many short texts that end together: one allocation for each 64 KB of them.
//
//     ZELStringPool pool;
//     const char* const name = pool.create("scan_sources");
//
// Give one to maps whose keys shall end at once (ZELHashSCMap); for texts that change or end one by one use ZELString.
//
// Texts are packed back to back; none is ever moved, and none given back before all are. A text has at most 65531
// characters. A copied pool, constructed or assigned, is a view: it shares the blocks of the original, owns nothing,
// and must not be used after the original was cleared or ended. A view that creates a text starts blocks of its own.
// Assigning to a pool first clears it.
//
// When a text is too long or memory runs out, lines that start with "# Error : unable to" go to standard output
// (they end without an end of line) and the result is null. Nothing throws, nothing blocks.
// Distinct pools may be used from distinct threads; one pool needs a lock of the caller's.
#ifndef ZELSTRINGPOOL_H
#define ZELSTRINGPOOL_H

#include "ZELExport.h"

class ZEL_API ZELStringPool {
public:
    ZELStringPool() noexcept = default;
    ZELStringPool(const ZELStringPool& other) noexcept;
    ZELStringPool& operator=(const ZELStringPool& other) noexcept;
    ~ZELStringPool();

    // A copy of `text`, valid until the pool is cleared or ends; null for a null text.
    char* create(const char* text) noexcept;
    // Gives every block back; every text that was handed out is invalid from then on.
    void clear() noexcept;

private:
    struct Block;

    char* alloc(int size) noexcept;

    Block* _block = nullptr;  // the newest; each knows the one before it
    int _remaining = 0;       // bytes still free in _block
    bool _isView = false;     // the blocks belong to another pool
};

#endif
