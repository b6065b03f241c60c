// Walking all chains of a hash table without waiting for each node.
//
// Idea: the nodes lie anywhere in memory, so a plain walk waits for the memory at each step. Here the heads of many
// buckets are gathered and requested together before the first is looked at. Cost: 1 to 2 kB of stack. Either way a
// node's `next` is read before the node is handed over, which may then be relinked or given away.
#ifndef CONTAINERS_CHAIN_WALK_H
#define CONTAINERS_CHAIN_WALK_H

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/compiler.h"

namespace zel {

inline constexpr std::size_t WalkStep = 64;  // buckets that are gathered together

// The heads of the non-empty buckets among the first WalkStep ones. No branch depends on which are empty.
template <class Node>
std::size_t GatherHeads(Node* const* table, std::size_t size, Node** heads) noexcept {
    std::size_t count = 0;
    for (std::size_t i = 0; i < std::min(size, WalkStep); ++i) {
        heads[count] = table[i];
        Prefetch(table[i]);
        count += table[i] != nullptr ? 1 : 0;
    }
    return count;
}

// Buckets ascending, each chain from its head.
template <class Node, class Visit>
void WalkInOrder(Node* const* table, std::size_t size, Visit visit) noexcept {
    Node* arrays[2][WalkStep];
    Node** heads = arrays[0];
    Node** upcoming = arrays[1];
    std::size_t count = GatherHeads(table, size, heads);
    for (std::size_t from = WalkStep; count > 0 || from < size; from += WalkStep) {
        const std::size_t upcomingCount = from < size ? GatherHeads(table + from, size - from, upcoming) : 0;
        for (std::size_t i = 0; i < count; ++i) {
            for (Node* node = heads[i]; node != nullptr;) {
                Node* const next = node->next;
                visit(node);
                node = next;
            }
        }
        std::swap(heads, upcoming);
        count = upcomingCount;
    }
}

// Each chain from its head, but many chains at once.
template <class Node, class Visit>
void WalkInWaves(Node* const* table, std::size_t size, Visit visit) noexcept {
    Node* wave[WalkStep];
    for (std::size_t from = 0; from < size; from += WalkStep) {
        std::size_t count = GatherHeads(table + from, size - from, wave);
        while (count > 0) {
            std::size_t kept = 0;
            for (std::size_t i = 0; i < count; ++i) {
                Node* const node = wave[i];
                Node* const next = node->next;
                Prefetch(next);
                wave[kept] = next;
                kept += next != nullptr ? 1 : 0;
                visit(node);
            }
            count = kept;
        }
    }
}

}  // namespace zel

#endif
