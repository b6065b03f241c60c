// TAFileName beside the path types that one would pick instead: names of about 60 bytes, clean and with dots.
#include <benchmark/benchmark.h>
#include <llvm/ADT/SmallString.h>
#include <llvm/Support/Path.h>

#include <boost/filesystem/path.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "TAFileName.h"

namespace {

const char* const cleanName = "/home/builder/workspace/product/src/containers/TAIndex.cpp";
const char* const dirtyName = "/home/builder/./workspace/product//tools/../src/containers/a.h";

struct Ours {
    using Path = TAFileName;
    static Path Normalised(const char* text) { return Path(text); }
    static Path Join(const Path& path) { return path + "sub_directory/file"; }
    static Path Parent(const Path& path) { return path.dirname(1); }
    static ZELString Extension(const Path& path) { return path.GetExtension(); }
};

template <class FsPath>
struct Fs {
    using Path = FsPath;
    static Path Normalised(const char* text) { return Path(text).lexically_normal(); }
    static Path Join(const Path& path) { return path / "sub_directory/file"; }
    static Path Parent(const Path& path) { return path.parent_path(); }
    static Path Extension(const Path& path) { return path.extension(); }
};

struct Llvm {
    using Path = std::string;
    static Path Normalised(const char* text) {
        llvm::SmallString<128> path(text);
        llvm::sys::path::remove_dots(path, true);
        return std::string(path);
    }
    static Path Join(const Path& path) {
        llvm::SmallString<128> joined(path);
        llvm::sys::path::append(joined, "sub_directory/file");
        return std::string(joined);
    }
    static Path Parent(const Path& path) { return std::string(llvm::sys::path::parent_path(path)); }
    static Path Extension(const Path& path) { return std::string(llvm::sys::path::extension(path)); }
};

template <class Who>
void Register(const std::string& who) {
    const auto add = [&](const char* operation, auto run) {
        benchmark::RegisterBenchmark((std::string("path_") + operation + "/" + who + "/60").c_str(),
                                     [run](benchmark::State& state) {
                                         // In turn: with one path alone, the counts of its copies would wait for each
                                         // other as they never do in a tool.
                                         std::vector<typename Who::Path> paths;
                                         for (std::size_t i = 0; i < 64; ++i) paths.emplace_back(cleanName);
                                         std::size_t next = 0;
                                         for (auto _ : state) {
                                             benchmark::DoNotOptimize(paths.data());
                                             benchmark::DoNotOptimize(run(paths[next++ % 64]));
                                         }
                                     });
    };
    add("normalise_clean", [](const auto&) { return Who::Normalised(cleanName); });
    add("normalise_dots", [](const auto&) { return Who::Normalised(dirtyName); });
    add("join", [](const auto& path) { return Who::Join(path); });
    add("parent", [](const auto& path) { return Who::Parent(path); });
    add("extension", [](const auto& path) { return Who::Extension(path); });
    add("copy", [](const auto& path) { return typename Who::Path(path); });
}

const bool registered =
    (Register<Ours>("ours"), Register<Fs<std::filesystem::path>>("std::filesystem"),
     Register<Fs<boost::filesystem::path>>("boost::filesystem"), Register<Llvm>("llvm::sys::path"), true);

}  // namespace
