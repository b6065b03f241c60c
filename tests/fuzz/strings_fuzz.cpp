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
    const std::string end = model.substr(from), cut = end.c_str();
    const int kind = input.Number(0, 11);
    if (kind == 0) text = String(other), model = other;
    if (kind == 1) text = text.CastToCharPtr() + from, model = cut;
    if (kind == 2) text += String(other), model += other;
    if (kind == 3) text += text.CastToCharPtr() + from, model += cut;
    if (kind == 4) text.Append(text.View().substr(from)), model += end;
    if (kind == 5) text = text + text, model += model;
    if (kind == 6) text = other.c_str() + text, model = other.c_str() + model;
    if (kind == 7) text = text.SubString(from, other.size()), model = end.substr(0, other.size());
    if (kind == 8) text.Reserve(from * 2);
    if (kind == 9) {
        int count = 0;
        model = Replaced(model, other.substr(0, 2), other, count);
        ASSERT_EQ(text.ReplaceSubString(String(other.substr(0, 2)), String(other)), count);
    }
    if (kind == 10) {
        ZELString moved(std::move(text));
        text = std::move(moved);
    }
    const auto at = other.empty() ? -1 : static_cast<std::ptrdiff_t>(model.find(other, from));
    ASSERT_EQ(text.FindPosition(String(other), static_cast<int>(from)), at);
    ASSERT_EQ(text < String(other), model < other);
    ASSERT_EQ(text.View(), model);
    ASSERT_EQ(text.CastToCharPtr()[model.size()], '\0');
}

int Compare(ZELString* left, ZELString* right) {
    const std::string_view one = left->View().substr(0, 1), other = right->View().substr(0, 1);
    return one < other ? -1 : one > other;
}

void StepList(ZELListValZELString& list, std::vector<std::string>& model, const std::string& text, Input& input) {
    const int size = static_cast<int>(model.size()), position = input.Number(-1, size + 2);
    const bool isInside = position >= 1 && position <= size;
    const auto place = model.begin() + (isInside ? position - 1 : 0);
    const int kind = input.Number(0, 8), count = input.Number(0, 9);
    if (kind == 0) {
        const bool fits = position >= 1 && position <= size + 1;
        ASSERT_EQ(list.InsertBefore(position, String(text)), fits ? 0 : 1);
        if (fits) model.insert(model.begin() + (position - 1), text);
    } else if (kind == 1) {
        ASSERT_EQ(list.RemovePosition(position), isInside ? 0 : 1);
        if (isInside) model.erase(place);
    } else if (kind == 2) {
        const int removed = isInside ? std::min(count, size - position + 1) : 0;
        ASSERT_EQ(list.RemovePosition(position, static_cast<unsigned>(count)), removed);
        model.erase(place, place + removed);
    } else if (kind == 3 && size < 1000) {
        const std::vector<std::string> copy(model);
        ASSERT_EQ(list.Append(list), 0);
        model.insert(model.end(), copy.begin(), copy.end());
    } else if (kind == 4) {
        list.QuickSort(Compare);
        std::stable_sort(model.begin(), model.end(), [](const std::string& one, const std::string& other) {
            return one.substr(0, 1) < other.substr(0, 1);
        });
    } else if (kind == 5) {
        ZELListValZELString copy(list);
        ASSERT_TRUE(copy == list);
        list = std::move(copy);
    } else if (kind == 6 && isInside) {
        list.Append(list[position]), model.push_back(std::string(*place));
    } else if (kind == 7) {
        list.RemoveAll(count > 2 ? ZELCollec::KeepMemory : ZELCollec::ReleaseMemory), model.clear();
    } else {
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
