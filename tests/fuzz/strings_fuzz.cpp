// Strings and lists: any operations, also on parts of themselves, beside those of the standard library.
#include "ZELListValZELString.h"
#include "fuzz/input.h"

namespace {

ZELString String(const std::string& text) {
    return ZELString(std::string_view(text));
}

std::string Replaced(std::string text, const std::string& what, const std::string& by, int& count) {
    count = 0;
    for (std::size_t at = 0; !what.empty() && (at = text.find(what, at)) != std::string::npos; at += by.size(), ++count)
        text.replace(at, what.size(), by);
    return text;
}

void StepString(ZELString& text, std::string& model, Input& input) {
    if (model.size() > 20000) text = "", model.clear();
    const std::string other = input.Text(60);
    const auto from = static_cast<std::size_t>(input.Number(0, static_cast<int>(model.size())));
    int count = 0;
    switch (input.Number(0, 11)) {
        case 0:
            text = String(other), model = other;
            break;
        case 1:
            text = text.CastToCharPtr() + from, model = std::string(model.c_str() + std::min(from, model.size()));
            break;
        case 2:
            text += String(other), model += other;
            break;
        case 3:
            text += text.CastToCharPtr() + from, model += std::string(model.c_str() + from);
            break;
        case 4:
            text.Append(text.View().substr(from)), model += std::string(model, from);
            break;
        case 5:
            text = text + text, model += model;
            break;
        case 6:
            text = other.c_str() + text, model = other.c_str() + model;
            break;
        case 7:
            text = text.SubString(from, other.size()),
            model = from < model.size() ? model.substr(from, other.size()) : "";
            break;
        case 8:
            text.Reserve(from * 2);
            break;
        case 9:
            model = Replaced(model, other.substr(0, 2), other, count);
            ASSERT_EQ(text.ReplaceSubString(String(other.substr(0, 2)), String(other)), count);
            break;
        case 10: {
            ZELString moved(std::move(text));
            text = std::move(moved);
            break;
        }
        default: {
            const std::size_t at = other.empty() ? std::string::npos : model.find(other, from);
            ASSERT_EQ(text.FindPosition(String(other), static_cast<int>(from)),
                      at == std::string::npos ? -1 : static_cast<int>(at));
            ASSERT_EQ(text < String(other), model < other);
        }
    }
    ASSERT_EQ(text.View(), model);
    ASSERT_EQ(text.CastToCharPtr()[model.size()], '\0');
    ASSERT_EQ(text[from], from < model.size() ? model[from] : '\0');
}

int Compare(ZELString* left, ZELString* right) {
    const std::string_view one = left->View().substr(0, 1), other = right->View().substr(0, 1);
    return one < other ? -1 : one > other;
}

void StepList(ZELListValZELString& list, std::vector<std::string>& model, const std::string& text, Input& input) {
    const int size = static_cast<int>(model.size()), position = input.Number(-1, size + 2);
    const bool isInside = position >= 1 && position <= size;
    const auto place = model.begin() + (isInside ? position - 1 : 0);
    switch (input.Number(0, 8)) {
        case 0: {
            const bool fits = position >= 1 && position <= size + 1;
            ASSERT_EQ(list.InsertBefore(position, String(text)), fits ? 0 : 1);
            if (fits) model.insert(model.begin() + (position - 1), text);
            break;
        }
        case 1:
            ASSERT_EQ(list.RemovePosition(position), isInside ? 0 : 1);
            if (isInside) model.erase(place);
            break;
        case 2: {
            const int count = input.Number(0, 9), removed = isInside ? std::min(count, size - position + 1) : 0;
            ASSERT_EQ(list.RemovePosition(position, static_cast<unsigned>(count)), removed);
            model.erase(place, place + removed);
            break;
        }
        case 3:
            if (size > 1000) break;
            ASSERT_EQ(list.Append(list), 0);
            for (int i = 0; i < size; ++i) model.push_back(std::string(model[static_cast<std::size_t>(i)]));
            break;
        case 4:
            list.QuickSort(Compare);
            std::stable_sort(model.begin(), model.end(), [](const std::string& one, const std::string& other) {
                return one.substr(0, 1) < other.substr(0, 1);
            });
            break;
        case 5: {
            ZELListValZELString copy(list);
            ASSERT_TRUE(copy == list);
            list = std::move(copy);
            break;
        }
        case 6:
            if (isInside) list.Append(list[position]), model.push_back(std::string(*place));
            break;
        case 7:
            list.RemoveAll(position > 2 ? ZELCollec::KeepMemory : ZELCollec::ReleaseMemory);
            model.clear();
            break;
        default:
            ASSERT_EQ(list.Append(String(text)), 0);
            model.push_back(text);
    }
    ASSERT_EQ(list.Size(), std::ssize(model));
}

}  // namespace

FUZZ_TARGET(input) {
    ZELString text;
    std::string model;
    ZELListValZELString list;
    std::vector<std::string> listModel;
    while (input.remaining_bytes() > 0) {
        StepString(text, model, input);
        StepList(list, listModel, model, input);
        if (input.Number(0, 9) == 0) ASSERT_EQ(Texts(list), listModel);
    }
    ASSERT_EQ(Texts(list), listModel);
}
