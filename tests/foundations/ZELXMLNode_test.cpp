#include "ZELXMLNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

// The text with its references resolved. What a parser would refuse or change is not there by the pattern below.
std::string Resolve(std::string text) {
    const char* const rows[][2] = {{"&lt;", "<"},  {"&gt;", ">"},   {"&quot;", "\""}, {"&apos;", "'"},
                                   {"&#9;", "\t"}, {"&#10;", "\n"}, {"&#13;", "\r"},  {"&amp;", "&"}};
    for (const auto& row : rows)
        for (std::size_t at = 0; (at = text.find(row[0], at)) != std::string::npos; ++at)
            text.replace(at, std::strlen(row[0]), row[1]);
    return text;
}

// A small strict reader of what the library writes: fails on what is not well-formed, and tells the content in a
// notation of its own, tag{name=value;...}[text or nodes].
std::string Read(const std::string& xml) {
    static const std::string name = "[A-Za-z_:\\x80-\\xFF][-.0-9A-Za-z_:\\x80-\\xFF]*";
    static const std::string reference = "&(?:amp|lt|gt|quot|apos|#9|#10|#13);";
    static const std::string value = "((?:" + reference + "|[^&<>\"'\\x01-\\x1F])*)";
    static const std::regex attribute(" (" + name + ")=\"" + value + "\"");
    static const std::regex token("<(" + name + ")((?: " + name + "=\"" + value + "\")*)(/?)>|</(" + name +
                                  ")>|(?:" + reference + "|[^&<>\"'\\x01-\\x08\\x0B-\\x1F])+");
    std::string content;
    std::vector<std::string> open;
    std::smatch found;
    for (auto at = xml.begin(); at != xml.end(); at = found.suffix().first) {
        if (!std::regex_search(at, xml.end(), found, token, std::regex_constants::match_continuous)) return "refused";
        if (found[1].matched) {
            std::set<std::string> names;
            content += found.str(1) + "{";
            const std::string attributes = found.str(2);
            for (std::sregex_iterator next(attributes.begin(), attributes.end(), attribute), end; next != end; ++next) {
                if (!names.insert(next->str(1)).second) return "repeated " + next->str(1);
                content += next->str(1) + "=" + Resolve(next->str(2)) + ";";
            }
            content += found.length(4) ? "}[]" : "}[";
            if (found.length(4) == 0) open.push_back(found[1]);
        } else if (found[5].matched) {
            if (open.empty() || open.back() != found.str(5)) return "not nested at " + found.str(5);
            open.pop_back();
            content += "]";
        } else if (found.str().find_first_not_of(" \n") != std::string::npos) {
            content += Resolve(found.str());
        }
    }
    return open.empty() ? content : "open " + open.back();
}

std::string Content(const ZELXMLNode& node) {
    return Read(node.ToXML().CastToCharPtr());
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
    root.SetAttr("Name",
                 "a<b>&\"'\t\r\n\x01 gr\xC3\xBC\xC3\x9F"
                 "e");
    root.SetAttr("Size", "1");
    root.SetAttr("Name", "a<b>&\"'\t\r\n\x01\xFF\xEF\xBF\xBE");
    ZELXMLNode& file = root.AddNode(ZELXMLNode("File"));
    file.SetText(" x<y>&\"' \r\t\n");
    root.AddNode("Empty").SetAttr("a b", "1");
    EXPECT_EQ(root.GetNode(2)->SetAttr("a_b", "2"), 0);
    EXPECT_STREQ(root.GetNode(2)->GetAttr("a b"), "2");
    ZELXMLNode& mixed = root.AddNode("Mixed");
    mixed.SetText("t");
    mixed.AddNode("B").AddNode("C");
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(Content(root), "Path{Name=a<b>&\"'\t\r\n" + replacement + replacement + replacement +
                                 ";Size=1;}[File{}[ x<y>&\"' \r\t\n]Empty{a_b=2;}[]Mixed{}[tB{}[C{}[]]]]");
    EXPECT_STREQ(root.ToXML().SubString(root.ToXML().FindPosition("  <Empty"), 99),
                 "  <Empty a_b=\"2\"/>\n  <Mixed>t<B><C/></B></Mixed>\n</Path>\n");
    std::ostringstream stream;
    root.Write(stream);
    EXPECT_EQ(stream.str(), root.ToXML().CastToCharPtr());
}

TEST(ZELXMLNode, MakesNamesOfAnything) {
    const char* const rows[][2] = {{"a-1.b:c_", "a-1.b:c_"},
                                   {"", "_"},
                                   {nullptr, "_"},
                                   {"1a", "_a"},
                                   {"-", "_"},
                                   {"a b<c>", "a_b_c_"},
                                   {"\xC3\xA9\xC3\x97", "\xC3\xA9_"},
                                   {"a\xFF\xC2\xB7", "a_\xC2\xB7"},
                                   {"\xC2\xB7", "_"},
                                   {"\xF0\x90\x80\x80", "\xF0\x90\x80\x80"},
                                   {"\xEF\xBF\xBE", "_"}};
    for (const auto& row : rows) EXPECT_STREQ(ZELXMLNode(row[0]).GetTag(), row[1]);

    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        for (auto length = random() % 8; length > 0; --length) bytes += char(random() % 255 + 1);
        ZELXMLNode node(bytes.c_str());
        node.SetAttr(bytes.c_str(), bytes.c_str());
        node.AddNode(bytes.c_str()).SetText(bytes.c_str());
        ASSERT_EQ(Content(node).back(), ']') << Content(node);
        ASSERT_EQ(node.LocateNode(bytes.c_str()), 1);
        for (const int outside : {INT_MIN, 0, 2, INT_MAX}) {
            ASSERT_EQ(node.GetNode(outside), nullptr);
            ASSERT_EQ(node.GetAttrName(outside), nullptr);
            ASSERT_EQ(node.LocateNode(bytes.c_str(), outside), 0);
        }
    }
    EXPECT_EQ(ZELXMLNode("n").SetAttr(nullptr, "v") + ZELXMLNode("n").SetAttr("", "v"), 2);
    EXPECT_EQ(ZELXMLNode("n").GetAttr(nullptr), nullptr);
}

TEST(ZELXMLNode, IsAnArgumentToItself) {
    ZELXMLNode root("r");
    root.AddNode("a").AddNode("b");
    root.AddNode(root);
    EXPECT_EQ(Content(root), "r{}[a{}[b{}[]]r{}[a{}[b{}[]]]]");
    ZELXMLNode& b = *root.GetNode(1)->GetNode(1);
    b.AddNode(root);
    b.SetAttr("k", "v");
    b = root;
    EXPECT_EQ(b.GetNodeCount(), 2);
    root = *root.GetNode(2);
    EXPECT_EQ(Content(root), "r{}[a{}[b{}[]]]");
    root = *&root;
    root = std::move(*root.GetNode(1));
    EXPECT_EQ(Content(root), "a{}[b{}[]]");
    ZELXMLNode moved(std::move(root));
    moved.AddNode("c");
    *moved.GetNode(1) = moved;
    EXPECT_EQ(Content(moved), "a{}[a{}[b{}[]c{}[]]c{}[]]");
    EXPECT_EQ(Content(root), "_{}[]");  // NOLINT: what a move leaves behind
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
    EXPECT_EQ(first.told, "n>a ");
    EXPECT_EQ(second.told, "n>a ");
    EXPECT_EQ(third.told, "");
    EXPECT_EQ(node.RemoveListener(&first), 1);
    node.AddListener(&third);
    ZELXMLNode copy(node);
    copy.AddNode("c");
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
