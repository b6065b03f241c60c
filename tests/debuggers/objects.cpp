// One object of each kind, for a debugger that stops in Stop().
#include <ZELToolsInfrastructure.h>

namespace {

// A map whose only chain has no end.
struct Circle : ZELHashSCMap {
    Circle() {
        insert("round", nullptr);
        for (int i = 0; i < _maxSize; ++i)
            if (_table[i] != nullptr) _table[i]->next = _table[i];
    }
    void Mend() {
        for (int i = 0; i < _maxSize; ++i)
            if (_table[i] != nullptr) _table[i]->next = nullptr;
    }
};

void Stop(...) {}

}  // namespace

int main() {
    int value = 7;
    ZELString shortText("short \"text\""), longText("a text that is too long for the inside of its object"), noText;
    ZELUnicodeString unicode("\xC3\xA4rger"), longUnicode("\xE2\x82\xAC and sixteen more characters"), null(nullptr);
    ZELListValZELString texts;
    for (const char* text : {"one", "two", "three"}) texts.Append(text);
    ZELListPtr<int> pointers;
    pointers.Append(&value);
    ZELRawCollPV raw;
    raw.Append(nullptr);
    ZELRawCollint numbers;
    for (int i = -1; i < 2; ++i) numbers.Append(i);
    ZELHashSCMap map;
    map.insert("key", nullptr);
    map.insert("", &value);
    ZELHashRWMap often;
    for (int i = 0; i < 100; ++i) often.insert(toString(i), nullptr);
    Circle circle;
    TAIndex small, large;
    small.Append("b", nullptr);
    small.Append("a", nullptr);
    for (int i = 0; i < 300; ++i) large.Append(toString(i * 7919 % 300 + 1000), nullptr);
    TAIndexI integers;
    integers.Append(-5, nullptr);
    const int block[4] = {1, -2};
    TAIndexB blocks(2);
    blocks.Append(block, nullptr);
    TAFileName file("a/b.txt"), noFile;

    TAPObject* const root = new TAPObject;
    TAPObject* const child = new TAPObject;
    TAPName* const name = new TAPName("run");
    TAPPath* const path = new TAPPath(name);
    root->SetPath(path);
    root->SetAttribute("child", child);
    child->SetAttribute("runs", 3);
    child->SetAttribute("title", "scan");
    child->SetAttribute("file", file);
    child->AppendToAttribute("list", TAPAttr("element"));
    child->AppendToAttribute("list", 4);
    child->SetAttribute("path", child->GetPath());
    TAPAttr nothing;

    // Room for objects of every class, which the debugger fills with what it likes.
    void* garbage[64] = {};
    Stop(&shortText, &longText, &noText, &unicode, &longUnicode, &null, &texts, &pointers, &raw, &numbers, &map, &often,
         &circle, &small, &large, &integers, &blocks, &file, &noFile, root, child, name, path, &nothing, garbage);
    circle.Mend();
}
