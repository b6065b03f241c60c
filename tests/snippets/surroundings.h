// What the examples of the headers and of the documents speak of and do not show. Nothing of it is ever linked.
#ifndef TESTS_SNIPPETS_SURROUNDINGS_H
#define TESTS_SNIPPETS_SURROUNDINGS_H

#include <ZELToolsInfrastructure.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <vector>

namespace around {

template <class... Things>
void Use(const Things&...);
int Complain(const ZELString& message);
extern int count, size;

}  // namespace around

namespace around_TACallback {
extern TACallbackPublisher& buffer;
void Forget(TACallbackPublisher* publisher);
}  // namespace around_TACallback

namespace around_TAComponent {
extern TARefCounter scanner;
}

namespace around_TAEnvironment {
void launch();
}

namespace around_TAFileBuffer {
extern const char* names[2];
}

namespace around_TAIndex {
extern int red, blue;
}

namespace around_TAIndexB {
extern int town;
}

namespace around_TAIndexI {
extern int third, other;
}

namespace around_TAMutex {
extern int archive;
void Repair();
void Append(int file);
}  // namespace around_TAMutex

namespace around_TAProcess {
void Show(const char* path);
}

namespace around_TAProcessKill {
extern unsigned long pid;
}

namespace around_TAProcessList {
extern ZELListValZELString commands;
void Report(int number, int exitCode);
}  // namespace around_TAProcessList

namespace around_TARunLength {
extern unsigned char* mask;
}

namespace around_TASocket {
ZELString Answer(const ZELString& query);
}

namespace around_TATextUtilities {
extern ZELString line;
}

namespace around_TAThread {
void CompileOne(const char* file);
}  // namespace around_TAThread

namespace around_TAThreadLock {
extern int shared;
}

namespace around_ZELFileBufferPool {
extern std::vector<ZELFileBuffer*> files;
}

namespace around_ZELFilePrepro {
void Scan(const char* words);
}

namespace around_ZELHashRWMap {
extern ZELHashRWMap map;
}

namespace around_ZELListPtr {
struct Worker {
    void Start();
};
extern Worker worker;
}  // namespace around_ZELListPtr

namespace around_ZELMap {
extern ZELMap& map;
}

namespace around_ZELRawColl {
struct Task;
extern void* task;
void Start(Task* begun);
}  // namespace around_ZELRawColl

namespace around_ZELStableSort {
struct Name {
    int Compare(const Name& other) const;
};
extern Name** names;
}  // namespace around_ZELStableSort

namespace around_ZELThreads {
void LoadNext();
}

namespace around_ZELToken {
void Search(const ZELUnicodeString& path);
}

#endif
