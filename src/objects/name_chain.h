// The chain of names that a path is, shared by TAPPath and the dump. A node is one name and leads to the node before
// it.
#ifndef OBJECTS_NAME_CHAIN_H
#define OBJECTS_NAME_CHAIN_H

#include "TAPPath.h"

struct TAPPath::Node {
    // Index i means the name i + Shift.
    static constexpr int Shift = 2;

    static Node* Keep(Node* node) noexcept {
        if (node != nullptr) ++node->owners;
        return node;
    }
    static void Drop(Node* node) noexcept;

    Node* parent;
    TAPName* name;
    int length;  // of the path that ends here
    unsigned int owners;
};

#endif
