// Each scan, identifier, batch and command is an object in a list of the object that it belongs to.

#include "report/dump.h"

#include <cstdlib>
#include <limits>
#include <string>

#include "TADiagnostics.h"
#include "TAPAttr.h"
#include "TAPObject.h"

namespace {

// Integers have 32 bits; what is larger goes in as a text.
TAPAttr Number(long long number) {
    if (number <= std::numeric_limits<int>::max()) return static_cast<int>(number);
    return std::to_string(number).c_str();
}

// An object that its maker fills while it hangs in a list.
class Node {
public:
    Node() : _object(new TAPObject) {
        if (_object != nullptr) return;
        TraceErr("not enough memory for the dump");
        std::exit(1);
    }
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() { _object->Release(); }

    Node& Set(const char* name, const TAPAttr& value) {
        _object->SetAttribute(name, value);
        return *this;
    }
    void HangInto(Node& parent, const char* list) { parent._object->AppendToAttribute(list, _object); }
    int Save(const TAFileName& directory, ZELString& error) { return _object->SaveToFile(directory, error); }

private:
    TAPObject* _object;
};

void AddScan(const Scan& scan, Node& root) {
    Node node;
    node.Set("directory", TAFileName(scan.directory)).Set("milliseconds", Number(scan.milliseconds));
    node.Set("files", Number(scan.files)).Set("unreadable", Number(scan.unreadable)).Set("lines", Number(scan.lines));
    node.Set("bytes", Number(scan.bytes)).Set("identifiers", Number(scan.identifiers));
    node.Set("distinct", Number(scan.distinct));
    for (const Word& word : scan.words) {
        Node child;
        child.Set("text", word.text).Set("count", Number(word.count)).HangInto(node, "words");
    }
    node.HangInto(root, "scans");
}

void AddBatch(const Batch& batch, Node& root) {
    Node node;
    node.Set("file", TAFileName(batch.file)).Set("milliseconds", Number(batch.milliseconds));
    for (const Command& command : batch.commands) {
        Node child;
        child.Set("line", command.line).Set("code", command.code).Set("milliseconds", Number(command.milliseconds));
        child.Set("how", command.how).Set("log", TAFileName(command.log)).Set("text", command.text);
        child.HangInto(node, "commands");
    }
    node.HangInto(root, "batches");
}

}  // namespace

bool DumpRun(const Run& run, const TAFileName& directory) {
    if (directory.CreateRecursiveDirectory() != 0) return false;
    Node root;
    root.Set("identifier", run.identifier).Set("date", run.date).Set("host", run.host);
    if (run.note.Length() > 0) root.Set("note", run.note);
    for (const Scan& scan : run.scans) AddScan(scan, root);
    for (const Batch& batch : run.batches) AddBatch(batch, root);
    ZELListValTAPAttr counters;
    for (const ZELString& counter : run.counters) counters.Append(counter);
    root.Set("counters", counters);
    ZELString error;
    if (root.Save(directory, error) == 0) return true;
    TraceErr(ZELString("cannot write ") + error);
    return false;
}
