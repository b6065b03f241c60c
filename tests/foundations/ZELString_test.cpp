#include "ZELString.h"

#include "support/testing.h"

namespace {

constinit ZELString stringOfStaticStorage;

// Lengths on both sides of every border of the representation.
const std::size_t lengths[] = {0, 1, 7, 30, 31, 32, 33, 47, 48, 63, 64, 4000};

std::string Letters(std::size_t length) {
    std::string text(length, ' ');
    for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<char>('a' + i % 26);
    return text;
}

// Every text carries its terminator, whatever built it.
void ExpectText(const ZELString& actual, const std::string& expected) {
    ASSERT_EQ(actual.View(), expected);
    ASSERT_EQ(actual.Length(), static_cast<int>(expected.size()));
    ASSERT_EQ(static_cast<const char*>(actual)[expected.size()], '\0');
}

int Replace(std::string& text, const std::string& what, const std::string& by) {
    int replaced = 0;
    for (std::size_t at = 0; !what.empty() && (at = text.find(what, at)) != std::string::npos; at += by.size()) {
        text.replace(at, what.size(), by);
        ++replaced;
    }
    return replaced;
}

}  // namespace

TEST(ZELString, EveryPairOfLengthsIsBuiltCopiedMovedAndAssigned) {
    for (const std::size_t from : lengths)
        for (const std::size_t to : lengths) {
            const std::string old = Letters(from), text = Letters(to);
            ZELString target(old.c_str());
            const ZELString source(text.c_str());
            target = source;
            ExpectText(target, text);
            target = old.c_str();
            ExpectText(target, old);
            ExpectText(target + source, old + text);
            ExpectText(target + text.c_str(), old + text);
            ExpectText(old.c_str() + source, old + text);

            ZELString moved(std::move(target));
            ExpectText(moved, old);
            target = source;  // a string that was moved from can be used again
            ExpectText(target, text);
            target = std::move(moved);
            ExpectText(target, old);
        }
}

TEST(ZELString, NullCountsAsEmpty) {
    const char* null = nullptr;
    char* writableNull = nullptr;
    ZELString text(null);
    EXPECT_TRUE(text == null && text == "" && ZELString(writableNull) == text && ZELString(nullptr) == text);
    text = "kept";
    text += null;
    EXPECT_TRUE(text + null == "kept" && null + text == "kept" && text > null && text != null);
    text = null;
    ExpectText(text, "");
    ExpectText(ZELString(null, 5), "");
    ExpectText(stringOfStaticStorage, "");
}

TEST(ZELString, ArgumentsMayLieInsideTheStringThatChanges) {
    for (const std::size_t length : lengths) {
        const std::string model = Letters(length);
        ZELString text(model.c_str());
        text += text;
        ExpectText(text, model + model);
        text += text.CastToCharPtr() + text.Length() / 2;
        ExpectText(text, model + model + model);
        text = text.CastToCharPtr() + text.Length() / 3;
        text = *&text;
        ExpectText(text, model + model);
        EXPECT_EQ(text.ReplaceSubString(text, text), length > 0 ? 1 : 0);
        ExpectText(text, model + model);
    }
}

TEST(ZELString, PositionsOutsideGiveNothing) {
    const ZELString text("abc");
    for (const int position : {-1, 3, 4, INT_MIN, INT_MAX}) {
        EXPECT_EQ(text[position], '\0') << position;
        EXPECT_EQ(text.FindPosition("c", position), -1) << position;
        ExpectText(text.SubString(static_cast<std::size_t>(position), 2), "");
    }
    EXPECT_TRUE(text[std::size_t{2}] == 'c' && text[-1L] == '\0' && text[UINT64_MAX] == '\0');
    ExpectText(text.SubString(1, SIZE_MAX), "bc");
    EXPECT_TRUE(text.FindPosition("", 0) == -1 && text.FindPosition("abcd", 0) == -1);
}

