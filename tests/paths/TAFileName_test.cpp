#include "TAFileName.h"

#include <mutex>

#include "TAEnvironment.h"
#include "support/failing_memory.h"
#include "support/slots.h"
#include "support/testing.h"

namespace {

std::string Text(const TAFileName& name) {
    return std::string(name.View());
}

struct Exposed : TAFileName {
    using TAFileName::Normalize;
};

}  // namespace

TEST(TAFileName, NothingIsTheNullName) {
    const TAFileName null(static_cast<const char*>(nullptr));
    for (const TAFileName& name : {null, TAFileName(), TAFileName(""), TAFileName("x", 0), TAFileName("x", -1),
                                   TAFileName(ZELString()), TAFileName("/a/..")}) {
        EXPECT_EQ(name.IsNull(), 1);
        EXPECT_STREQ(name, "");
        EXPECT_TRUE(name == null && name == "" && name == static_cast<const char*>(nullptr) && name != "a");
        EXPECT_EQ(name.IsEqual(null), -1);
        EXPECT_EQ(name.GetExtension(), "");
        EXPECT_TRUE(name.basename(1).IsNull() && name.dirname(1).IsNull() && name.GetFullPath().IsNull());
        EXPECT_TRUE(name.IsFile() == 0 && name.IsDirectory() == 0 && name.Delete() == 0 &&
                    name.CreateDirectoryW() == 1);
        EXPECT_EQ(Text(name + "b/"), "b");
    }
    EXPECT_EQ(Text(TAFileName("a/b/c", 3)), "a\\b");
}

TEST(TAFileName, ComponentsFromTheEnd) {
    const std::tuple<const char*, int, const char*, const char*> rows[] = {
        {"a/b/c", 0, "c", "a\\b\\c"},
        {"a/b/c", -5, "c", "a\\b\\c"},
        {"a/b/c", 1, "c", "a\\b"},
        {"a/b/c", 2, "b", "a"},
        {"a/b/c", 3, "a\\b\\c", ""},
        {"a/b/c", 1000000000, "a\\b\\c", ""},
        {"name", 1, "name", ""},
        {"name", 0, "name", "name"},
        {"//host/share", 1, "share", "\\\\host"},
        {"//host/share", 2, "host", "\\"},
        {"//host/share", 3, "", ""},
        {"//host", 1, "host", "\\"},
        {"/x", 1, "x", ""},
        {"/x", 2, "\\x", ""},
        {"/", 1, "", ""},
        {"C:/x/y", 2, "x", "C:"},
    };
    for (const auto& [path, n, base, dir] : rows) {
        EXPECT_EQ(Text(TAFileName(path).basename(n)), base) << path << ' ' << n;
        EXPECT_EQ(Text(TAFileName(path).dirname(n)), dir) << path << ' ' << n;
        EXPECT_EQ(TAFileName(path).Getdirname(n), dir);
    }
}

TEST(TAFileName, ExtensionsAreTextBehindTheLastDot) {
    const char* const rows[][4] = {{"a/b.cpp", "cpp", "a\\b.o/", "a\\b.cppo/"},
                                   {"file", "", "o/", "fileo/"},
                                   {"dir.d/file", "d\\file", "dir.o/", "dir.d\\fileo/"},
                                   {"a.", "", "a.o/", "a.o/"},
                                   {"", "", "o/", "o/"}};
    for (const auto& [path, extension, expectedSet, expectedAdded] : rows) {
        TAFileName set(path);
        EXPECT_EQ(set.GetExtension(), extension);
        EXPECT_EQ(set.HasExtension(extension), 1);
        EXPECT_TRUE(set.HasExtension(nullptr) == 0 && set.HasExtension("CPP") == 0);
        TAFileName added(set);
        set.SetExtension("o/");  // as it stands: neither form normalises
        added.AddExtension("o/");
        EXPECT_EQ(Text(set), expectedSet);
        EXPECT_EQ(Text(added), expectedAdded);
        EXPECT_EQ(Text(set + "."), Text(TAFileName(expectedSet)));
    }
}

TEST(TAFileName, JoiningNormalisesAndSharesNothingThatChanges) {
    TAFileName name("a");
    const TAFileName copy(name);
    name += "b//c/";
    name += "../d";
    EXPECT_EQ(Text(name), "a\\b\\d");
    EXPECT_EQ(Text(copy), "a");
    EXPECT_EQ(Text(name + ZELString("../../..")), "a\\..");
    EXPECT_EQ(Text(name + nullptr), "a\\b\\d");
    name = static_cast<const char*>(name) + 2;  // a part of its own text
    EXPECT_EQ(Text(name), "b\\d");
    name += name;
    EXPECT_EQ(Text(name), "b\\d\\b\\d");
    name = *&name;
    const std::string longName(100000, 'x');
    EXPECT_EQ(Text(name + longName.c_str()), "b\\d\\b\\d\\" + longName);
    TAFileName moved(std::move(name));
    EXPECT_EQ(Text(moved), "b\\d\\b\\d");
}

