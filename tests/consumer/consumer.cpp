// Touches every public family once, through the installed headers and the shared library alone.
#include <ZELToolsInfrastructure.h>

#include <cstdio>
#include <iostream>

namespace {

int failures = 0;

void Expect(bool holds, const char* family) {
    if (holds) return;
    std::printf("consumer: %s does not answer\n", family);
    ++failures;
}

void Foundations() {
    ZELString text("tools");
    text += " infrastructure";
    text.ReplaceSubString(" ", "_");
    Expect(text == "tools_infrastructure", "ZELString");
    std::cout << text << '\n' << std::flush;

    const ZELUnicodeString umlaut("\xC3\xA4rger");
    Expect(umlaut.GetLengthInChar() == 5 && ZELString(umlaut.CastToCharPtr()) == "\xC3\xA4rger", "ZELUnicodeString");
    ZELToken words(ZELUnicodeString("  one two"));
    Expect(words.GetNextToken(" ") == "one" && words.GetNextToken(" ") == "two", "ZELToken");

    ZELListValZELString list;
    for (const char* name : {"b", "a", "c"}) list.Append(name);
    list.QuickSort([](ZELString* left, ZELString* right) { return *left < *right ? -1 : *left > *right; });
    Expect(list.Size() == 3 && list[1] == "a" && list.Locate("c", 1) == 3, "ZELListValZELString");
    ZELRawCollint numbers(2);
    numbers.Append(7);
    Expect(numbers[1] == 7, "ZELRawCollint");

    ZELXMLNode node("File");
    node.SetAttr("name", "a<b");
    node.AddNode(ZELXMLNode("Path"));
    Expect(node.ToXML().FindPosition("a&lt;b", 0) > 0, "ZELXMLNode");
}

void Diagnostics() {
    Trace("consumer", 0);
    char buffer[33];
    Expect(ZELString(TAItoa(-255, buffer, 16)) == "ffffff01" && toString(-5) == "-5", "TADiagnostics");
    ZELTrace trace("CONSUMER", nullptr, ZELTraAppend, "STDERR", 0);
    Expect(trace.IsActive() == 0, "ZELTrace");
    ZELStackTrace stack;
    Expect(stack.GetTrace() == 0, "ZELStackTrace");
    Expect(GetSortDate().Length() == 19 && GetProcessorsNumber() >= 1, "TAEnvironment");
    TAEnvVariable variable("ZEL_CONSUMER", 16);
    Expect(variable.PutEnvironmentValue("set") == 0 && ZELString(variable.GetEnvironmentValue()) == "set",
           "TAEnvVariable");

    ZELDirectoryHandle directory;
    Expect(ZELOpenDirectory(".", &directory) == 0, "ZELDirectory");
    ZELThreads thread("consumer");
    thread.SetFunction([](void*) { return 42; }, nullptr);
    Expect(thread.Run(0) == 0 && thread.Join() == 0 && thread.GetThreadReturnCode() == 42, "ZELThreads");
    ZELMutex lock;
    Expect(lock.Lock() == 0 && lock.Unlock() == 0, "ZELMutex");
}

void Containers() {
    int value = 0;
    TAIndex names;
    names.Append("b", &value);
    names.Append("a", nullptr);
    Expect(names["b"] == &value && names.IsIn("b") == 1, "TAIndex");
    TAIndexI numbers;
    numbers.Append(-5, &value);
    Expect(numbers.GetKey(0) == -5, "TAIndexI");
    TAIndexB blocks(1);
    const int key[2] = {3, 0};
    blocks.Append(key, &value);
    Expect(blocks.Get(0) == &value, "TAIndexB");
}

void Files() {
    TAFileName name("a/./b/../c.txt");
    Expect(name == "a\\c.txt" && name.GetExtension() == "txt", "TAFileName");
    ZELListValTAFileName names;
    names.Append(name);
    Expect(names.Size() == 1, "ZELListValTAFileName");

    ZELString line("  one two ");
    ZELListValZELString fields;
    Expect(Split(line, fields) == 2 && fields[2] == "two", "TATextUtilities");
    Expect(TestMatch("abc", "a*c") == 1 && TestMatchWithLogExp(line, "*one*&&!(*three*)") == 1, "patterns");
    Expect(FileExists("no such file") == 0 && GetModifTime("") == "", "TAFileUtilities");
}

void Count(int count, const char** counter) {
    *reinterpret_cast<int*>(const_cast<char*>(counter[0])) = count;
}

void Processes() {
    int count = 0;
    TAThreadLock lock;
    {
        const TALocker guard(&lock);
        TAThread thread;
        thread.SetArgs(Count, &count, &count, nullptr);
        Expect(thread.Start() == 0, "TAThread");
        TAThread::WaitForAll();
    }
    Expect(count == 2 && lock.GetLock() == 1, "TAThreadLock");
    TAProcess process;
    int status = 0;
    Expect(process.Start("no_such_program", 0) == 1 && process.Check(status) == 0 && status == 203, "TAProcess");
    TAProcessList batch(2);
    batch.Start("no_such_program", 1, -1);
    Expect(batch.Check() == 1 && batch.NDone() == 1, "TAProcessList");
    Expect(KillPid(0, 1) == 0 && KillBaseProcessTree(0, 1) == -1, "TAProcessKill");
    TACallbackPublisher publisher;
    Expect(publisher.SendCallback(nullptr) == 1, "TACallback");
    TARefCounter* const counter = new TARefCounter;
    counter->AddRef();
    counter->Release();
    counter->Release();
}

}  // namespace

int main() {
    Foundations();
    Diagnostics();
    Containers();
    Files();
    Processes();
    std::printf("consumer: %s\n", failures == 0 ? "every family answered" : "FAILED");
    return failures;
}
