// Sorted indexes: any operations, also through views and copies, beside a sorted map.
#include "containers/index_model.h"
#include "fuzz/input.h"

namespace {

// Reads a key of its kind.
struct Take {
    Input& input;
    void operator()(std::string& key) const {
        key = (input.Flip() ? input.Text(40) : input.Spell({"x", "xxxxxxxx", "y", "\xFF", "\x7F", "0123456789"}, 40))
                  .c_str();
    }
    void operator()(int& key) const { key = input.Flip() ? input.Number(-4, 40) : input.ConsumeIntegral<int>(); }
    void operator()(Block& key) const {
        for (int& part : key) (*this)(part);
        std::fill(key.begin() + 3, key.end(), key[0]);  // carried along, and not compared
    }
};

// The same key with a number in it.
std::string Numbered(const std::string& key, int number) {
    return key + std::to_string(number);
}
int Numbered(int key, int number) {
    return key / 2 + number;
}
Block Numbered(Block key, int number) {
    key[1] = Numbered(key[1], number);
    return key;
}

template <class Key, class Index>
void Run(Index& index, Input& input) {
    std::map<Key, void*> model;
    while (input.remaining_bytes() > 0) {
        Key key;
        Take{input}(key);
        const int number = input.Number(-1, 500);
        switch (input.Number(0, 9)) {
            case 0:
                ASSERT_EQ(index.RemovePosition(number), number >= 0 && number < std::ssize(model) ? 0 : 1);
                if (number >= 0 && number < std::ssize(model)) model.erase(std::next(model.begin(), number));
                break;
            case 1:
                for (int i = 0; i < number; ++i) {
                    const Key added = Numbered(key, i);
                    ASSERT_TRUE(Keys::IsCopy(index.Append(Keys::Pass(added), Value(i)), added));
                    model.emplace(added, Value(i));
                }
                break;
            case 2:
                if (number < 20) {
                    ASSERT_EQ(index.Reset(), 0);
                    model.clear();
                }
                break;
            case 3: {
                const Index copy(index);
                ExpectSame(copy, model);
                break;
            }
            case 4: {
                ExpectSame(index, model);
                break;
            }
            case 5: {
                Index view(index);
                view = index;
                std::map<Key, void*> changed(model);
                view.Append(Keys::Pass(key), Value(number));
                changed.emplace(key, Value(number));
                ExpectSame(view, changed);
                break;
            }
            default:
                ASSERT_TRUE(Keys::IsCopy(index.Append(Keys::Pass(key), Value(number)), key));
                model.emplace(key, Value(number));
        }
        const auto entry = model.find(key);
        ASSERT_EQ(index[Keys::Pass(key)], entry == model.end() ? nullptr : entry->second);
    }
    ExpectSame(index, model);
}

}  // namespace

FUZZ_TARGET(input) {
    const int kind = input.Number(0, 3);
    if (kind == 0) {
        TAIndexI index;
        Run<int>(index, input);
    } else if (kind == 1) {
        TAIndexB index(3);
        Run<Block>(index, input);
    } else {
        TAIndex index(input.Number(-1, 40));
        Run<std::string>(index, input);
    }
}
