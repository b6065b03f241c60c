// One end of a connection between couriers: texts and blocks of bytes, waited for with patience but not for ever.
#ifndef EXAMPLES_COURIER_CONVERSATION_H
#define EXAMPLES_COURIER_CONVERSATION_H

#include <cstdlib>
#include <memory>

#include "TAPerfo.h"
#include "TASocket.h"
#include "ZELString.h"

// The first word of both sides. Who changes what follows changes it.
constexpr char Greeting[] = "courier 1";

// Content travels in blocks of at most so many bytes: few enough to stop soon, many enough to be fast.
constexpr int BlockSize = 256 * 1024;

// Counts units of 1024 bytes, since reports see 31 bits of an amount, and an average for each second.
class TransferMeter : public TAPerfoAv {
public:
    TransferMeter() noexcept : TAPerfoAv("KiB", 1) {}
    void Count(int bytes) override {
        _bytes += bytes;
        TAPerfoAv::Count(static_cast<int>(_bytes / 1024 - _counted));
        _counted = _bytes / 1024;
    }

private:
    long long _bytes = 0, _counted = 0;
};

struct Block {
    std::unique_ptr<char, void (*)(void*)> bytes{nullptr, std::free};
    int size = 0;
};

class Conversation {
public:
    // Gives up when the other side is silent for `patience` seconds.
    Conversation(TASocket& socket, int patience);
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;
    ~Conversation();

    // False when the connection is of no more use; Problem() tells why. They also end on an interruption.
    // A text waits for what comes behind it: a block, or listening, or the end of the connection.
    bool Tell(const ZELString& text);
    bool TellBlock(char* bytes, int size);
    bool Hear(ZELString& text);
    // The end of a content is an empty block.
    bool HearBlock(Block& block);

    const ZELString& Problem() const { return _problem; }
    // How much has passed, and how fast.
    ZELString Speed() { return _meter.Report(); }

private:
    template <class Get>
    bool Await(Get get);
    bool Note(bool isGood);

    TASocket& _socket;
    int _patience;
    TransferMeter _meter;  // of both directions
    ZELString _problem;
};

#endif
