#include "ZELXMLNode.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

// A small strict reader of what the library writes: it fails on everything that is not well-formed, and tells the
// content in a notation of its own, tag{name=value;...}[text|node node ...].
class Reader {
public:
    explicit Reader(std::string xml) : _xml(std::move(xml)) {}

    std::string Read() {
        std::string content;
        while (!_open.empty() || content.empty()) {
            if (!Take("<")) return Fail();
            if (Take("/")) {
                if (_open.empty() || !Take(_open.back() + ">")) return Fail();
                _open.pop_back();
                content += "]";
            } else if (!ReadStart(content)) {
                return Fail();
            }
            const std::size_t start = _at;
            const std::string text = ReadText('<');
            const bool isBlank = text.find_first_not_of(" \n") == std::string::npos;
            if (_xml.compare(_at, 2, "</") == 0 && _xml[start - 2] != '/' && !isBlank)
                content += text;
            else if (!isBlank)
                content += "'" + text + "'";
        }
        return _at == _xml.size() && _xml.back() == '\n' ? content : Fail();
    }

private:
    std::string Fail() { return "not well-formed at " + std::to_string(_at) + ": " + _xml.substr(_at, 60); }

    bool Take(const std::string& what) {
        if (_xml.compare(_at, what.size(), what) != 0) return false;
        _at += what.size();
        return true;
    }

    std::string ReadName() {
        const std::size_t start = _at;
        while (_at < _xml.size() && (std::isalnum(static_cast<unsigned char>(_xml[_at])) || _xml[_at] & 0x80 ||
                                     std::string("_:.-").find(_xml[_at]) != std::string::npos))
            ++_at;
        const std::string name = _xml.substr(start, _at - start);
        return name.empty() || std::string("0123456789.-").find(name[0]) != std::string::npos ? "" : name;
    }

    // Up to `end`, with references resolved; no character that a parser would refuse or change.
    std::string ReadText(char end) {
        static const std::map<std::string, std::string> references = {{"&amp;", "&"},   {"&lt;", "<"},   {"&gt;", ">"},
                                                                      {"&quot;", "\""}, {"&apos;", "'"}, {"&#9;", "\t"},
                                                                      {"&#10;", "\n"},  {"&#13;", "\r"}};
        std::string text;
        while (_at < _xml.size() && _xml[_at] != end) {
            const unsigned char c = static_cast<unsigned char>(_xml[_at]);
            if (c == '<' || c == '>' || (c < ' ' && (end == '"' || (c != '\n' && c != '\t')))) break;
            if (c != '&') {
                text += _xml[_at++];
                continue;
            }
            const std::size_t semicolon = _xml.find(';', _at);
            const auto reference = references.find(_xml.substr(_at, semicolon - _at + 1));
            if (reference == references.end()) break;
            text += reference->second;
            _at = semicolon + 1;
        }
        return text;
    }

    bool ReadStart(std::string& content) {
        const std::string tag = ReadName();
        std::map<std::string, std::string> attributes;
        content += tag + "{";
        while (Take(" ")) {
            const std::string name = ReadName();
            if (name.empty() || !Take("=\"")) return false;
            const std::string value = ReadText('"');
            if (!Take("\"") || !attributes.emplace(name, value).second) return false;
            content += name + "=" + value + ";";
        }
        content += "}[";
        if (Take("/>"))
            content += "]";
        else if (Take(">"))
            _open.push_back(tag);
        else
            return false;
        return !tag.empty();
    }

    std::string _xml;
    std::size_t _at = 0;
    std::vector<std::string> _open;
};

std::string Content(const ZELXMLNode& node) {
    return Reader(node.ToXML().CastToCharPtr()).Read();
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
                                 ";Size=1;}[File{}[ x<y>&\"' \r\t\n]Empty{a_b=2;}[]Mixed{}['t'B{}[C{}[]]]]");
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
        ASSERT_EQ(Content(node).find("not well-formed"), std::string::npos) << Content(node);
        ASSERT_EQ(node.LocateNode(bytes.c_str()), 1);
    }
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
    EXPECT_EQ(Content(root), "_{}[]");
}

TEST(ZELXMLNode, AnswersPositionsAndNamesOutside) {
    ZELXMLNode node("n");
    node.AddNode("a");
    node.AddNode("b");
    node.AddNode("a");
    for (const int position : {INT_MIN, -1, 0, 4, INT_MAX}) {
        EXPECT_EQ(node.GetNode(position), nullptr);
        EXPECT_EQ(node.GetAttrName(position), nullptr);
        EXPECT_EQ(node.LocateNode("a", position), 0);
    }
    EXPECT_EQ(node.LocateNode("a", 2), 3);
    EXPECT_EQ(node.LocateNode("x"), 0);
    EXPECT_EQ(node.SetAttr(nullptr, "v"), 1);
    EXPECT_EQ(node.SetAttr("", "v"), 1);
    EXPECT_EQ(node.SetAttr("k", nullptr), 0);
    EXPECT_STREQ(node.GetAttr("k"), "");
    EXPECT_EQ(node.GetAttr("K"), nullptr);
    EXPECT_EQ(node.GetAttr(nullptr), nullptr);
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
    ZELXMLNode root("r");
    ZELXMLNode* node = &root;
    for (int i = 0; i < depth; ++i) node = &node->AddNode("n");
    ZELXMLNode copy(root);
    copy = root;
    const ZELString xml = copy.ToXML();
    EXPECT_LT(xml.Length(), depth * 150);
    EXPECT_EQ(Content(copy).size(), std::string("n{}[]").size() * (depth + 1));
    root.AddNode(copy);
}
