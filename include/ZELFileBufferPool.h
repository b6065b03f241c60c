// Loads file buffers ahead of need, on a thread of its own, in the order in which they are appended.
//
//     ZELFileBufferPool::enableMultiThread();
//     ZELFileBufferPool pool;
//     for (ZELFileBuffer* file : files) pool.append(file);
//     for (ZELFileBuffer* file : files) {
//         Use(file->getBuffer(), file->getBufferSize());  // waits when the pool is just reading it
//         file->Release();
//     }
//
// The pool stops before the next file while the texts that it has loaded and that are still alive have 64 MiB or more:
// so there are never more than that and one file. A buffer that is asked for before its turn is loaded by who asks,
// and does not count. The thread, "FileBufferPoolThread", sleeps while it has nothing to do.
//
// Worth its while where the files wait on a disk or another processor is free; with a single one it gains nothing.
// append() may be called from any thread, and nothing here waits for the disk but the destructor. Nothing throws.
#ifndef ZELFILEBUFFERPOOL_H
#define ZELFILEBUFFERPOOL_H

#include "ZELExport.h"
#include "ZELFileBuffer.h"
#include "ZELListPtr.h"

namespace zel {
class FileBufferLoader;  // for the library alone
}  // namespace zel
class ZELFileBufferPool;

class ZELListPtrZELFileBufferPool : public ZELListPtr<ZELFileBufferPool> {
public:
    using ZELListPtr<ZELFileBufferPool>::ZELListPtr;
};

class ZEL_API ZELFileBufferPool {
public:
    // Without a thread, unless enableMultiThread() was called before; also when the system gives none.
    ZELFileBufferPool() noexcept;
    ZELFileBufferPool(const ZELFileBufferPool&) = delete;
    ZELFileBufferPool& operator=(const ZELFileBufferPool&) = delete;
    // Waits for the file that is being read, and gives the others back unread: they load when they are asked for. What
    // was loaded stays with its buffers, which may outlive the pool.
    ~ZELFileBufferPool();

    // The pool keeps a reference until the buffer had its turn. Does nothing for null, and without a thread.
    void append(ZELFileBuffer* buffer) noexcept;

    // For the pools that are made from now on.
    static void enableMultiThread() noexcept;
    static void disableMultiThread() noexcept;

private:
    zel::FileBufferLoader* _loader;  // null without a thread
};

#endif