TEST(TAFileName, CaseCountsWhereTheHeaderSaysSo) {
    TAFileName lower("a/b"), upper("A/B"), other("a/c"), umlaut("a/\xE4");
    EXPECT_TRUE(lower == upper && lower == "A\\B" && lower != other && "a\\b" == upper && lower != "a/b");
    EXPECT_TRUE(lower.IsEqual(upper) == 0 && lower.IsEqual("a\\b") == 1);
    EXPECT_EQ(TAFileName::Compare(&lower, &upper), 1);
    EXPECT_EQ(TAFileName::Compare(&lower, &umlaut), -1);  // bytes as unsigned values
    EXPECT_EQ(TAFileName::Compare(nullptr, &lower), -1);
    ZELListValTAFileName list, same;
    for (const TAFileName& name : {other, lower, upper}) list.Append(name);
    for (const char* name : {"A/C", "A/B", "a/b"}) same.Append(name);
    EXPECT_TRUE(list == same);
    list.QuickSort(TAFileName::Compare);
    EXPECT_EQ(Text(list[1]) + Text(list[2]) + Text(list[3]), "A\\Ba\\ba\\c");
}

TEST(TAFileName, AncestorsAreWholeComponents) {
    const std::tuple<const char*, const char*, int, int> rows[] = {
        {"a/b/c", "a", 1, 2}, {"a/b/c", "a/b/c", 1, 0}, {"a/bc", "a/b", 0, 0}, {"a", "a/b", 0, 0},
        {"a/b", "A", 0, 0},   {"a/b", "", 1, 0},        {"", "", 1, 0},        {"", "a", 0, 0},
        {"/x", "/", 0, 0},    {"//host/x", "/", 1, 2},  {"C:/a/b", "C:", 1, 2}};
    for (const auto& [name, dir, result, expectedLevel] : rows) {
        int level = -1;
        EXPECT_EQ(TAFileName(name).IsUnderDirectory(dir, level), result) << name << ' ' << dir;
        EXPECT_EQ(level, expectedLevel) << name << ' ' << dir;
        EXPECT_EQ(TAFileName(name).IsUnderDirectory(dir), result);
    }
}

TEST(TAFileName, FilesAndDirectoriesComeAndGo) {
    const TemporaryFolder directory;
    TAFileName deep = TAFileName(directory.Path().c_str()) + "one/two/three";
    EXPECT_EQ(deep.CreateDirectoryW(), 1);  // no parent
    EXPECT_EQ(deep.CreateRecursiveDirectory(), 0);
    EXPECT_TRUE(deep.CreateRecursiveDirectory() == 0 && deep.CreateDirectoryA() == 0);
    EXPECT_TRUE(deep.IsDirectory() == 1 && deep.IsFile() == 0);
    EXPECT_EQ(deep.Delete(), 1);  // a directory

    const TAFileName file = deep + "file";
    WriteBytes(file.GetNativeName().CastToCharPtr(), "");
    EXPECT_TRUE(file.IsFile() == 1 && file.IsDirectory() == 0);
    EXPECT_EQ((file + "below").CreateRecursiveDirectory(), 1);
    EXPECT_EQ(file.CreateNotExistingDirectory(), 1);  // something else has the name

    const TAFileName before = TAFileName::GetWorkDir();
    ASSERT_EQ(TAFileName::SetWorkDir(deep), 0);
    EXPECT_EQ(TAFileName("file").GetFullPath().IsFile(), 1);
    EXPECT_EQ(Text(TAFileName("C:x").GetFullPath()) + Text(TAFileName("/x").GetFullPath()), "C:x\\x");
    EXPECT_EQ(TAFileName::SetWorkDir(before), 0);
    EXPECT_EQ(TAFileName::SetWorkDir("no/such/directory"), -1);

    EXPECT_EQ(file.DeleteUnicode(), 0);
    EXPECT_TRUE(file.IsFile() == 0 && file.Delete() == 1);
}

TEST(TAFileName, TemporaryNamesAreNobodyElses) {
    std::set<std::string> names;
    std::mutex lock;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 64; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 4; ++round) {
                TAFileName name = TAFileName::GetTemporaryFileName();
                const std::lock_guard guard(lock);
                EXPECT_TRUE(name.IsFile() && names.insert(Text(name)).second) << Text(name);
            }
        });
    threads.clear();
    EXPECT_EQ(names.size(), 256u);
    for (const std::string& name : names) EXPECT_EQ(TAFileName(name.c_str()).Delete(), 0);
}

// For the thread sanitizer: names of distinct threads are distinct, also when memory ran out for all of them.
TEST(TAFileName, IncompleteNamesOfThreadsAreIndependent) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 1000; ++round) {
                const TAFileName name(ZELString::Incomplete()), copy(name);
                EXPECT_TRUE((copy + "below").IsIncomplete());
            }
        });
}

TEST(TAFileName, NormalizeIsTheOnlySlot) {
    EXPECT_EQ(SlotOf(&Exposed::Normalize), 0u);
}

TEST(TAFileName, BecomesNullAndNeverAPartWithoutMemory) {
    const TAFileName name("C:\\work\\tools\\file.cpp");
    using Change = TAFileName (*)(TAFileName);
    const Change changes[] = {
        [](TAFileName file) { return file + "below"; },
        [](TAFileName file) { return file += "below"; },
        [](TAFileName file) { return file = "another\\name"; },
        [](TAFileName file) { return file.basename(2); },
        [](TAFileName file) { return file.dirname(2); },
        [](TAFileName file) { return file.AddExtension("o"), file; },
        [](TAFileName file) { return file.SetExtension("o"), file; },
    };
    for (const Change change : changes) {
        const TAFileName expected = change(name);
        const AllocationFailures failures = FailEachAllocation([&](FailingMemory& memory) {
            memory.Begin();
            const TAFileName changed = change(name);
            EXPECT_EQ(changed.View(), memory.End() ? "" : expected.View());
        });
        EXPECT_EQ(failures.count, 2);
    }
}
