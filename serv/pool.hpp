// pool.hpp - the pooled allocator: up to five scratch buffers per thread, kept for its next
// request.
//
// Within the library scratch is taken through scratch<T> (serv/scratch.hpp).
#pragma once

#include "serv/thread_records.hpp"

namespace vox {

// Larger requests are not pooled.
inline constexpr size_t pool_limit = 0x8000000;

enum class pool_state { unread, in_use, off_by_environment, off_by_call };

// Set once, with the rest of the configuration (serv/memory).
void start_pool(pool_state state);
pool_state current_pool_state();

// Buffers that have left their records. They are linked through their own first bytes and released
// when no lock is held, since that may run the user's hooks.
class detached_buffers {
  public:
    // Under the record's lock. take_idle leaves alone what is in use.
    void take_idle(thread_record &record);
    void take_all(thread_record &record);
    void release();

  private:
    struct link {
        link *next;
    };
    void take(thread_record &record, pool_entry &entry);
    link *first_ = nullptr;
    int64_t bytes_ = 0, blocks_ = 0;
};

} // namespace vox
