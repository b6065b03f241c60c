// Touches every public family once, through the installed headers and the shared library alone.
#include <ZELToolsInfrastructure.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

namespace {

int failures = 0;

void Expect(bool holds, const char* family) {
    if (holds) return;
    std::printf("consumer: %s does not answer\n", family);
    ++failures;
}

void Foundations() {
    ZELString text("tools infrastructure");
    Expect(text.ReplaceSubString(" ", "_") == 1 && text == "tools_infrastructure", "ZELString");
    std::cout << text << '\n' << std::flush;
    Expect(ZELUnicodeString("\xC3\xA4rger").GetLengthInChar() == 5, "ZELUnicodeString");
    ZELToken words(ZELUnicodeString("  one two"));
    Expect(words.GetNextToken(" ") == "one" && words.GetNextToken(" ") == "two", "ZELToken");

    ZELListValZELString list;
    for (const char* name : {"b", "a"}) list.Append(name);
    list.QuickSort([](ZELString* left, ZELString* right) { return *left < *right ? -1 : *left > *right; });
    Expect(list[1] == "a" && list.Locate("b", 1) == 2, "ZELListValZELString");
    ZELRawCollint numbers(2);
    Expect(numbers.Append(7) == 0 && numbers[1] == 7, "ZELRawCollint");
    ZELXMLNode node("File");
    Expect(node.SetAttr("name", "a<b") == 0 && node.ToXML().FindPosition("a&lt;b", 0) > 0, "ZELXMLNode");
}

void Diagnostics() {
    Trace("consumer", 0);
    char buffer[33];
    Expect(ZELString(TAItoa(-255, buffer, 16)) == "ffffff01" && toString(-5) == "-5", "TADiagnostics");
    Expect(ZELTrace("CONSUMER", nullptr, ZELTraAppend, "STDERR", 0).IsActive() == 0, "ZELTrace");
    Expect(ZELStackTrace().GetTrace() == 0, "ZELStackTrace");
    Expect(GetSortDate().Length() == 19 && GetProcessorsNumber() >= 1, "TAEnvironment");
    TAEnvVariable variable("ZEL_CONSUMER", 16);
    Expect(variable.PutEnvironmentValue("set") == 0, "TAEnvVariable");
    ZELDirectoryHandle directory;
    Expect(ZELOpenDirectory(".", &directory) == 0, "ZELDirectory");
    ZELThreads thread("consumer");
    thread.SetFunction([](void*) { return 42; }, nullptr);
    Expect(thread.Run(0) == 0 && thread.Join() == 0 && thread.GetThreadReturnCode() == 42, "ZELThreads");
    ZELMutex lock;
    Expect(lock.Lock() == 0 && lock.Unlock() == 0, "ZELMutex");
}

void Boundary() {
    Expect(ZELVersionLinked() == ZEL_VERSION && ZELVersionText()[0] == '0' + ZEL_VERSION_MAJOR, "ZELVersion");
    int* const made = ZELNew<int>(7);
    Expect(made != nullptr && *made == 7, "ZELMemory");
    ZELDelete(made);
    const ZELShared<ZELAtomic<int>> count = ZELShared<ZELAtomic<int>>::Make(1);
    const ZELShared<ZELAtomic<int>> other = count;
    Expect(other->fetch_add(1) == 1 && count->load() == 2 && count.use_count() == 2, "ZELShared, ZELAtomic");
}

void Containers() {
    int value = 0;
    TAIndex names;
    names.Append("b", &value);
    Expect(names["b"] == &value, "TAIndex");
    TAIndexI numbers;
    numbers.Append(-5, &value);
    Expect(numbers.GetKey(0) == -5, "TAIndexI");
    TAIndexB blocks(1);
    const int key[2] = {3, 0};
    Expect(blocks.Append(key, &value) != nullptr, "TAIndexB");
    ZELStringPool pool;
    ZELHashSCMap map(&pool);
    map.insert(pool.create("a"), &value);
    int walked = 0;
    for (const auto& [text, stored] : map) walked += stored == &value && map.contains(text);
    Expect(walked == 1, "ZELHashSCMap");
    ZELHashRWMap often;
    often.insert("a", &value);
    ZELHashRWMapIteratorRef* const entries = often.getIteratorRef();
    Expect(entries->next() == 1 && entries->getValue() == &value && entries->next() == 0, "ZELHashRWMap");
    ZELMapIterator* const snapshot = often.getIterator();
    Expect(snapshot->next() == 1 && ZELString(snapshot->getKey()) == "a", "ZELMapIterator");
    delete snapshot;
}

void Objects() {
    int value = 0;
    TAComponent component;
    component.Insert("key", &value);
    ZELListValZELString keys;
    Expect(component.GetValue("key") == &value && component.GetList(keys) == 1, "TAComponent");
    TAPObject* const root = new TAPObject;
    TAPObject* const child = new TAPObject;
    root->SetAttribute("child", child);
    root->SetAttribute("text", "a");
    root->AppendToAttribute("text", "b");
    TAPPath* const path = child->GetPath();
    Expect(root->GetAttribute("text").GetString() == "ab" && path->Size() == 1, "TAPObject");
    Expect(root->SaveToFile("no such directory") == 0, "SaveToFile");
    ZELListValTAPAttr values;
    values.Append(5);
    Expect(values[1] == 5 && values != ZELListValTAPAttr() && TAPAttr::Null.IsType(0) == 1, "TAPAttr");
    path->Release();
    child->Release();
    root->Release();
    Expect(TAOracleDatabase("user", "password", "base").GetErrMsg() == "", "TADatabase");
}

void Files() {
    TAFileName name("a/./b/../c.txt");
    Expect(name == "a\\c.txt" && name.GetExtension() == "txt", "TAFileName");
    Expect(ZELListValTAFileName().Append(name) == 0, "ZELListValTAFileName");
    ZELString line("  one two ");
    ZELListValZELString fields;
    Expect(Split(line, fields) == 2 && fields[2] == "two", "TATextUtilities");
    Expect(TestMatch("abc", "a*c") == 1 && TestMatchWithLogExp(line, "*one*&&!(*three*)") == 1, "patterns");
    ZELFileBufferPool::enableMultiThread();
    ZELFileBufferPool pool;
    ZELFileBuffer* const missing = new ZELFileBuffer("no such file");
    pool.append(missing);
    Expect(missing->getBuffer() == nullptr && missing->getStatus() == ZELFileBuffer::NotOpened, "ZELFileBuffer");
    missing->Release();
    Expect(TAFileBuffer("no such file", 0).GetSize() == 0, "TAFileBuffer");
    TAFileBuffer::ASyncCleanup();
    YAVOFStream out("consumer.txt", "wb");
    out << "one // two\nlast " << 2.5 << endl;
    out.close();
    YAVIFStream in("consumer.txt", "rb");
    Expect(in.getline(line, '\n', 0) == 0 && line == "one // two" && YAVout.isOpen() == 1, "YAVFStream");
    ZELQMAStream lines;
    char* place = nullptr;
    lines.fopen("consumer.txt", "rb");
    Expect(lines.getline(place) == 1 && line == place && lines.fclose() == 0, "ZELQMAStream");
    ZELFilePrepro source("consumer.txt");
    Expect(source.preprocess(ZELFilePrepro::REMOVE_SLCOMMENTS, place) == 0 && ZELString(place) == "one \nlast 2.5\n",
           "ZELFilePrepro");
    std::free(place);
    in.close();
    TAFileName("consumer.txt").Delete();
    Expect(ZELFwModRespHelper().getFrameworkShortResponsible("Base") == nullptr, "ZELFwModRespHelper");
    Expect(BuildHtmlBanner("title", fields, "", "").Size() == 16, "TAHtmlBanner");
    const bool hasRoot = TAEnvVariable("RkrkROOT_PATH", 0).GetEnvironmentValue() != nullptr;
    Expect(CopyDefaultHtmlStyle("report") == 0 && (FileExists("report\\pictures\\copy.png") == 1) == hasRoot, "style");
    TACleanDirectory("report");
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
    Expect(TAInsTaskList().TAInsCheckTask("no such directory", nullptr) == 0, "TAInsTaskList");
    Expect(KillPid(0, 1) == 0 && KillBaseProcessTree(0, 1) == -1, "TAProcessKill");
    TACallbackPublisher publisher;
    Expect(publisher.SendCallback(nullptr) == 1, "TACallback");
    TARefCounter* const counter = new TARefCounter;
    counter->AddRef();
    counter->Release();
    counter->Release();
}

void Coding() {
    unsigned char mask[300] = {}, packed[604], again[301];
    Expect(rle_compress(300, mask, rle_max_compressed_size(300), packed) == 6 && rle_compressed_size(packed) == 6 &&
               rle_uncompress(packed, 300, again) == 300,
           "TARunLength");
    Expect(crc("123456789", 0) == 0x93BCE8CF, "crc");
    TAUUIDGenerator generator;
    const ZELString first = generator.Get();
    Expect(first.Length() == 20 && !(first == generator.Get()), "TAUUIDGenerator");
}

void Measuring() {
    TAPerfoAv counter("consumer");
    counter.Count(2048);
    std::ostringstream report;  // of this program's own stream library
    TAPerfo::GlobalReport(report);
    Expect(report.str() == "consumer 0 per 1m, 2k in 0s\n" && TAPerfo::globalList.Size() == 1, "TAPerfo");
}

void Network() {
    TASocket server, client, accepted;
    ZELString query;
    Expect(server.OpenServer(0) == 0 && client.OpenClient("127.0.0.1", server.GetPort(), 10) == 0 &&
               client.PutBlock("query") == 0 && client.Flush() == 0 && server.GetQuery(10, query, accepted, 10) == 0 &&
               query == "query",
           "TASocket");
}

void Filters() {
    TAUnicodeRegularExpression filter("*_[0-9]*.cpp");
    Expect(filter.CheckFromFilter("scan_12.cpp") == 1, "filters");
    filter = TAUnicodeRegularExpression(ZELString("a*"));
    Expect(filter.CheckFromFilter(ZELString("ab")) == 1, "filters of 8-bit text");
}

}  // namespace

int main() {
    Boundary();
    Foundations();
    Diagnostics();
    Containers();
    Objects();
    Files();
    Processes();
    Coding();
    Measuring();
    Network();
    Filters();
    std::printf("consumer: %s\n", failures == 0 ? "every family answered" : "FAILED");
    return failures;
}
