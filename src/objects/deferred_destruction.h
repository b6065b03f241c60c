// Destroys trees of objects and lists without recursion, however deep they are.
//
// A destroyed object or list leaves its contents here. They are destroyed one by one, first to last, and all that one
// of them destroys comes before the next: the order of plain recursion. The contents that are under way in a thread
// form a list, linked through themselves, so destruction needs neither memory nor a deep stack.
#ifndef OBJECTS_DEFERRED_DESTRUCTION_H
#define OBJECTS_DEFERRED_DESTRUCTION_H

namespace zel {

class DeferredContents {
public:
    DeferredContents() noexcept = default;
    DeferredContents(const DeferredContents&) = delete;
    DeferredContents& operator=(const DeferredContents&) = delete;
    virtual ~DeferredContents() = default;

    // Destroys the next element, which may call Destroy() for other contents. False when none was left: then it called
    // nothing.
    virtual bool DestroyNext() noexcept = 0;

    // Destroys all elements of `contents`, an object of ZELNew(), and then the object itself: at once, or, if called
    // from within a DestroyNext() of this thread, as soon as that returns. Null is ignored.
    static void Destroy(DeferredContents* contents) noexcept;

private:
    DeferredContents* _below = nullptr;
};

}  // namespace zel

#endif
