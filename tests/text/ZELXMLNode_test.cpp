#include "ZELXMLNode.h"

#include "support/failing_memory.h"
#include "support/testing.h"
#include "support/utf8.h"

namespace {

// As it has to stand in a document, so that a parser reads it back; what no document can hold is replaced.
std::string Escaped(const std::string& bytes, bool inAttribute) {
    std::map<char32_t, std::string> forms = {{'&', "&amp;"},   {'<', "&lt;"},   {'>', "&gt;"}, {'"', "&quot;"},
                                             {'\'', "&apos;"}, {'\r', "&#13;"}, {'\t', "\t"},  {'\n', "\n"}};
    if (inAttribute) forms['\t'] = "&#9;", forms['\n'] = "&#10;";
    std::string text;
    for (const char32_t code : Decode(bytes)) {
        const bool fits = code >= ' ' && IsScalar(code) && code != 0xFFFE && code != 0xFFFF;
        text += forms.count(code) ? forms[code] : WriteCode(fits ? code : 0xFFFD);
    }
    return text;
}

bool IsName(const std::string& name) {
    const auto isPart = [](char c) { return c < 0 || std::isalnum(c) || std::strchr("-._:", c); };
    return !std::strchr("-.0123456789", name[0]) && std::all_of(name.begin(), name.end(), isPart);
}

// Without line ends and indentation.
std::string Flat(const ZELXMLNode& node) {
    std::string text(node.ToXML().View());
    std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
    return text;
}

struct Recorder : ZELXMLNodeListener {
    void NodeAdded(ZELXMLNode& parent, ZELXMLNode& child) override {
        told += std::string(parent.GetTag()) + ">" + child.GetTag() + " ";
        for (ZELXMLNodeListener* const listener : leaving) parent.RemoveListener(listener);
        leaving.clear();
    }
    std::string told;
    std::vector<ZELXMLNodeListener*> leaving;
};

}  // namespace

TEST(ZELXMLNode, WritesWhatAParserReadsBack) {
    ZELXMLNode root("Path");
    root.SetAttr("Name", "replaced below");
    root.SetAttr("Size", "1");
    root.SetAttr("Name", "a<b>&\"'\t\r\n\x01\xFF\xEF\xBF\xBE");
    root.AddNode(ZELXMLNode("File")).SetText(" x<y>&\"' \r\t\n");
    root.AddNode("Empty").SetAttr("a b", "1");
    root.GetNode(2)->SetAttr("a_b", "2");
    EXPECT_STREQ(root.GetNode(2)->GetAttr("a b"), "2");
    ZELXMLNode& mixed = root.AddNode("Mixed");
    mixed.SetText("t");
    mixed.AddNode("B").AddNode("C");
    const std::string expected =
        "<Path Name=\"a&lt;b&gt;&amp;&quot;&apos;&#9;&#13;&#10;\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\" Size=\"1\">\n"
        "  <File> x&lt;y&gt;&amp;&quot;&apos; &#13;\t\n</File>\n"
        "  <Empty a_b=\"2\"/>\n"
        "  <Mixed>t<B><C/></B></Mixed>\n"
        "</Path>\n";
    EXPECT_EQ(root.ToXML().View(), expected);
    std::ostringstream stream;
    root.Write(stream);
    EXPECT_EQ(stream.str(), expected);
}

TEST(ZELXMLNode, MakesNamesOfAnything) {
    const std::pair<const char*, const char*> rows[] = {{"a-1.b:c_", "a-1.b:c_"},
                                                        {nullptr, "_"},
                                                        {"a b<c>", "a_b_c_"},
                                                        {"\xC3\xA9\xC3\x97", "\xC3\xA9_"},
                                                        {"a\xFF\xC2\xB7", "a_\xC2\xB7"},
                                                        {"\xC2\xB7", "_"},
                                                        {"\xF0\x90\x80\x80", "\xF0\x90\x80\x80"},
                                                        {"\xEF\xBF\xBE", "_"}};
    for (const auto& [text, name] : rows) EXPECT_STREQ(ZELXMLNode(text).GetTag(), name);

    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        for (auto length = random() % 8 + 1; length > 0; --length) bytes += char(random() % 255 + 1);
        ZELXMLNode node(bytes.c_str());
        node.SetAttr(bytes.c_str(), bytes.c_str());
        node.AddNode(bytes.c_str()).SetText(bytes.c_str());
        const std::string tag = node.GetTag();
        ASSERT_TRUE(IsName(tag) && tag == node.GetAttrName(1)) << tag;
        ASSERT_EQ(node.ToXML().View(), "<" + tag + " " + tag + "=\"" + Escaped(bytes, true) + "\">\n  <" + tag + ">" +
                                           Escaped(bytes, false) + "</" + tag + ">\n</" + tag + ">\n");
        ASSERT_EQ(node.LocateNode(bytes.c_str()), 1);
        for (const int outside : {INT_MIN, 0, 2, INT_MAX}) {
            ASSERT_TRUE(node.GetNode(outside) == nullptr && node.GetAttrName(outside) == nullptr);
            ASSERT_EQ(node.LocateNode(bytes.c_str(), outside), 0);
        }
    }
    ZELXMLNode node;
    EXPECT_TRUE(node.SetAttr(nullptr, "v") == 1 && node.SetAttr("", "v") == 1 && node.GetAttr(nullptr) == nullptr);
}

