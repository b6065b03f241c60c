// Where the interfaces of maps and of their iterators are at home.

#include "ZELMap.h"

ZELMapIterator::~ZELMapIterator() = default;

ZELMap::~ZELMap() = default;
