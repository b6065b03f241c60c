// The two parallel arrays of a sorted index: keys, and the value of each key at the same position.
//
// The indexes of the library (TAIndex, TAIndexB, TAIndexI) are built on it. In a program of your own, use one of them.
//
// Ownership: an owner frees its arrays, and its keys where these are blocks. A view frees nothing: its arrays and keys
// belong to another index.
#ifndef ZELINDEXARRAYS_H
#define ZELINDEXARRAYS_H

namespace zel {

template <class Key>
struct IndexArrays {
    Key* keys = nullptr;
    void** values = nullptr;
    int count = 0;
    int allocated = 0;  // slots of both arrays; 0 while there are none
    int increment = 0;  // by which `allocated` grows next
    bool isView = false;

    bool Holds(int position) const noexcept { return static_cast<unsigned>(position) < static_cast<unsigned>(count); }
    // Whether these are the arrays that `other` owns.
    bool IsViewOf(const IndexArrays& other) const noexcept { return isView && !other.isView && keys == other.keys; }
    IndexArrays View() const noexcept { return {keys, values, count, allocated, increment, true}; }
};

}  // namespace zel

#endif
