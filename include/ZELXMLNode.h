// An element of an XML tree that a program builds and writes: a tag, attributes, a text, and nodes below it.
//
//     ZELXMLNode file("File");
//     file.SetAttr("Size", "1204");
//     file.AddNode("Name").SetText("a&b.txt");
//     file.Write(std::cout);                 // <File Size="1204"> ... <Name>a&amp;b.txt</Name> ... </File>
//
// There is no parser. A node is a value: copying one copies all that is below it, and a node owns what was added to it.
// Nothing here recurses, so trees may be as deep as memory allows. Null texts count as empty.
// What is written is well-formed, whatever was put in: tags and attribute names become XML names when they are set
// (each character that a name must not hold becomes "_", and an empty tag becomes "_"), while characters that XML
// forbids in texts and bytes that are not UTF-8 are written as U+FFFD.
// When memory runs out, a line that starts with "# Alloc failed in " goes to standard output, and a node that lacks
// something for that is incomplete until it is assigned to: what ToXML() then returns is incomplete too. Nothing
// throws. Distinct trees may be used from distinct threads, and one tree may be read by several.
#ifndef ZELXMLNODE_H
#define ZELXMLNODE_H

#include <ostream>

#include "ZELExport.h"
#include "ZELListPtr.h"
#include "ZELListVal.h"
#include "ZELString.h"

class ZELXMLNode;

// Is told of additions to the nodes that it was added to.
class ZEL_API ZELXMLNodeListener {
public:
    virtual ~ZELXMLNodeListener();
    // `child` has just been added below `parent`. Called on the adding thread. It may change both nodes, and add and
    // remove listeners, itself included; it must not end either node.
    virtual void NodeAdded(ZELXMLNode& parent, ZELXMLNode& child) = 0;

protected:
    ZELXMLNodeListener() = default;
    ZELXMLNodeListener(const ZELXMLNodeListener&) = default;
    ZELXMLNodeListener& operator=(const ZELXMLNodeListener&) = default;
};

class ZEL_API ZELXMLNode {
public:
    ZELXMLNode() noexcept : ZELXMLNode("") {}
    explicit ZELXMLNode(const char* tag) noexcept;
    // Copies the whole tree; without memory the copy has a tag and no more. Listeners stay with the object they were
    // added to: they are neither copied nor moved nor replaced by assignments.
    ZELXMLNode(const ZELXMLNode& other) noexcept;
    ZELXMLNode(ZELXMLNode&& other) noexcept;  // leaves an empty node
    ~ZELXMLNode();
    // `other` may be a part of this tree, or hold it. Without memory a node stays as it was.
    ZELXMLNode& operator=(const ZELXMLNode& other) noexcept;
    ZELXMLNode& operator=(ZELXMLNode&& other) noexcept;

    // Never null; valid until the node is assigned to or ends.
    const char* GetTag() const noexcept { return _tag; }

    // Sets or replaces an attribute. 0, or 1 when `name` is null or empty or memory ran out.
    int SetAttr(const char* name, const char* value) noexcept;
    // The value, valid until this attribute is set again or the node ends; null when there is no such attribute.
    const char* GetAttr(const char* name) const noexcept;
    int GetAttrCount() const noexcept { return _attributes.Size(); }
    // The name of the attribute at `position`, 1 to GetAttrCount(), in the order of their first setting; null outside.
    const char* GetAttrName(int position) const noexcept;

    // The text in front of the nodes below; the empty text is none.
    void SetText(const char* text) noexcept { _text = text; }
    const char* GetText() const noexcept { return _text; }

    // Adds a copy of `node`, which may be this node or hold it, behind the last node below this one, and tells the
    // listeners of this node. Returns the copy, which keeps its address for as long as it lives: fill it through the
    // reference, which saves copying. Without memory: a node of the calling thread that belongs to no tree.
    ZELXMLNode& AddNode(const ZELXMLNode& node) noexcept;
    ZELXMLNode& AddNode(const char* tag) noexcept;
    int GetNodeCount() const noexcept { return _nodes.Size(); }
    // The node at `position`, 1 to GetNodeCount(); null outside.
    ZELXMLNode* GetNode(int position) noexcept { return NodeAt(position); }
    const ZELXMLNode* GetNode(int position) const noexcept { return _nodes[position]; }
    // The position of the first node at or behind `from` with that tag; 0 when there is none or `from` lies outside.
    int LocateNode(const char* tag, int from = 1) const noexcept;

    // A listener belongs to its caller and must be removed before it ends. Adding it twice counts once.
    // 0; 1 for null, when memory ran out, or when it is not there to be removed.
    int AddListener(ZELXMLNodeListener* listener) noexcept;
    int RemoveListener(ZELXMLNodeListener* listener) noexcept;

    // The tree as UTF-8, ending with a line feed, without an XML declaration (none is needed, and so one tree may be
    // put into another document). Each level is indented by two blanks more, up to 32 levels. The content of a node
    // that has a text is written without any blank of ours, so that the text is read back as it was. Empty when memory
    // ran out or the result would reach 2 GiB. Incomplete also when any node of the tree is.
    ZELString ToXML() const noexcept;
    // Writes ToXML() and flushes; writes nothing and sets failbit when that is incomplete. Compiled into the caller, so
    // that its own stream library writes.
    void Write(std::ostream& stream) const {
        const ZELString xml = ToXML();
        if (xml.IsIncomplete()) stream.setstate(std::ios_base::failbit);
        stream.write(xml, xml.Length()).flush();
    }

private:
    struct Attribute {
        ZELString name;
        ZELString value;
    };

    bool CopyOwn(const ZELXMLNode& other) noexcept;
    bool CopyTree(const ZELXMLNode& other) noexcept;
    void SwapContent(ZELXMLNode& other) noexcept;
    void DeleteNodes() noexcept;
    ZELXMLNode* NodeAt(int position) const noexcept { return _nodes[position]; }
    ZELXMLNode* LastNode() const noexcept { return NodeAt(_nodes.Size()); }
    bool Adopt(ZELXMLNode* node) noexcept;
    ZELXMLNode& AddOwned(ZELXMLNode* node) noexcept;
    int LocateAttribute(const ZELString& name) const noexcept;
    int AppendAttribute(const Attribute& attribute) noexcept;
    // The tag keeps in mind that something of this node found no memory.
    void MarkIncomplete() noexcept { _tag += ZELString::Incomplete(); }
    ZELXMLNodeListener* GetListener(int position) const noexcept { return _listeners[position]; }
    static ZELXMLNode* MakeNode() noexcept;
    template <class Enter, class Leave>
    static bool Walk(const ZELXMLNode& root, Enter enter, Leave leave) noexcept;

    ZELString _tag;
    ZELString _text;
    ZELListVal<Attribute> _attributes;
    ZELListPtr<ZELXMLNode> _nodes;  // owned
    ZELListPtr<ZELXMLNodeListener> _listeners;
    // The next node below the same parent; the parent itself behind the last one; null at the top. With it a tree is
    // walked without a stack. See ZELXMLNode.cpp.
    ZELXMLNode* _next = nullptr;
};

#endif
