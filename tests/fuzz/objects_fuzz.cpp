// Trees of objects: any changes beside a plain model, and the dump by its description.
#include "TAPObject.h"
#include "fuzz/input.h"

namespace {

using Dump = std::map<std::string, std::string>;

struct Node {
    TAPAttr::Type type = TAPAttr::TypeNull;
    std::string text;
    int number = 0;
    std::vector<std::string> names;
    std::vector<Node> elements;
    std::map<std::string, Node> attributes;
};

// The lines of docs/dump-format.md.
class Writer {
public:
    void Object(const Node& node, int id) {
        for (const auto& [name, value] : node.attributes) {
            const int valueId = ++_last;
            const std::string kind = Value(value, valueId);
            dump["Objects"] += std::to_string(id) + ':' + name + ':' + kind + ':' + std::to_string(valueId) + '\n';
        }
    }
    Dump dump{{"Objects", ""}};

private:
    std::string Value(const Node& node, int id) {
        static const char* const kinds[] = {"Null",     "AttrString",  "AttrFileName", "AttrObject",
                                            "AttrList", "AttrInteger", "AttrPath"};
        const std::string kind = kinds[node.type], begin = std::to_string(id) + ':';
        if (node.type == TAPAttr::TypeNull) return kind;
        std::string& lines = dump[kind];
        if (node.type == TAPAttr::TypeString || node.type == TAPAttr::TypeFileName) lines += begin + node.text + '\n';
        if (node.type == TAPAttr::TypeInteger) lines += begin + std::to_string(node.number) + '\n';
        if (node.type == TAPAttr::TypePath) {
            lines += begin;
            for (std::size_t i = 2; i < node.names.size(); ++i) lines += node.names[i] + ';';
            lines += std::string(std::min<std::size_t>(node.names.size(), 2), ';') + '\n';
        }
        if (node.type == TAPAttr::TypeObject) {
            const int object = ++_last;
            lines += begin + std::to_string(object) + '\n';
            Object(node, object);
        }
        for (std::size_t i = 0; i < node.elements.size(); ++i) {
            const int element = ++_last;
            lines += begin + std::to_string(i + 1) + ':' + std::to_string(element) + '\n';
            Value(node.elements[i], element);
        }
        return kind;
    }
    int _last = 0;
};

void Change(TAPObject& object, Node& node, Input& input, int depth);

TAPAttr MakePath(Node& node, Input& input) {
    TAPPath* path = nullptr;
    for (int count = input.Number(0, 5); count > 0; --count) {
        node.names.emplace_back(input.Text(8).c_str());
        auto* const name = new TAPName(node.names.back().c_str());
        auto* const longer = path != nullptr ? new TAPPath(path, name) : new TAPPath(name);
        if (path != nullptr) path->Release();
        name->Release();
        path = longer;
    }
    const TAPAttr made(path);
    if (path != nullptr) path->Release();
    return made;
}

// A value and its model.
TAPAttr Make(Node& node, Input& input, int depth) {
    node.type = static_cast<TAPAttr::Type>(input.Number(0, 6));
    if (depth == 0 && (node.type == TAPAttr::TypeList || node.type == TAPAttr::TypeObject))
        node.type = TAPAttr::TypeNull;
    node.text = input.Text(40).c_str();
    switch (node.type) {
        case TAPAttr::TypeString:
            return TAPAttr(node.text.c_str());
        case TAPAttr::TypeFileName: {
            const TAFileName name(node.text.c_str());
            node.text = name.View();
            return TAPAttr(name);
        }
        case TAPAttr::TypeInteger:
            return TAPAttr(node.number = input.ConsumeIntegral<int>());
        case TAPAttr::TypePath:
            return MakePath(node, input);
        case TAPAttr::TypeObject: {
            auto* const object = new TAPObject;
            Change(*object, node, input, depth - 1);
            const TAPAttr made(object);
            object->Release();
            return made;
        }
        case TAPAttr::TypeList: {
            ZELListValTAPAttr list;
            for (int count = input.Number(0, 4); count > 0 && input.remaining_bytes() > 0; --count)
                list.Append(Make(node.elements.emplace_back(), input, depth - 1));
            return TAPAttr(list);
        }
        default:
            return TAPAttr();
    }
}

void Append(TAPObject& object, Node& node, const std::string& name, Input& input, int depth) {
    const auto found = node.attributes.find(name);
    Node added;
    const TAPAttr value = Make(added, input, depth);
    const TAPAttr::Type type = found != node.attributes.end() ? found->second.type : TAPAttr::TypeList;
    const bool isSum = type == TAPAttr::TypeString || type == TAPAttr::TypeInteger;
    if (isSum && added.type != type) return;  // ends the process
    ASSERT_EQ(object.AppendToAttribute(name.c_str(), value), isSum || type == TAPAttr::TypeList ? 0 : 1);
    if (found == node.attributes.end()) node.attributes[name].type = TAPAttr::TypeList;
    Node& target = node.attributes[name];
    if (type == TAPAttr::TypeString) target.text += added.text;
    if (type == TAPAttr::TypeInteger)
        target.number = static_cast<int>(static_cast<unsigned>(target.number) + static_cast<unsigned>(added.number));
    if (type == TAPAttr::TypeList) target.elements.push_back(added);
}

void Change(TAPObject& object, Node& node, Input& input, int depth) {
    for (int steps = input.Number(0, 12); steps > 0 && input.remaining_bytes() > 0; --steps) {
        const std::string name = input.Text(6).c_str();
        switch (input.Number(0, 3)) {
            case 0:
                ASSERT_EQ(object.RemoveAttribute(name.c_str()), node.attributes.erase(name) == 1 ? 0 : 1);
                break;
            case 1:
                Append(object, node, name, input, depth);
                break;
            default: {
                Node value;
                object.SetAttribute(name.c_str(), Make(value, input, depth));
                node.attributes[name] = value;
            }
        }
        ASSERT_EQ(object.HasAttribute(name.c_str()), static_cast<int>(node.attributes.count(name)));
    }
    std::vector<std::string> names;
    for (int position = object.GetFirstAttributePosition(); position != 0;) {
        const char* name = nullptr;
        const TAPAttr value = object.GetNextAttribute(position, name);
        ASSERT_TRUE(value == object.GetAttribute(name) && node.attributes.count(name) == 1);
        ASSERT_EQ(value.IsType(node.attributes[name].type), 1);
        names.emplace_back(name);
    }
    ASSERT_TRUE(std::is_sorted(names.begin(), names.end()) && names.size() == node.attributes.size());
}

}  // namespace

FUZZ_TARGET(input) {
    TAPObject root;
    Node node;
    Change(root, node, input, 8);
    Writer writer;
    writer.Object(node, 0);
    const TemporaryFolder folder;
    ASSERT_EQ(root.SaveToFile(folder.Path().c_str()), 0);
    Dump dump;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        dump[entry.path().stem().string()] = ReadBytes(entry.path().string());
    ASSERT_EQ(dump, writer.dump);
}
