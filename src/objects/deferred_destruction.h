// Ends trees of objects and lists without recursion, however deep they are.
//
// What an object or a list held when it ended is its remains. They go one by one, first to last, each with all that
// ends because of it before the next: the order of plain recursion. But each thread keeps its remains on a stack of
// their own, linked through themselves, so ending needs neither memory nor more of the thread's stack.
#ifndef OBJECTS_DEFERRED_DESTRUCTION_H
#define OBJECTS_DEFERRED_DESTRUCTION_H

namespace zel {

class Remains {
public:
    Remains() noexcept = default;
    Remains(const Remains&) = delete;
    Remains& operator=(const Remains&) = delete;
    virtual ~Remains() = default;

    // Ends what is next, which may call End() for other remains. False when nothing was left: then it called nothing.
    virtual bool EndNext() noexcept = 0;

    // Ends all of `remains`, which come from new, and deletes them: at once, or, when called from within EndNext() of
    // this thread, as soon as that returns. Null is nothing.
    static void End(Remains* remains) noexcept;

private:
    Remains* _below = nullptr;
};

}  // namespace zel

#endif
