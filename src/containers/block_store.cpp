// The one store of blocks, and its rare step.

#include "containers/block_store.h"

#include <algorithm>
#include <iterator>

constinit BlockStore blockStore;

void BlockStore::StartOver() noexcept {
    std::fill(std::begin(_freed), std::end(_freed), nullptr);
    _area.Rewind();
}
