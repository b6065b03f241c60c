// A tree that is copied, deleted and written without recursion and without a stack, so that its depth costs nothing.
//
// Each node has its nodes in an array, for access by position, and is threaded by _next: to the next node below the
// same parent and, behind the last of them, to the parent itself. A walk goes down by the arrays and back up by the
// threads. That a node is the last one shows where _next leads: nobody but its parent has it as the last node.
// Invariants: the nodes below are heap objects of this node's own; _next of the top of a tree is null, or belongs to
// the tree that it was added to: assigning to a node changes what is below it, never its place.
// The dangerous case is assigning a part of a tree to the whole, or the whole to a part: the new content is always
// complete, and apart from the tree, before the old one is let go.

#include "ZELXMLNode.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ZELMemory.h"
#include "base/failure_report.h"
#include "text/xml_text.h"

using namespace zel;

ZELXMLNodeListener::~ZELXMLNodeListener() = default;

namespace {

ZELString NameOf(const char* text) noexcept {
    return MakeXMLName(text != nullptr ? text : "");
}

}  // namespace

ZELXMLNode::ZELXMLNode(const char* tag) noexcept : _tag(NameOf(tag)) {
    if (_tag.Length() != 0) return;
    _tag = "_";
    MarkIncomplete();
}

ZELXMLNode::ZELXMLNode(const ZELXMLNode& other) noexcept {
    if (CopyTree(other)) return;
    ZELXMLNode bare;
    bare._tag = other._tag;
    bare.MarkIncomplete();
    SwapContent(bare);
}

ZELXMLNode::ZELXMLNode(ZELXMLNode&& other) noexcept : ZELXMLNode() {
    SwapContent(other);
}

ZELXMLNode::~ZELXMLNode() {
    DeleteNodes();
}

ZELXMLNode& ZELXMLNode::operator=(const ZELXMLNode& other) noexcept {
    ZELXMLNode copy;
    if (this == &other) return *this;
    if (copy.CopyTree(other))
        SwapContent(copy);
    else
        MarkIncomplete();
    return *this;
}

ZELXMLNode& ZELXMLNode::operator=(ZELXMLNode&& other) noexcept {
    ZELXMLNode taken(std::move(other));
    SwapContent(taken);
    return *this;
}

// Exchanges all but places and listeners. Neither node may hold the other.
void ZELXMLNode::SwapContent(ZELXMLNode& other) noexcept {
    std::swap(_tag, other._tag);
    std::swap(_text, other._text);
    std::swap(_attributes, other._attributes);
    std::swap(_nodes, other._nodes);
    for (ZELXMLNode* const parent : {this, &other})
        if (ZELXMLNode* const last = parent->LastNode()) last->_next = parent;
}

// Deletes what is below. The threads become one list of nodes that are still to be deleted.
void ZELXMLNode::DeleteNodes() noexcept {
    ZELXMLNode* pending = nullptr;
    ZELXMLNode* parent = this;
    for (;;) {
        for (ZELXMLNode* const node : parent->_nodes) {
            node->_next = pending;
            pending = node;
        }
        parent->_nodes.RemoveAll(ZELCollec::ReleaseMemory);
        if (parent != this) ZELDelete(parent);
        if (pending == nullptr) return;
        parent = std::exchange(pending, pending->_next);
    }
}

// Calls enter(node) in front of the nodes below and leave(node) behind them, for the whole tree, until one of them
// returns false. Neither may change the tree.
template <class Enter, class Leave>
bool ZELXMLNode::Walk(const ZELXMLNode& root, Enter enter, Leave leave) noexcept {
    const ZELXMLNode* node = &root;
    for (;;) {
        if (!enter(*node)) return false;
        if (const ZELXMLNode* const first = node->GetNode(1)) {
            node = first;
            continue;
        }
        for (bool up = true; up;) {
            if (!leave(*node)) return false;
            if (node == &root) return true;
            up = node->_next->LastNode() == node;
            node = node->_next;
        }
    }
}

