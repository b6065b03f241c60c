// A path is a chain of counted nodes from the last name to the first. The path of a child is one node before the chain
// of its parent, so the cost for each object does not depend on its depth.
//
// Invariants: a node holds one reference to its name (which may be null) and is an owner of the node before it; nodes
// never change. Cost: reading by index walks from the end. Hazard: chains are as long as trees are deep, so they are
// freed in a loop.

#include "TAPPath.h"

#include "TADiagnostics.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "objects/name_chain.h"
#include "objects/shared_text.h"

using namespace zel;

TAPName::TAPName(const char* name) noexcept : _text(SharedText::Make(name != nullptr ? name : "", "TAPName")) {}

TAPName::TAPName(const TAPName& other) noexcept : TARefCounter(other), _text(SharedText::Keep(other._text)) {}

TAPName& TAPName::operator=(const TAPName& other) noexcept {
    TARefCounter::operator=(other);
    SharedText* const text = SharedText::Keep(other._text);
    SharedText::Drop(_text);
    _text = text;
    return *this;
}

TAPName::~TAPName() {
    SharedText::Drop(_text);
    _text = nullptr;
}

const char* TAPName::GetName() const noexcept {
    return SharedText::View(_text).data();
}

// Takes over the owner's part of `parent`, also when there is no memory.
TAPPath::Node* TAPPath::NewNode(Node* parent, TAPName* name) noexcept {
    Node* const node = ZELNew<Node>(parent, name, parent != nullptr ? parent->length + 1 : 1, 1u);
    if (node == nullptr) {
        ReportAllocFailure("TAPPath", sizeof(Node));
        Node::Drop(parent);
        return nullptr;
    }
    if (name != nullptr) name->AddRef();
    return node;
}

void TAPPath::Node::Drop(Node* node) noexcept {
    while (node != nullptr && --node->owners == 0) {
        Node* const parent = node->parent;
        if (node->name != nullptr) node->name->Release();
        ZELDelete(node);
        node = parent;
    }
}

TAPPath::TAPPath(TAPName* name) noexcept : _last(NewNode(nullptr, name)) {}

TAPPath::TAPPath(TAPPath* parent, TAPName* name) noexcept
    : _last(parent != nullptr ? NewNode(Node::Keep(parent->_last), name) : nullptr) {}

TAPPath::TAPPath(const TAPPath& other) noexcept : TARefCounter(), _last(Node::Keep(other._last)) {}

TAPPath& TAPPath::operator=(const TAPPath& other) noexcept {
    TARefCounter::operator=(other);
    Node* const last = Node::Keep(other._last);
    Node::Drop(_last);
    _last = last;
    return *this;
}

TAPPath::~TAPPath() {
    Node::Drop(_last);
}

int TAPPath::Size() const noexcept {
    return _last != nullptr ? _last->length : 0;
}

TAPName* TAPPath::operator[](int i) const {
    FATAL(i < 1 || i > Size(), "TAPPath::[] : bad index");
    if (i > Size() - Node::Shift) return nullptr;
    const Node* node = _last;
    while (node->length != i + Node::Shift) node = node->parent;
    if (node->name != nullptr) node->name->AddRef();
    return node->name;
}
