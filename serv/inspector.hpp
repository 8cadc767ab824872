// inspector.hpp - tells an attached thread checker what it cannot see.
//
// Helgrind understands neither relaxed atomics nor spin locks. It listens to client requests: a
// sequence of instructions without effect on a real processor (four rotations that add up to a full
// turn), so the library needs no header of the checker and pays a nanosecond. TSan sees the atomics
// themselves and needs nothing; it is what checks the library's own words. Request codes: Valgrind's
// public client-request interface.
#pragma once

namespace vox {

// The calling thread has taken, or is about to release, the lock at this address.
void inspector_acquired(const void *lock);
void inspector_releasing(const void *lock);

// Before the first store to a word that other threads read without a lock: the checker stops watching
// the library's static data. Without effect in a program that has the library linked into itself,
// whose data would go unwatched too.
void inspector_quiet();

} // namespace vox
