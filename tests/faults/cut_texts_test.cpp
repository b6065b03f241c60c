// Texts and names that memory cut off: whoever stores, sends, opens, runs or matches one refuses it.

#include "TAComponent.h"
#include "TADatabase.h"
#include "TAEnvironment.h"
#include "TAFileUtilities.h"
#include "TAHtmlBanner.h"
#include "TAMutex.h"
#include "TAPObject.h"
#include "TASocket.h"
#include "TATextUtilities.h"
#include "TAUnicodeRegularExpression.h"
#include "ZELDirectory.h"
#include "ZELFilePrepro.h"
#include "ZELToken.h"
#include "process/processes.h"

namespace {

const ZELString command = ChildCommand("exit 0");

struct Pair {
    Pair() { ready = server.OpenServer(0) == 0 && client.OpenClient("127.0.0.1", server.GetPort()) == 0; }
    // What the client sends, the other end receives.
    bool Receives(int (TASocket::*get)(ZELString, int), const ZELString& path) {
        if (!ready || server.GetQuery(accepted) != 0 || client.PutFile("there") != 0 || client.Flush() != 0)
            return false;
        return (accepted.*get)(path, 5) == 0 && std::filesystem::remove("made");
    }
    TASocket server, client, accepted;
    bool ready;
};

bool Runs(int (TAProcess::*redirect)(ZELString), const ZELString& path) {
    TAProcess process;
    (process.*redirect)(path);
    const bool isRun = RunToEnd(process, command) == 0;
    std::filesystem::remove("made");
    return isRun;
}

bool Copies(ZELUnicodeString from, ZELUnicodeString to) {
    return ZELFCopy(&from, &to, 1) == ZELCopyDone && std::filesystem::remove("made");
}

ZELListValZELString list;

// Whether the whole `text` is accepted, and a cut one is.
struct Row {
    const char* name;
    ZELString text;
    bool (*accepts)(const ZELString& text);
};

const Row rows[] = {
    {"SetWorkDir", ".", [](const ZELString& text) { return SetWorkDir(text) == 0; }},
    {"TAFileName::SetWorkDir", ".", [](const ZELString& text) { return TAFileName::SetWorkDir(text) == 0; }},
    {"ReadFile", "there", [](const ZELString& text) { return ReadFile(text, list) == 0; }},
    {"WriteFile", "made",
     [](const ZELString& text) { return WriteFile(text, list) == 0 && std::filesystem::remove("made"); }},
    {"FileExists", "there", [](const ZELString& text) { return FileExists(text) == 1; }},
    {"GetModifTime", "there", [](const ZELString& text) { return !GetModifTime(text).IsIncomplete(); }},
    {"FileSelectionSize", "there", [](const ZELString& text) { return FileSelectionSize(text) > 0; }},
    {"ReadRecursiveDirectory", ".",
     [](const ZELString& text) { return ReadRecursiveDirectory(text, list), std::exchange(list, {}).Size() > 0; }},
    {"CopyFile from", "there",
     [](const ZELString& text) { return CopyFileW(text, "made") == 0 && std::filesystem::remove("made"); }},
    {"CopyFile to", "made",
     [](const ZELString& text) { return CopyFileW("there", text) == 0 && std::filesystem::remove("made"); }},
    {"ZELFCopy from", "there", [](const ZELString& text) { return Copies(text, "made"); }},
    {"ZELFCopy to", "made", [](const ZELString& text) { return Copies("there", text); }},
    {"CreateDirectory", "made",
     [](const ZELString& text) {
         return TAFileName(text).CreateRecursiveDirectory() == 0 && std::filesystem::remove("made");
     }},
    {"SearchConcatenation name", "there",
     [](const ZELString& text) { return SearchConcatenation(text, ".;.").IsFile() == 1; }},
    {"SearchConcatenation directories", ".",
     [](const ZELString& text) { return SearchConcatenation("there", text).IsFile() == 1; }},
    {"scanner", "there",
     [](const ZELString& text) {
         char* stripped = nullptr;
         const int result = ZELFilePrepro(text).preprocess(0, stripped);
         return std::free(stripped), result == 0;
     }},
    {"Start", command, [](const ZELString& text) { return TAProcess().Start(text, 0) == 0; }},
    {"Exec", "exit 0", [](const ZELString& text) { return TAProcess::Exec(text) == 0; }},
    {"SetOutput", "made", [](const ZELString& text) { return Runs(&TAProcess::SetOutput, text); }},
    {"SetInput", "there", [](const ZELString& text) { return Runs(&TAProcess::SetInput, text); }},
    {"SetOutput of a name", "made",
     [](const ZELString& text) { return Runs(&TAProcess::SetOutput, ZELString(TAFileName(text))); }},
    {"TANormalizeArg", "a b", [](const ZELString& text) { return !TANormalizeArg(text).IsIncomplete(); }},
    {"token", "a;b", [](const ZELString& text) { return !ZELToken(text).GetNextToken(";").IsIncomplete(); }},
    {"IsComment", "# no", [](const ZELString& text) { return IsComment(text) == 1; }},
    {"TestMatch", "a", [](const ZELString& text) { return TestMatch("a", text) + TestMatchNoCase(text, "a") > 0; }},
    {"TestMatchWithLogExp", "a",
     [](const ZELString& text) {
         ZELString a("a");
         return TestMatchWithLogExp(a, text) == 1;
     }},
    {"filter", "", [](const ZELString& text) { return TAUnicodeRegularExpression(text).CheckFromFilter("a") == 1; }},
    {"filter in blanks", " a ",
     [](const ZELString& text) { return TAUnicodeRegularExpression(text).CheckFromFilter("a") == 1; }},
    {"candidate", "a",
     [](const ZELString& text) { return TAUnicodeRegularExpression("*").CheckFromFilter(text) == 1; }},
    {"substituteEntities", "&",
     [](const ZELString& text) {
         ZELString copy(text);
         return !substituteEntities(copy).IsIncomplete();
     }},
    {"banner", "title", [](const ZELString& text) { return BuildHtmlBanner(text, list, "", "").Size() > 0; }},
    {"TAMutex", "zel test of cut names", [](const ZELString& text) { return TAMutex(text).Lock() >= 0; }},
    {"component", "key",
     [](const ZELString& text) {
         TAComponent all;
         all.Insert(text, &list);
         return all.GetSize() == 1;
     }},
    {"component that has it", "key",
     [](const ZELString& text) {
         TAComponent all;
         all.Insert("key", &list);
         return all.IsIn(text) != 0 || all.GetValue(text) != nullptr;
     }},
    {"list", "text", [](const ZELString& text) { return ZELListValZELString().Append(text) == 0; }},
    {"text into a dump", "text",
     [](const ZELString& text) {
         TAPObject object;
         ZELString error;
         object.SetAttribute("a", text);
         return object.SaveToFile("dumps", error) == 0;
     }},
    {"name into a dump", "text",
     [](const ZELString& text) {
         TAPObject object;
         ZELString error;
         object.SetAttribute("a", TAFileName(text));
         return object.SaveToFile("dumps", error) == 0;
     }},
    {"text to a text", "text",
     [](const ZELString& text) {
         TAPObject object;
         object.SetAttribute("a", "b");
         return object.AppendToAttribute("a", text) == 0;
     }},
    {"directory of a dump", "dumps",
     [](const ZELString& text) {
         TAPObject object;
         ZELString error;
         object.SetAttribute("a", 1);
         return object.SaveToFile(text, error) == 0;
     }},
    {"attribute", "text",
     [](const ZELString& text) {
         const TAPAttr one(text), other(one);
         return !other.GetString().IsIncomplete();
     }},
    {"PutBlock", "text",
     [](const ZELString& text) {
         Pair pair;
         return pair.client.PutBlock(text) == 0;
     }},
    {"Write", "text",
     [](const ZELString& text) {
         Pair pair;
         return pair.client.Write(text) == 0;
     }},
    {"PutFile", "there",
     [](const ZELString& text) {
         Pair pair;
         return pair.client.PutFile(text) == 0;
     }},
    {"GetFile", "made", [](const ZELString& text) { return Pair().Receives(&TASocket::GetFile, text); }},
    {"GetFileASCII", "made", [](const ZELString& text) { return Pair().Receives(&TASocket::GetFileASCII, text); }},
    {"OpenClient", "127.0.0.1",
     [](const ZELString& text) {
         Pair pair;
         return TASocket().OpenClient(text, pair.server.GetPort()) == 0;
     }},
};

}  // namespace

TEST(CutTexts, AreRefusedAndHaveNoEffect) {
    const TemporaryFolder folder;
    const std::filesystem::path home = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    WriteBytes("there", "text\n");
    std::filesystem::create_directory("dumps");
    for (const Row& row : rows) {
        EXPECT_TRUE(row.accepts(row.text)) << row.name;
        EXPECT_FALSE(std::filesystem::exists("made")) << row.name;
        EXPECT_FALSE(row.accepts(row.text + ZELString::Incomplete())) << row.name;
        EXPECT_FALSE(std::filesystem::exists("made")) << row.name;
    }
    std::filesystem::current_path(home);
}
