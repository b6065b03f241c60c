// Each receiving function of a connection, fed by a peer that sends anything and hangs up, beside a plain decoder. The
// decoder also reads the bytes that a connection sends.
#include "fuzz/input.h"
#include "network/peer.h"

namespace {

using Words = std::vector<std::string>;
constexpr int Patience = 9, Most = (1 << 24) - 1;

// The items of docs/wire.md; nothing where the bytes do not hold one.
class Decoder {
public:
    explicit Decoder(std::string bytes) : _bytes(std::move(bytes)) {}

    std::optional<std::string> Take(std::optional<int> size) {
        if (!size || *size < 0 || *size > std::ssize(_bytes) - _at) return std::nullopt;
        return _bytes.substr(static_cast<std::size_t>(std::exchange(_at, _at + *size)),
                             static_cast<std::size_t>(*size));
    }
    std::optional<int> Integer() {
        const auto bytes = Take(4);
        if (!bytes) return std::nullopt;
        unsigned value = 0;
        for (const char byte : {3, 2, 1, 0}) value = value << 8 | static_cast<unsigned char>((*bytes)[byte]);
        return static_cast<int>(value);
    }
    std::optional<std::string> String() { return Take(Integer()); }
    std::optional<int> Header() {
        const auto bytes = Take(4);
        if (!bytes) return std::nullopt;
        int value = 0, sign = 0;
        for (const char byte : {3, 2, 1, 0}) {
            const int digit = static_cast<unsigned char>((*bytes)[byte]) - 32;
            value = value * 64 + digit;
            sign |= digit & 64;
        }
        return sign != 0 ? -value : value;
    }
    // Bytes of a block that is not compressed, of a length that can be sent.
    std::optional<std::string> Plain(std::optional<int> size) { return size <= Most ? Take(size) : std::nullopt; }
    std::optional<std::string> Text() {
        const auto size = Header();
        if (!size || *size >= 0) return Plain(size);
        const auto count = Dictionary();
        std::string text;
        for (int i = 0; i < count.value_or(0); ++i) {
            const auto number = Integer();
            if (!number || _words.count(*number) == 0) return std::nullopt;
            text += (i > 0 ? " " : "") + _words[*number];
        }
        return count ? std::optional(text) : std::nullopt;
    }
    std::optional<Words> List() {
        const auto size = Header();
        if (!size || *size >= 0) {
            const auto text = Plain(size);
            if (!text) return std::nullopt;
            Words words;
            std::istringstream stream(*text + ' ');
            for (std::string word; !text->empty() && std::getline(stream, word, ' ');) words.push_back(word);
            return words;
        }
        const auto count = Dictionary();
        Words words;
        for (int i = 0; i < count.value_or(0); ++i) {
            const auto word = String();
            if (!word) return std::nullopt;
            words.push_back(*word);
        }
        return count ? std::optional(words) : std::nullopt;
    }
    std::optional<std::string> File() {
        std::string bytes;
        for (;;) {
            const auto piece = Take(Header());
            if (!piece) return std::nullopt;
            if (piece->empty()) break;
            bytes += *piece;
        }
        const auto total = Plain(Header());
        return total && IsNumber(*total) && std::stoll(*total) == std::ssize(bytes) ? std::optional(bytes)
                                                                                    : std::nullopt;
    }

private:
    static bool IsNumber(const std::string& text) {
        return !text.empty() && text.size() < 19 &&
               std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    }
    // The number of items after the new words; nothing also if it is negative.
    std::optional<int> Dictionary() {
        for (auto number = Integer(); number != -1; number = Integer()) {
            const auto word = String();
            if (!number || !word) return std::nullopt;
            _words.emplace(*number, *word);
        }
        const auto count = Integer();
        return count >= 0 ? count : std::nullopt;
    }

