// Trees of XML nodes: the document is read back by a strict reader and is the tree that was built.
#include "ZELXMLNode.h"
#include "fuzz/input.h"
#include "support/utf8.h"

namespace {

struct Tree {
    std::string tag, text;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<Tree> nodes;
    bool operator==(const Tree&) const = default;
};

bool Fits(char32_t code) {
    return (code >= ' ' || code == '\t' || code == '\n' || code == '\r') && IsScalar(code) && code != 0xFFFE &&
           code != 0xFFFF;
}

// As a document holds it: characters that XML forbids are replaced.
std::string Held(const std::string& bytes) {
    std::string text;
    for (const char32_t code : Decode(bytes)) text += WriteCode(Fits(code) ? code : 0xFFFD);
    return text;
}

// Well-formed documents of elements, attributes, texts and references; anything else fails.
class Reader {
public:
    explicit Reader(std::string_view xml) : _xml(xml) {}

    Tree Document() {
        Tree tree = Element();
        EXPECT_TRUE(Skips("\n") && _xml.empty()) << _xml;
        return tree;
    }

private:
    bool Skips(std::string_view piece) {
        if (!_xml.starts_with(piece)) return false;
        _xml.remove_prefix(piece.size());
        return true;
    }
    std::string Until(std::string_view ends) {
        const std::size_t size = _xml.find_first_of(ends);
        EXPECT_NE(size, std::string_view::npos) << _xml;
        const std::string piece(_xml.substr(0, size));
        _xml.remove_prefix(size);
        return piece;
    }
    std::string Name() {
        const std::string name = Until(" =/><\n\"'&");
        EXPECT_TRUE(!name.empty() && !std::strchr("-.0123456789", name[0])) << name;
        for (const char c : name) EXPECT_TRUE(c < 0 || std::isalnum(c) || std::strchr("-._:", c)) << name;
        return name;
    }
    // Characters and references up to one of `ends`.
    std::string Characters(const char* ends) {
        std::string text;
        while (!_xml.empty() && !std::strchr(ends, _xml[0])) {
            text += Until(std::string("&") + ends);
            if (!Skips("&")) break;
            const std::string name = Until(";");
            Skips(";");
            static const std::map<std::string, std::string> references{{"amp", "&"},   {"lt", "<"},   {"gt", ">"},
                                                                       {"quot", "\""}, {"apos", "'"}, {"#9", "\t"},
                                                                       {"#10", "\n"},  {"#13", "\r"}};
            EXPECT_TRUE(references.count(name)) << name;
            text += references.at(name);
        }
        return text;
    }
    Tree Element() {
        Tree tree;
        EXPECT_TRUE(Skips("<")) << _xml;
        tree.tag = Name();
        while (Skips(" ")) {
            const std::string name = Name();
            EXPECT_TRUE(Skips("=\"")) << _xml;
            const std::string value = Characters("\"<");
            EXPECT_EQ(value.find_first_of("\0"), std::string::npos);
            EXPECT_TRUE(Skips("\"")) << _xml;
            for (const auto& [other, ignored] : tree.attributes) EXPECT_NE(other, name);
            tree.attributes.emplace_back(name, value);
        }
        if (Skips("/>")) return tree;
        EXPECT_TRUE(Skips(">")) << _xml;
        tree.text = Characters("<");
        while (!_xml.starts_with("</")) {
            tree.nodes.push_back(Element());
            const std::string blanks = Characters("<");
            EXPECT_EQ(blanks.find_first_not_of(" \n"), std::string::npos);
        }
        EXPECT_TRUE(Skips("</" + tree.tag + ">")) << _xml;
        // Indentation between elements is no text.
        if (!tree.nodes.empty() && tree.text.find_first_not_of(" \n") == std::string::npos) tree.text = "";
        return tree;
    }

    std::string_view _xml;
};

// Fills a node and its model alike. A text before nodes has a letter, which indentation has not.
void Fill(ZELXMLNode& node, Tree& tree, Input& input, int depth) {
    tree.tag = node.GetTag();
    const std::string text = input.Text(60);
    node.SetText(text.c_str());
    tree.text = Held(text.c_str());
    for (int count = input.Number(0, 4); count > 0; --count) {
        const std::string name = input.Text(12), value = input.Text(40);
        if (node.SetAttr(name.c_str(), value.c_str()) != 0) continue;
        const std::string held = Held(value.c_str());
        const char* const stored = node.GetAttr(name.c_str());
        ASSERT_STREQ(stored, value.c_str());
        for (int i = 1; i <= node.GetAttrCount(); ++i) {
            if (node.GetAttr(node.GetAttrName(i)) != stored) continue;
            tree.attributes.resize(static_cast<std::size_t>(node.GetAttrCount()));
            tree.attributes[static_cast<std::size_t>(i) - 1] = {node.GetAttrName(i), held};
        }
    }
    const int count = depth > 0 ? input.Number(0, 4) : 0;
    if (count > 0 && tree.text.find_first_not_of(" \n") == std::string::npos) node.SetText(""), tree.text = "";
    for (int i = 1; i <= count && input.remaining_bytes() > 0; ++i) {
        const std::string tag = input.Text(12);
        Fill(node.AddNode(tag.c_str()), tree.nodes.emplace_back(), input, depth - 1);
    }
}

}  // namespace

FUZZ_TARGET(input) {
    ZELXMLNode root(input.Text(12).c_str());
    Tree tree;
    Fill(root, tree, input, 40);
    const ZELXMLNode copy(root);
    const ZELString xml = root.ToXML();
    ASSERT_TRUE(Reader(xml.View()).Document() == tree) << xml;
    ASSERT_EQ(copy.ToXML(), xml);
}
