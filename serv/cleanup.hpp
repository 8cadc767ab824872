// cleanup.hpp - what the library does when the process ends (or is told to forget everything).
//
// A file that holds something at process scope (pools, thread keys) registers its clean-up on first
// use; nothing registered, nothing done. Clean-ups run in the reverse order of registration, at
// exit, when other threads may still be inside the library: each must leave its service usable.
#pragma once

namespace vox {

struct cleanup {
    void (*run)();
    cleanup *next;
};

// `node` must have static storage and be registered at most once.
void register_cleanup(cleanup *node);

} // namespace vox