// Copies what belongs to the node itself into a fresh one.
bool ZELXMLNode::CopyOwn(const ZELXMLNode& other) noexcept {
    _tag = other._tag;
    _text = other._text;
    if (_tag.Length() != other._tag.Length() || _text.Length() != other._text.Length()) return false;
    if (_attributes.Append(other._attributes) != 0) return false;
    return std::equal(_attributes.begin(), _attributes.end(), other._attributes.begin(),
                      [](const Attribute& copy, const Attribute& original) {
                          return copy.name.Length() == original.name.Length() &&
                                 copy.value.Length() == original.value.Length();
                      });
}

// Copies a tree into a fresh node that stands alone. After a failure the node holds a part of it.
bool ZELXMLNode::CopyTree(const ZELXMLNode& other) noexcept {
    ZELXMLNode* parent = nullptr;  // of the next copy; the copy is its last node until it is left
    const auto enter = [this, &parent](const ZELXMLNode& original) {
        if (parent == nullptr) {
            parent = this;
            return CopyOwn(original);
        }
        ZELXMLNode* const copy = MakeNode();
        if (copy == nullptr || !copy->CopyOwn(original) || !parent->Adopt(copy)) {
            ZELDelete(copy);
            return false;
        }
        parent = copy;
        return true;
    };
    const auto leave = [&parent](const ZELXMLNode&) {
        parent = parent->_next;
        return true;
    };
    return Walk(other, enter, leave);
}

ZELXMLNode* ZELXMLNode::MakeNode() noexcept {
    auto* const node = ZELNew<ZELXMLNode>();
    if (node == nullptr) ReportAllocFailure("ZELXMLNode", sizeof(ZELXMLNode));
    return node;
}

// Makes `node`, a heap object that stands alone, the last one below this.
bool ZELXMLNode::Adopt(ZELXMLNode* node) noexcept {
    ZELXMLNode* const last = LastNode();
    if (_nodes.Append(node) != 0) return false;
    if (last != nullptr) last->_next = node;
    node->_next = this;
    return true;
}

// Adopts `node`, or deletes it, and tells the listeners.
ZELXMLNode& ZELXMLNode::AddOwned(ZELXMLNode* node) noexcept {
    if (node == nullptr || !Adopt(node)) {
        ZELDelete(node);
        MarkIncomplete();
        return ZELFreshValue<ZELXMLNode>();
    }
    int position = 1;
    for (int untold = _listeners.Size(); untold > 0; --untold) {
        ZELXMLNodeListener* const listener = GetListener(position);
        if (listener == nullptr) break;
        listener->NodeAdded(*this, *node);
        // One that removed itself, or one before it, has moved the others up.
        if (GetListener(position) == listener) ++position;
    }
    return *node;
}

ZELXMLNode& ZELXMLNode::AddNode(const ZELXMLNode& node) noexcept {
    ZELXMLNode* copy = MakeNode();
    if (copy != nullptr && !copy->CopyTree(node)) {
        ZELDelete(copy);
        copy = nullptr;
    }
    return AddOwned(copy);
}

ZELXMLNode& ZELXMLNode::AddNode(const char* tag) noexcept {
    ZELXMLNode* node = MakeNode();
    if (node != nullptr && (node->_tag = NameOf(tag)).Length() == 0) ZELDelete(std::exchange(node, nullptr));
    return AddOwned(node);
}

int ZELXMLNode::LocateNode(const char* tag, int from) const noexcept {
    if (from < 1) return 0;
    const ZELString wanted = NameOf(tag);
    for (int position = from; position <= GetNodeCount(); ++position)
        if (GetNode(position)->_tag == wanted) return position;
    return 0;
}

