// The whole texts of files that a tool works through in a known order, read ahead of need.
//
//     std::vector<std::unique_ptr<TAFileBuffer>> files;
//     for (const char* name : names) files.push_back(std::make_unique<TAFileBuffer>(name, 0));
//     for (auto& file : files) {
//         if (const char* text = file->GetBuffer()) Use(text, file->GetSize());
//         file.reset();
//     }
//     TAFileBuffer::ASyncCleanup();
//
// One thread of the process reads all buffers, one after the other, while the tool works. It stops while more than
// 10,240,000 bytes are read that nobody has asked for; a text counts until GetBuffer(), GetSize() or the end of its
// buffer. Who asks for a buffer that the thread cannot read now reads it itself, so buffers may be asked for in any
// order. Files are read as text: see ZELFileBuffer.h, whose buffers are shared by count and load on demand as well.
//
// The reading thread is a detached TAThread: while it sleeps or waits for texts to be taken, TAThread::WaitForAll()
// waits for it. ASyncCleanup() lets it end; the next buffer starts another one.
//
// Buffers may be made, used and ended from any thread, each not ended while another thread uses it. Nothing throws.
// When memory runs out, a line that starts with "# Alloc failed in TAFileBuffer" goes to standard output and the buffer
// holds what was read until then: perhaps nothing.
#ifndef TAFILEBUFFER_H
#define TAFILEBUFFER_H

#include <cstdint>

#include "TAFileName.h"
#include "ZELExport.h"
#include "ZELListPtr.h"

class TAFileBuffer;

// Does not own the buffers.
class ZELListPtrTAFileBuffer : public ZELListPtr<TAFileBuffer> {
public:
    using ZELListPtr<TAFileBuffer>::ZELListPtr;
};

class ZEL_API TAFileBuffer {
public:
    // Hands the file to the reading thread: behind those that wait already or, with `first` non-zero, in front of them.
    // Buffers that follow one of these come right behind it, before the earlier ones. A `first` one also sets the count
    // of bytes that nobody has asked for to 0. The name is copied; a null one is that of no file.
    TAFileBuffer(const char* name, int first) noexcept;
    TAFileBuffer(const TAFileBuffer&) = delete;
    TAFileBuffer& operator=(const TAFileBuffer&) = delete;
    // A file that is still waiting is never read; one that is being read is waited for.
    ~TAFileBuffer();

    // The text with a NUL behind it, waiting until it is read; it lives as long as the buffer. Null when the file
    // cannot be read.
    char* GetBuffer() noexcept;
    // The bytes of the text; waits as well.
    int GetSize() noexcept;
    // 0 when the whole text was read; otherwise, as ZELFileBuffer::Status, 1: the file cannot be opened or read, or
    // memory ran out. Waits as well.
    int GetStatus() noexcept;
    const char* GetName() const noexcept { return _name; }
    // Waits for the text and writes it to `file`, as text, in place of what is there. 0, or 1 when it could not be
    // written whole, or when it was not read whole: then `file` is left alone.
    int SaveAs(TAFileName& file) noexcept;

    // Lets the reading thread end, at once when it has nothing to read, else as soon as that is so. Does not wait.
    // A buffer that is made meanwhile takes this back.
    static void ASyncCleanup() noexcept;

private:
    enum State : std::int32_t { Unregistered, Registered, Loading, Loaded };

    static void ASyncLoad(int, const char**) noexcept;
    static void StartLoader() noexcept;
    int LoadFile() noexcept;
    void TakeOut() noexcept;
    void ReadText(bool isKnown) noexcept;
    void AwaitText() noexcept;
    void GiveBack() noexcept;

    bool _isConsumed = false;
    bool _isWhole = false;
    State _state = Unregistered;  // changed under the lock of all buffers, as everything here; constant once Loaded
    std::int32_t _size = 0;
    char* _name;
    char* _text = nullptr;
};

#endif