TEST(ZELXMLNode, IsAnArgumentToItself) {
    ZELXMLNode root("r");
    root.AddNode("a").AddNode("b");
    root.AddNode(root);
    EXPECT_EQ(Flat(root), "<r><a><b/></a><r><a><b/></a></r></r>");
    ZELXMLNode& b = *root.GetNode(1)->GetNode(1);
    b.AddNode(root);
    b.SetAttr("k", "v");
    b = root;
    EXPECT_EQ(b.GetNodeCount(), 2);
    root = *root.GetNode(2);
    EXPECT_EQ(Flat(root), "<r><a><b/></a></r>");
    root = *&root;
    root = std::move(*root.GetNode(1));
    EXPECT_EQ(Flat(root), "<a><b/></a>");
    ZELXMLNode moved(std::move(root));
    moved.AddNode("c");
    *moved.GetNode(1) = moved;
    EXPECT_EQ(Flat(moved), "<a><a><b/><c/></a><c/></a>");
    EXPECT_EQ(Flat(root), "<_/>");  // NOLINT: what a move leaves behind
}

TEST(ZELXMLNode, TellsListenersThatComeAndGo) {
    ZELXMLNode node("n");
    Recorder first, second, third;
    for (Recorder* const recorder : {&first, &second, &third, &second}) EXPECT_EQ(node.AddListener(recorder), 0);
    EXPECT_EQ(node.AddListener(nullptr), 1);
    first.leaving = {&first};
    second.leaving = {&third, &second};
    node.AddNode("a").AddNode("unheard");
    node.AddNode(ZELXMLNode("b"));
    EXPECT_EQ(first.told + second.told + third.told, "n>a n>a ");
    EXPECT_EQ(node.RemoveListener(&first), 1);
    node.AddListener(&third);
    ZELXMLNode(node).AddNode("c");
    node = ZELXMLNode("m");
    node.AddNode("d");
    EXPECT_EQ(third.told, "m>d ");
}

TEST(ZELXMLNode, IsAsDeepAsMemoryAllows) {
    const int depth = 100000;
    ZELXMLNode root("n");
    ZELXMLNode* node = &root;
    std::string expected;
    for (int i = 0; i < depth; ++i) {
        node = &node->AddNode("n");
        expected += std::string(2 * std::min(i, 32), ' ') + "<n>\n";
    }
    expected += std::string(64, ' ') + "<n/>\n";
    for (int i = depth - 1; i >= 0; --i) expected += std::string(2 * std::min(i, 32), ' ') + "</n>\n";
    ZELXMLNode copy(root);
    copy = root;
    EXPECT_TRUE(copy.ToXML() == expected.c_str());
    root.AddNode(copy);
}

TEST(ZELXMLNode, StaysWellFormedAndAsItWasWithoutMemory) {
    const std::string longText(60, 't');
    const auto show = [](const ZELXMLNode& node) { return node.ToXML(); };
    ZELXMLNode tree(longText.c_str());
    tree.AddNode("below").SetText(longText.c_str());
    const ZELXMLNode other(*tree.GetNode(1));
    const std::function<void(ZELXMLNode&)> changes[] = {
        [&](ZELXMLNode& node) { node.SetAttr(longText.c_str(), longText.c_str()); },
        [&](ZELXMLNode& node) { node.SetText(longText.c_str()); },
        [&](ZELXMLNode& node) { node.AddNode(longText.c_str()); },
        [](ZELXMLNode& node) { node.AddNode(node); },
        [&](ZELXMLNode& node) { node = other; },
    };
    for (const auto& change : changes) ExpectAllOrNothing(tree, change, show);
    FailEachAllocation(
        [&](FailingMemory& memory) {
            memory.Begin();
            const ZELXMLNode copy(tree);
            memory.End();
            const std::string expected = memory.Said().empty() ? tree.ToXML().CastToCharPtr() : "<" + longText + "/>\n";
            EXPECT_EQ(copy.ToXML(), expected.c_str());
        },
        Fallback::Possible, {Afterwards::Succeed});
}