    std::string _bytes;
    std::ptrdiff_t _at = 0;
    std::map<int, std::string> _words;
};

bool Agrees(TASocket& socket, int result, bool isExpected) {
    return result == (isExpected ? 0 : 1) && (result == 0 || std::strlen(socket.GetErrMsg()) > 10);
}

// Gets one item of that kind. False after a failure, which the decoder has expected.
bool Get(TASocket& socket, Decoder& decoder, int kind, const std::string& path) {
    int number = 7;
    ZELString text("before");
    ZELListValZELString list = List({"before"});
    void* data = nullptr;
    switch (kind) {
        case 0: {
            const auto expected = decoder.Integer();
            EXPECT_TRUE(Agrees(socket, socket.Read(number, Patience), expected.has_value()));
            EXPECT_EQ(number, expected.value_or(0));
            return expected.has_value();
        }
        case 1:
        case 2: {
            const auto expected = kind == 1 ? decoder.String() : decoder.Text();
            const int result = kind == 1 ? socket.Read(text, Patience) : socket.GetBlock(text, Patience);
            EXPECT_TRUE(Agrees(socket, result, expected.has_value()));
            EXPECT_EQ(text.View(), expected.value_or(""));
            return expected.has_value();
        }
        case 3: {
            const auto expected = decoder.List();
            EXPECT_TRUE(Agrees(socket, socket.GetBlock(list, Patience), expected.has_value()));
            EXPECT_EQ(Texts(list), expected.value_or(Words()));
            return expected.has_value();
        }
        case 4: {
            const auto expected = decoder.Plain(decoder.Header());
            EXPECT_TRUE(Agrees(socket, socket.GetBinBlock(&number, &data, Patience), expected.has_value()));
            const std::unique_ptr<void, void (*)(void*)> owned(data, std::free);
            EXPECT_EQ(std::string(static_cast<char*>(data), static_cast<std::size_t>(number)), expected.value_or(""));
            return expected.has_value();
        }
        default: {
            auto expected = decoder.File();
            const int result =
                kind == 5 ? socket.GetFile(path.c_str(), Patience) : socket.GetFileASCII(path.c_str(), Patience);
            EXPECT_TRUE(Agrees(socket, result, expected.has_value()));
            if (!expected) return false;
            for (std::size_t at = 0; kind == 6 && (at = expected->find("\r\n", at)) != std::string::npos; ++at)
                expected->erase(at, 1);
            EXPECT_EQ(ReadBytes(path), *expected);
            return true;
        }
    }
}

void Send(Conversation& talk, Input& input, bool isCompressed) {
    std::vector<std::function<void(Decoder&)>> checks;
    while (input.remaining_bytes() > 0) {
        const std::string text = Repeat(input.Text(60), input.Number(1, 40)), word = text.substr(0, text.find(' '));
        switch (input.Number(0, 3)) {
            case 0:
                ASSERT_EQ(talk.socket.Write(static_cast<int>(text.size())), 0);
                checks.push_back(
                    [text](Decoder& decoder) { ASSERT_EQ(decoder.Integer(), static_cast<int>(text.size())); });
                break;
            case 1: {
                std::string sent = text;
                if (isCompressed) std::replace(sent.begin(), sent.end(), '\0', ' ');
                ASSERT_EQ(talk.socket.PutBlock(ZELString(std::string_view(text))), 0);
                checks.push_back([sent](Decoder& decoder) { ASSERT_EQ(decoder.Text(), sent); });
                break;
            }
            case 2: {
                ZELListValZELString list;
                for (const char* const part : {"a", "b"}) list.Append(ZELString(std::string_view(part + word)));
                ASSERT_EQ(talk.socket.PutBlock(list), 0);
                checks.push_back([words = Texts(list)](Decoder& decoder) { ASSERT_EQ(decoder.List(), words); });
                break;
            }
            default: {
                std::string bytes = text;
                ASSERT_EQ(talk.socket.PutBinBlock(static_cast<int>(bytes.size()), bytes.data()), 0);
                checks.push_back([bytes](Decoder& decoder) { ASSERT_EQ(decoder.Plain(decoder.Header()), bytes); });
            }
        }
    }
    Decoder decoder(talk.CloseAndReceive());
    for (const auto& check : checks) check(decoder);
}

}  // namespace

FUZZ_TARGET(input) {
    static Listener listener;
    static const TemporaryFolder folder;
    if (input.Number(0, 3) == 0) {
        const bool isCompressed = input.Flip();
        const Variable compress("TASocketCompress", isCompressed ? "1" : "");
        Conversation talk(listener);
        return Send(talk, input, isCompressed);
    }
    int kinds[8];
    for (int& kind : kinds) kind = input.Number(0, 6);
    const std::string bytes = input.Rest();
    Decoder decoder(bytes);
    Conversation talk(listener);
    talk.peer.Send(bytes);
    talk.peer.Close();
    for (const int kind : kinds)
        if (!Get(talk.socket, decoder, kind, folder / "file")) break;
}
