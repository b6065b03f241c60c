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

std::string Joined(const Words& words) {
    std::string text;
    for (const std::string& word : words) text += std::to_string(word.size()) + ':' + word;
    return text;
}

enum Kind { Integer, String, Block, List, Bytes, File, Lines, Kinds };
using Item = std::optional<std::string>;

// The next item of that kind as a text, by the decoder; nothing if there is none.
Item Decoded(Decoder& decoder, Kind kind) {
    if (kind == String) return decoder.String();
    if (kind == Block) return decoder.Text();
    if (kind == Bytes) return decoder.Plain(decoder.Header());
    if (kind == Integer) {
        const auto number = decoder.Integer();
        return number ? Item(std::to_string(*number)) : Item();
    }
    if (kind == List) {
        const auto words = decoder.List();
        return words ? Item(Joined(*words)) : Item();
    }
    Item bytes = decoder.File();
    for (std::size_t at = 0; kind == Lines && bytes && (at = bytes->find("\r\n", at)) != std::string::npos; ++at)
        bytes->erase(at, 1);
    return bytes;
}

// The same, by the connection.
Item Received(TASocket& socket, Kind kind, const std::string& path) {
    int number = 7, result = 1;
    ZELString text("before");
    ZELListValZELString list = ::List({"before"});
    void* data = nullptr;
    if (kind == Integer) result = socket.Read(number, Patience);
    if (kind == String) result = socket.Read(text, Patience);
    if (kind == Block) result = socket.GetBlock(text, Patience);
    if (kind == List) result = socket.GetBlock(list, Patience);
    if (kind == Bytes) result = socket.GetBinBlock(&number, &data, Patience);
    if (kind == File) result = socket.GetFile(path.c_str(), Patience);
    if (kind == Lines) result = socket.GetFileASCII(path.c_str(), Patience);
    const std::unique_ptr<void, void (*)(void*)> owned(data, std::free);
    if (result != 0) {
        EXPECT_TRUE(result == 1 && std::strlen(socket.GetErrMsg()) > 10);
        EXPECT_TRUE(number == (kind == Integer || kind == Bytes ? 0 : 7) && data == nullptr);
        EXPECT_TRUE((kind != String && kind != Block) || text == "");
        EXPECT_TRUE(kind != List || list.Size() == 0);
        return std::nullopt;
    }
    if (kind == Integer) return std::to_string(number);
    if (kind == List) return Joined(Texts(list));
    if (kind == Bytes) return std::string(static_cast<char*>(data), static_cast<std::size_t>(number));
    return kind == String || kind == Block ? std::string(text.View()) : ReadBytes(path);
}

void Send(Conversation& talk, Input& input, bool isCompressed, const std::string& path) {
    std::vector<std::pair<Kind, std::string>> sent;
    while (input.remaining_bytes() > 0) {
        const auto kind = static_cast<Kind>(input.Number(0, Lines - 1));
        const std::string text = Repeat(input.Text(60), input.Number(1, 40)), word = text.substr(0, text.find(' '));
        const ZELString string{std::string_view(text)};
        ZELListValZELString list = ::List({"a"});
        list.Append(ZELString(std::string_view("b" + word)));
        sent.emplace_back(kind, kind == Integer ? std::to_string(text.size())
                                : kind == List  ? Joined(Texts(list))
                                                : text);
        if (kind == Block && isCompressed)
            std::replace(sent.back().second.begin(), sent.back().second.end(), '\0', ' ');
        if (kind == Integer) ASSERT_EQ(talk.socket.Write(static_cast<int>(text.size())), 0);
        if (kind == String) ASSERT_EQ(talk.socket.Write(string), 0);
        if (kind == Block) ASSERT_EQ(talk.socket.PutBlock(string), 0);
        if (kind == List) ASSERT_EQ(talk.socket.PutBlock(list), 0);
        if (kind == Bytes) ASSERT_EQ(talk.socket.PutBinBlock(string.Length(), std::string(text).data()), 0);
        if (kind == File) WriteBytes(path, text);
        if (kind == File) ASSERT_EQ(talk.socket.PutFile(path.c_str()), 0);
    }
    Decoder decoder(talk.CloseAndReceive());
    for (const auto& [kind, text] : sent) ASSERT_EQ(Decoded(decoder, kind), text);
}

}  // namespace

FUZZ_TARGET(input) {
    static Listener listener;
    static const TemporaryFolder folder;
    if (input.Number(0, 3) == 0) {
        const bool isCompressed = input.Flip();
        const Variable compress("TASocketCompress", isCompressed ? "1" : "");
        Conversation talk(listener);
        return Send(talk, input, isCompressed, folder / "file");
    }
    Kind kinds[8];
    for (Kind& kind : kinds) kind = static_cast<Kind>(input.Number(0, Kinds - 1));
    const std::string bytes = input.Flip()
                                  ? input.Rest()
                                  : input.Spell({Header(0), Header(1), Header(5), Header(-3), Number(-1), Number(0),
                                                 Number(1), Number(2), Text("word"), "1", "\r\n", "x y ", ::Block("5"),
                                                 "ab cd", Header(300) + std::string(300, 'z')},
                                                200);
    Decoder decoder(bytes);
    Conversation talk(listener);
    talk.peer.Send(bytes);
    talk.peer.Close();
    for (const Kind kind : kinds) {
        const Item expected = Decoded(decoder, kind);
        ASSERT_EQ(Received(talk.socket, kind, folder / "file"), expected);
        if (!expected) break;
    }
}
