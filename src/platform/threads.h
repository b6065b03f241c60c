// Threads, as far as the standard library does not tell.
#ifndef PLATFORM_THREADS_H
#define PLATFORM_THREADS_H

namespace zel {

// The system's number of the calling thread, never 0.
unsigned int CurrentThreadId() noexcept;

// Names the calling thread for debuggers and system tools. Names that the system finds too long are cut; a system
// that has no names for threads changes nothing.
void NameCurrentThread(const char* name) noexcept;

// Calls `body(argument)` on a new thread that nobody waits for. False when the system gives none. (A std::thread that
// is detached does not serve: with mingw-w64 12, some of many that start and are detached at the same time find their
// function lost.)
bool StartThread(void (*body)(void* argument), void* argument) noexcept;

// Keeps the library's code in the process to its end, whoever unloads it: for threads that run its code and that an
// unloading would not wait for. A program that has the library inside itself is not changed.
void KeepLibraryLoaded() noexcept;

}  // namespace zel

#endif