int ZELXMLNode::LocateAttribute(const ZELString& name) const noexcept {
    const auto at = std::find_if(_attributes.begin(), _attributes.end(),
                                 [&name](const Attribute& attribute) { return attribute.name == name; });
    return at == _attributes.end() ? 0 : static_cast<int>(at - _attributes.begin()) + 1;
}

// The list copies the texts, which are compared since a copy without memory is empty.
int ZELXMLNode::AppendAttribute(const Attribute& attribute) noexcept {
    if (_attributes.Append(attribute) != 0) return 1;
    const Attribute& copy = _attributes[_attributes.Size()];
    if (copy.name == attribute.name && copy.value == attribute.value) return 0;
    _attributes.RemovePosition(_attributes.Size());
    return 1;
}

int ZELXMLNode::SetAttr(const char* name, const char* value) noexcept {
    if (name == nullptr || *name == '\0') return 1;
    Attribute attribute{NameOf(name), ZELString(value)};
    const bool isWhole = !attribute.name.IsIncomplete() && !attribute.value.IsIncomplete();
    const int position = isWhole ? LocateAttribute(attribute.name) : 0;
    if (position != 0)
        _attributes[position].value = std::move(attribute.value);
    else if (!isWhole || AppendAttribute(attribute) != 0)
        return MarkIncomplete(), 1;
    return 0;
}

const char* ZELXMLNode::GetAttr(const char* name) const noexcept {
    if (name == nullptr || *name == '\0') return nullptr;
    const int position = LocateAttribute(NameOf(name));
    return position != 0 ? _attributes[position].value.CastToCharPtr() : nullptr;
}

const char* ZELXMLNode::GetAttrName(int position) const noexcept {
    return position >= 1 && position <= GetAttrCount() ? _attributes[position].name.CastToCharPtr() : nullptr;
}

int ZELXMLNode::AddListener(ZELXMLNodeListener* listener) noexcept {
    if (listener == nullptr) return 1;
    if (std::find(_listeners.begin(), _listeners.end(), listener) != _listeners.end()) return 0;
    return _listeners.Append(listener);
}

int ZELXMLNode::RemoveListener(ZELXMLNodeListener* listener) noexcept {
    return _listeners.RemoveValue(listener) != 0 ? 0 : 1;
}

ZELString ZELXMLNode::ToXML() const noexcept {
    XMLOutput xml;
    int level = 0;
    bool isIncomplete = false;
    const ZELXMLNode* verbatim = nullptr;  // the outermost of the open nodes that has a text
    const auto isEmpty = [](const ZELXMLNode& node) { return node._text.Length() == 0 && node.GetNodeCount() == 0; };
    const auto enter = [&](const ZELXMLNode& node) {
        isIncomplete = isIncomplete || node._tag.IsIncomplete() || node._text.IsIncomplete();
        if (verbatim == nullptr) xml.PutIndentation(level);
        xml.Put("<").Put(node._tag.View());
        for (const Attribute& attribute : node._attributes) {
            xml.Put(" ").Put(attribute.name.View()).Put("=\"");
            xml.PutText(attribute.value.View(), XMLPlace::AttributeValue).Put("\"");
        }
        ++level;
        xml.Put(isEmpty(node) ? "/>" : ">").PutText(node._text.View(), XMLPlace::Text);
        if (verbatim == nullptr && node._text.Length() > 0) verbatim = &node;
        if (verbatim == nullptr && !isEmpty(node)) xml.Put("\n");
        return !xml.HasFailed();
    };
    const auto leave = [&](const ZELXMLNode& node) {
        --level;
        if (!isEmpty(node)) {
            if (verbatim == nullptr) xml.PutIndentation(level);
            xml.Put("</").Put(node._tag.View()).Put(">");
        }
        if (verbatim == &node) verbatim = nullptr;
        if (verbatim == nullptr) xml.Put("\n");
        return !xml.HasFailed();
    };
    Walk(*this, enter, leave);
    ZELString text = xml.Take();
    if (isIncomplete) text += ZELString::Incomplete();
    return text;
}
