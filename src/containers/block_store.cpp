// The one store of blocks, and its rare step.

#include "containers/block_store.h"

#include <algorithm>
#include <iterator>

using namespace zel;

constinit BlockStore zel::blockStore;

void BlockStore::StartOver() noexcept {
    std::fill(std::begin(_freed), std::end(_freed), nullptr);
    _area.Rewind();
}
