// What programs that were built before find in an object.
#ifndef TESTS_CONTAINERS_FIELDS_H
#define TESTS_CONTAINERS_FIELDS_H

#include <cstring>

// The fields as they stand at the beginning of the object.
template <class Fields, class Object>
Fields FieldsOf(const Object& object) {
    Fields fields;
    static_assert(sizeof fields <= sizeof object);
    std::memcpy(static_cast<void*>(&fields), static_cast<const void*>(&object), sizeof fields);
    return fields;
}

#endif
