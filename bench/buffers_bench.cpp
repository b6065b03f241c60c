// Loading whole files beside what a program would write instead, and loading 2,000 of them ahead of the work on them
// beside loading each when it is wanted.
//
// "scan" looks through what was loaded once (memchr for a byte that is not there). Loading ahead is about another
// processor, so its contenders may use all of them, although the program is bound to one. "cold" files are dropped from
// the system's cache beforehand.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "TAFileBuffer.h"
#include "ZELFileBufferPool.h"

namespace {

namespace fs = std::filesystem;

// Made on first use, gone with the program.
class Folder {
public:
    Folder() {
        static int made = 0;
        const std::string name = "zel_buffers_bench" + std::to_string(getpid()) + "_" + std::to_string(++made);
        _path = fs::temp_directory_path() / name;
        fs::create_directories(_path);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(_path); }
    std::string File(const std::string& name, std::size_t size) const {
        const fs::path path = _path / name;
        if (!fs::exists(path)) std::ofstream(path, std::ios::binary) << std::string(size, 'x');
        return path.string();
    }

private:
    fs::path _path;
};

bool isScanned;

bool Use(const char* text, std::size_t size) {
    benchmark::DoNotOptimize(text);
    return text != nullptr && (!isScanned || std::memchr(text, 'y', size) == nullptr);
}

bool LoadOurs(const char* path) {
    ZELFileBuffer* const buffer = new ZELFileBuffer(path);
    const bool isRead = Use(buffer->getBuffer(), static_cast<std::size_t>(buffer->getBufferSize()));
    buffer->Release();
    return isRead;
}

bool LoadByRead(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) return false;
    const auto size = static_cast<std::size_t>(status.st_size);
    char* const text = static_cast<char*>(std::malloc(size + 1));
    std::size_t done = 0;
    for (ssize_t count; done < size && (count = read(file, text + done, size - done)) > 0;)
        done += static_cast<std::size_t>(count);
    close(file);
    text[done] = '\0';
    const bool isRead = Use(text, done);
    std::free(text);
    return isRead;
}

bool LoadByStream(const char* path) {
    std::ifstream file(path, std::ios::ate);
    std::string text(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    return Use(text.data(), text.size());
}

bool LoadByMapping(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0) return false;
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
    close(file);
    const bool isRead = text != MAP_FAILED && Use(static_cast<const char*>(text), size);
    munmap(text, size);
    return isRead;
}

void LoadWhole(benchmark::State& state, bool (*load)(const char* path), std::size_t size, bool scan) {
    isScanned = scan;
    static const Folder folder;
    const std::string path = folder.File(std::to_string(size), size);
    for (auto _ : state)
        if (!load(path.c_str())) state.SkipWithError("not read");
}

constexpr std::size_t AheadSize = std::size_t{64} << 10;

const std::vector<std::string>& AheadFiles() {
    static const Folder folder;
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        for (int i = 0; i < 2000; ++i) made.push_back(folder.File(std::to_string(i), AheadSize));
        sync();  // only clean pages can be dropped
        return made;
    }();
    return names;
}

// What a tool does with a text: about a nanosecond for each byte.
void Work(const char* text, int size) {
    unsigned hash = 0;
    for (int i = 0; i < size; ++i) hash = (hash ^ static_cast<unsigned char>(text[i])) * 16777619U;
    benchmark::DoNotOptimize(hash);
}

void Consume(const std::vector<ZELFileBuffer*>& buffers) {
    for (ZELFileBuffer* const buffer : buffers) {
        Work(buffer->getBuffer(), buffer->getBufferSize());
        buffer->Release();
    }
}

std::vector<ZELFileBuffer*> MakeBuffers() {
    std::vector<ZELFileBuffer*> buffers;
    for (const std::string& name : AheadFiles()) buffers.push_back(new ZELFileBuffer(name.c_str()));
    return buffers;
}

void AheadByPool() {
    const std::vector<ZELFileBuffer*> buffers = MakeBuffers();
    ZELFileBufferPool pool;
    for (ZELFileBuffer* const buffer : buffers) pool.append(buffer);
    Consume(buffers);
}

void AheadByBuffers() {
    std::vector<std::unique_ptr<TAFileBuffer>> buffers;
    for (const std::string& name : AheadFiles()) buffers.push_back(std::make_unique<TAFileBuffer>(name.c_str(), 0));
    for (auto& buffer : buffers) {
        Work(buffer->GetBuffer(), buffer->GetSize());
        buffer.reset();
    }
}

void OnDemand() {
    Consume(MakeBuffers());
}

void WorkThrough(benchmark::State& state, void (*run)(), bool isCold) {
    cpu_set_t bound, all;
    sched_getaffinity(0, sizeof bound, &bound);
    std::memset(&all, 0xFF, sizeof all);
    sched_setaffinity(0, sizeof all, &all);
    ZELFileBufferPool::enableMultiThread();
    for (auto _ : state) {
        state.PauseTiming();
        for (const std::string& name : AheadFiles()) {
            const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
            if (isCold) posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
            close(file);
        }
        state.ResumeTiming();
        run();
    }
    TAFileBuffer::ASyncCleanup();
    sched_setaffinity(0, sizeof bound, &bound);
}

const bool registered = [] {
    struct Loader {
        const char* name;
        bool (*load)(const char* path);
    };
    struct Size {
        const char* name;
        std::size_t bytes;
    };
    for (const Size& size : {Size{"1K", 1 << 10}, Size{"64K", 1 << 16}, Size{"1M", 1 << 20}, Size{"64M", 64 << 20},
                             Size{"256M", 256 << 20}})
        for (const Loader& loader : {Loader{"ours", LoadOurs}, Loader{"read+malloc", LoadByRead},
                                     Loader{"ifstream", LoadByStream}, Loader{"mmap", LoadByMapping}})
            for (const char* const operation : {"load/", "load+scan/"})
                benchmark::RegisterBenchmark((std::string(operation) + loader.name + "/" + size.name).c_str(),
                                             LoadWhole, loader.load, size.bytes, operation[4] == '+');
    for (const bool isCold : {false, true})
        for (const auto& [name, run] : {std::pair<const char*, void (*)()>{"ours", AheadByPool},
                                        {"ours (TAFileBuffer)", AheadByBuffers},
                                        {"on demand", OnDemand}})
            benchmark::RegisterBenchmark((std::string("ahead/") + name + (isCold ? "/cold" : "/warm")).c_str(),
                                         WorkThrough, run, isCold)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
    return true;
}();

}  // namespace
