// Waiting is done second by second, so that an interruption is noticed: a wait that ends without a byte leaves the
// connection as it was. A block that has begun is read to its end, under the connection's own limit for silence.

#include "conversation.h"

#include "support/interruption.h"

Conversation::Conversation(TASocket& socket, int patience) : _socket(socket), _patience(patience) {
    _socket.SetIdleLimit(patience);
    _socket.SetPerfo(&_meter, &_meter);
}

Conversation::~Conversation() {
    _socket.SetPerfo(nullptr, nullptr);
}

bool Conversation::Note(bool isGood) {
    if (interruption::Happened())
        _problem = "interrupted";
    else if (!isGood)
        _problem = _socket.GetErrMsg();
    return isGood && !interruption::Happened();
}

template <class Get>
bool Conversation::Await(Get get) {
    int result = 2;
    for (int second = 0; second < _patience && result == 2 && !interruption::Happened(); ++second) result = get(1);
    return Note(result == 0);
}

bool Conversation::Tell(const ZELString& text) {
    return Note(_socket.PutBlock(text) == 0);
}

bool Conversation::TellBlock(char* bytes, int size) {
    return Note(_socket.PutBinBlock(size, bytes) == 0);
}

bool Conversation::Hear(ZELString& text) {
    return Await([&](int seconds) { return _socket.GetBlock(text, seconds); });
}

bool Conversation::HearBlock(Block& block) {
    void* bytes = nullptr;
    int size = 0;
    const bool isGood = Await([&](int seconds) { return _socket.GetBinBlock(&size, &bytes, seconds); });
    block.bytes.reset(static_cast<char*>(bytes));
    block.size = size;
    if (isGood && size > BlockSize) _problem = "a block is too large";
    return isGood && size <= BlockSize;
}
