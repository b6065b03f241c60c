// What a program loads that uses the library without being linked with it.
#include <memory>
#include <vector>

#include "TAFileBuffer.h"
#include "ZELFileBufferPool.h"

namespace {

// Never ended.
struct Loaders {
    ZELFileBufferPool pool;
    std::vector<ZELFileBuffer*> shared;
    std::vector<std::unique_ptr<TAFileBuffer>> own;
};

}  // namespace

// An address in the library.
extern "C" void* LibraryCode() {
    return reinterpret_cast<void*>(&ZELFileBufferPool::enableMultiThread);
}

// Lets a pool and the reading thread load `path` again and again. With `idle` returns when they have nothing to do.
extern "C" void* StartLoaders(const char* path, bool idle) {
    ZELFileBufferPool::enableMultiThread();
    auto* const loaders = new Loaders;
    for (int i = 0; i < (idle ? 3 : 3000); ++i) {
        loaders->shared.push_back(new ZELFileBuffer(path));
        loaders->pool.append(loaders->shared.back());
        loaders->own.push_back(std::make_unique<TAFileBuffer>(path, 0));
    }
    if (idle) {
        for (ZELFileBuffer* const buffer : loaders->shared) buffer->getBuffer();
        for (const auto& buffer : loaders->own) buffer->GetBuffer();
    }
    return loaders;
}
