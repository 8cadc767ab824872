// cleanup.cpp - see cleanup.hpp.
#include "serv/cleanup.hpp"

#include "serv/lock.hpp"

namespace {

constinit vox::cleanup *first;

__attribute__((destructor)) void run_cleanups() {
    vox::cleanup *list = nullptr;
    {
        vox::scoped_lock guard(vox::lock_id::cleanup);
        list = first;
        first = nullptr;
    }
    for (; list; list = list->next)
        list->run();
}

} // namespace

void vox::register_cleanup(cleanup *node) {
    scoped_lock guard(lock_id::cleanup);
    node->next = first;
    first = node;
}
