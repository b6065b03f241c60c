// What copies of an object share: a body made by new, with a member `std::atomic<int> owners{1}` that counts them. A
// class of the public headers holds a pointer to one, which may be null.
#ifndef BASE_SHARED_BODY_H
#define BASE_SHARED_BODY_H

namespace zel {

// One owner more.
template <class Body>
Body* KeepShare(Body* body) noexcept {
    if (body != nullptr) ++body->owners;
    return body;
}

// One owner less, whose pointer becomes null; the last one deletes the body.
template <class Body>
void DropShare(Body*& body) noexcept {
    if (body != nullptr && --body->owners == 0) delete body;
    body = nullptr;
}

// Both, for a pointer that is assigned to. They may lead to one body.
template <class Body>
void AssignShare(Body*& body, Body* other) noexcept {
    Body* const kept = KeepShare(other);
    DropShare(body);
    body = kept;
}

}  // namespace zel

#endif
