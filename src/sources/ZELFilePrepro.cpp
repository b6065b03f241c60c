// Gets the text and hands it to the scanner. The text is kept with zeros behind it, since the scanner's last step reads
// on there; the output has as much room for what that step writes.

#include "ZELFilePrepro.h"

#include <cstring>
#include <utility>

#include "ZELFileBuffer.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "sources/source_scanner.h"

using namespace zel;

namespace {

char* MakeBlock(std::size_t length) noexcept {
    const std::size_t size = length + 1 + SourceScannerSlack;
    char* const block = AllocateArray<char>(size);
    if (block == nullptr) ReportAllocFailure("ZELFilePrepro", size);
    return block;
}

}  // namespace

ZELFilePrepro::ZELFilePrepro(ZELString fileName) noexcept : _fileName(std::move(fileName)) {}

ZELFilePrepro::ZELFilePrepro(const char* text, std::size_t length) noexcept {
    if (text == nullptr) text = "", length = 0;
    const void* const end = std::memchr(text, '\0', length);
    if (end != nullptr) length = static_cast<std::size_t>(static_cast<const char*>(end) - text);
    Keep(text, length);
}

ZELFilePrepro::~ZELFilePrepro() {
    Free(_text);
}

void ZELFilePrepro::Keep(const char* text, std::size_t length) noexcept {
    _text = MakeBlock(length);
    if (_text == nullptr) return;
    std::memcpy(_text, text, length);
    std::memset(_text + length, 0, 1 + SourceScannerSlack);
    _length = length;
}

bool ZELFilePrepro::ObtainText() noexcept {
    if (_text != nullptr) return true;
    if (_fileName.IsIncomplete()) return false;
    ZELFileBuffer* const file = ZELNew<ZELFileBuffer>(_fileName);
    if (file == nullptr) {
        ReportAllocFailure("ZELFilePrepro", sizeof(ZELFileBuffer));
        return false;
    }
    const char* const text = file->getBuffer();
    // A text that is not whole would be taken for the source.
    if (text != nullptr && file->getStatus() == ZELFileBuffer::Loaded) Keep(text, std::strlen(text));
    file->destroy();
    return _text != nullptr;
}

int ZELFilePrepro::preprocess(int flags, char*& output) noexcept {
    char* const block = ObtainText() ? MakeBlock(_length) : nullptr;
    if (block == nullptr) return 1;
    bool complete = false;
    block[StripSource(_text, _length, flags, block, complete)] = '\0';
    output = block;
    return complete ? 0 : 2;
}