TEST(ZELString, BytesCompareUnsignedAndTextsByContent) {
    const std::vector<ZELString> ascending{"",    ZELString("\0", 1), "A", "a", ZELString("a\0", 2), "aa", "b", "\x80",
                                           "\xFF"};
    for (std::size_t i = 0; i < ascending.size(); ++i)
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            const ZELString &left = ascending[i], &right = ascending[j];
            EXPECT_TRUE((left < right) == (i < j) && (left > right) == (i > j)) << i << " " << j;
            EXPECT_TRUE((left == right) == (i == j) && (left != right) == (i != j)) << i << " " << j;
        }
    EXPECT_TRUE("abc" == ZELString("abc") && ZELString("abc") != "abd" && "abc" != ZELString("ab"));
}

TEST(ZELString, RandomOperationsAgreeWithAModel) {
    std::mt19937 random(20240305);
    const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
    ZELString text;
    std::string model;
    for (int step = 0; step < 20000; ++step) {
        // Few letters, so that searches and replacements find something.
        std::string piece(below(9), 'a');
        for (char& letter : piece) letter = static_cast<char>('a' + below(3));
        const std::size_t operation = below(5);
        if (operation == 0) {
            text += piece.c_str();
            text += 'c';
            model += piece + 'c';
        } else if (operation == 1) {
            text.Reserve(below(200));
        } else if (operation == 2) {
            const std::size_t start = below(model.size() + 3), count = below(100);
            text = text.SubString(start, count);
            model = start < model.size() ? model.substr(start, count) : "";
        } else if (operation == 3) {
            const std::string by = Letters(below(4));
            ASSERT_EQ(text.ReplaceSubString(piece.c_str(), by.c_str()), Replace(model, piece, by));
        } else {
            // Often a piece of the text itself, so that long beginnings match too.
            if (below(2) == 0) piece = model.substr(below(model.size() + 1), below(80)) + piece;
            const std::size_t from = below(model.size() + 2);
            const std::size_t at = piece.empty() ? std::string::npos : model.find(piece, from);
            ASSERT_EQ(text.FindPosition(piece.c_str(), static_cast<int>(from)), static_cast<int>(at));  // npos is -1
        }
        ASSERT_NO_FATAL_FAILURE(ExpectText(text, model));
        if (model.size() > 3000) text = "", model.clear();
    }
}

// A search that compares anew at each position would take hours here.
TEST(ZELString, SearchStaysLinearOnRepetitiveText) {
    const std::string as(1 << 20, 'a');
    const ZELString text((as + as + "b" + as).c_str());
    EXPECT_EQ(text.FindPosition((as + "b" + as).c_str(), 0), 1 << 20);
    EXPECT_EQ(text.FindPosition((as + "b" + as + "a").c_str(), 0), -1);
    EXPECT_EQ(text.FindPosition((as + "ba").c_str(), 1 << 10), 1 << 20);
}

TEST(ZELString, UpperCaseIsTheCLocalesForEveryByte) {
    for (int byte = 1; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        const char expected = character >= 'a' && character <= 'z' ? static_cast<char>(character - 32) : character;
        ExpectText(ZELString(std::string(40, character).c_str()).ToUpper(), std::string(40, expected));
    }
}

TEST(ZELString, ATextBeyondTheLimitIsRefusedAndChangesNothing) {
    ZELString text("kept");
    const std::string output = Printed([&] { text.Reserve(std::size_t{1} << 31); });
    EXPECT_TRUE(output.starts_with("# Alloc failed in ZELString")) << output;
    ExpectText(text, "kept");
}

TEST(ZELString, StreamsTakeTextOfAnyBytesAndTheirOwnWidth) {
    std::ostringstream stream;
    stream.width(5);
    stream << ZELString("a\0b", 3) << ZELString(Letters(40).c_str());
    EXPECT_EQ(stream.str(), std::string("  a\0b", 5) + Letters(40));
}
