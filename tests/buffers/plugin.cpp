// What a program loads that uses the library without being linked with it.
#include <string>

#include "TAFileBuffer.h"
#include "TAMutex.h"
#include "TASocket.h"
#include "ZELFileBufferPool.h"
#include "ZELHashSCMap.h"

// Lets a pool and the reading thread load `path` `count` times each, which it never ends: what was made stands in
// `made`, which has room for it. Returns an address of the library's code.
extern "C" void* StartLoaders(const char* path, int count, void** made) {
    ZELFileBufferPool::enableMultiThread();
    auto* const pool = new ZELFileBufferPool;
    *made++ = pool;
    for (int i = 0; i < count; ++i) {
        auto* const buffer = new ZELFileBuffer(path);
        pool->append(buffer);
        *made++ = buffer;
        *made++ = new TAFileBuffer(path, 0);
    }
    return reinterpret_cast<void*>(&ZELFileBufferPool::enableMultiThread);
}

// Uses one of each kind and leaves nothing. Returns an address of the library's code.
extern "C" void* UseLibrary(const char* path) {
    ZELHashSCMap map;
    for (int i = 0; i < 100; ++i) map.insert(std::to_string(i).c_str(), nullptr);
    TAMutex mutex("");
    mutex.Lock();
    mutex.Unlock();
    TASocket server;
    server.OpenServer(0);
    ZELFileBuffer* const buffer = new ZELFileBuffer(path);
    buffer->getBuffer();
    buffer->destroy();
    return reinterpret_cast<void*>(&ZELFileBufferPool::enableMultiThread);
}
