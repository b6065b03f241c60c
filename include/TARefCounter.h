// An intrusive reference count: the object deletes itself when its last reference goes.
//
//     class Picture : public TARefCounter {};
//     Picture* const picture = new Picture;  // the creator holds the first reference
//     picture->AddRef();                     // and somebody else one more
//     picture->Release();
//     picture->Release();                    // deleted here
//
// For objects that are handed round among the classes of this library; elsewhere std::shared_ptr is safer. The count is
// a plain integer: threads that count on one object need a lock. Misuse is a broken invariant and ends the process
// through FATAL.
#ifndef TAREFCOUNTER_H
#define TAREFCOUNTER_H

#include "ZELExport.h"
#include "ZELHeapObject.h"

class ZEL_API TARefCounter : public ZELHeapObject {
public:
    TARefCounter() noexcept = default;
    // A copy starts with as many references as its source has.
    TARefCounter(const TARefCounter&) noexcept = default;
    TARefCounter& operator=(const TARefCounter&) noexcept = default;
    // Ends the process with "Delete on referenced object" unless the count is 1: only the creator may delete, while
    // nobody else has a reference.
    virtual ~TARefCounter();

    void AddRef() noexcept { ++_count; }
    // Gives a reference back; the last one deletes the object. Ends the process with "Too many release on object" when
    // there is none.
    void Release();

private:
    unsigned int _count = 1;
};

#endif
