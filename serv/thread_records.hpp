// thread_records.hpp - what the memory manager knows of each thread: its balance of bytes and
// blocks and its pool of scratch buffers.
//
// The value of one pthread key names a thread's record: a slot number (low 32 bits) and the slot's
// generation, so no memory is allocated for it and null means that the thread has none yet. Slots
// are never unmapped; the slot of a thread that ended is given to a later one, under the next
// generation. Slot 0 has a balance but no pool. It stands for all threads without a record of their
// own: those that ended, that free memory after their key was destroyed, or for which no key or
// slot could be had.
//
// A record's pool is used by its thread alone, but walkers (free all, sum up) visit every record,
// so both lock it. Slots of the fixed table have a lock word each; the slots beyond it share one
// word that counts readers, of which the owners are the readers and a walker is the writer. Nothing
// that may block or run the user's code happens under these locks. Balances are atomic and need
// none.
#pragma once

#include <pthread.h>

#include "serv/inspector.hpp"
#include "serv/lock.hpp"

namespace vox {

inline constexpr int pool_size = 5;

// A scratch buffer. block null: an empty cell, or, when in use, one whose block is being allocated.
struct pool_entry {
    char *block;
    char *aligned;   // what was handed out last
    size_t size;     // as requested last
    size_t capacity; // bytes at block
    bool in_use;
};

struct alignas(64) thread_record {
    int word; // the lock of a slot of the fixed table
    uint32_t generation;
    uint32_t next_free;
    bool owned; // by a thread that has not ended
    std::atomic<int64_t> bytes, blocks;
    pool_entry pool[pool_size];

    void add(int64_t more_bytes, int64_t more_blocks) {
        bytes.fetch_add(more_bytes, std::memory_order_relaxed);
        blocks.fetch_add(more_blocks, std::memory_order_relaxed);
    }
};

inline constexpr uint32_t table_slots = 1024;

// A thread's own record; empty when it has none.
struct record_ref {
    thread_record *record = nullptr;
    bool shared = false; // locked through the shared word
    explicit operator bool() const { return record != nullptr; }
};

// What the inline functions below need.
namespace records {
extern __attribute__((visibility("hidden"))) thread_record table[table_slots]; // slots 1 to 1024
extern __attribute__((visibility("hidden"))) std::atomic<int64_t> key;         // negative: none
thread_record *beyond_table(uint32_t slot);
void enter_shared();
void leave_shared();
} // namespace records

// slot: 1 and up.
inline thread_record *record_at(uint32_t slot) {
    return VOX_LIKELY(slot <= table_slots) ? &records::table[slot - 1]
                                           : records::beyond_table(slot);
}

inline record_ref current_record() {
    const int64_t key = records::key.load(std::memory_order_acquire);
    if (VOX_UNLIKELY(key < 0))
        return {};
    const uint64_t value = uint64_t(pthread_getspecific(pthread_key_t(key)));
    const uint32_t slot = uint32_t(value);
    if (VOX_UNLIKELY(slot == 0))
        return {};
    thread_record *record = record_at(slot);
    if (VOX_UNLIKELY(record->generation != value >> 32))
        return {};
    return {record, slot > table_slots};
}

// The calling thread's record, made if need be.
record_ref make_record();
inline record_ref current_or_new_record() {
    const record_ref own = current_record();
    return VOX_LIKELY(bool(own)) ? own : make_record();
}

// Held by a thread while it uses the pool of its own record. The word is nearly always free: that
// case is inline, since two calls through the linkage table cost more than the exchange.
class record_lock {
  public:
    explicit record_lock(const record_ref &own) : own_(own) {
        if (VOX_UNLIKELY(own_.shared))
            records::enter_shared();
        else if (VOX_UNLIKELY(word().exchange(1, std::memory_order_acquire) != 0))
            vox_serv_lock(&own_.record->word);
        else
            inspector_acquired(&own_.record->word);
    }
    ~record_lock() {
        if (VOX_UNLIKELY(own_.shared)) {
            records::leave_shared();
            return;
        }
        inspector_releasing(&own_.record->word);
        word().store(0, std::memory_order_release);
    }
    record_lock(const record_lock &) = delete;
    record_lock &operator=(const record_lock &) = delete;

  private:
    std::atomic_ref<int> word() const { return std::atomic_ref<int>(own_.record->word); }
    const record_ref own_;
};

// Keeps all records in place and the shared word for itself; visits records in the order of slots.
class records_walk {
  public:
    records_walk();
    ~records_walk();
    records_walk(const records_walk &) = delete;
    records_walk &operator=(const records_walk &) = delete;

    template <class Visit>
    void each(Visit visit) {
        for (uint32_t slot = 1; slot <= slots_; ++slot) {
            thread_record *record = record_at(slot);
            if (slot <= table_slots)
                vox_serv_lock(&record->word);
            visit(*record);
            if (slot <= table_slots)
                vox_serv_unlock(&record->word);
        }
    }

  private:
    scoped_lock registry_;
    uint32_t slots_;
};

// Books an allocation (or, negative, a release) of the calling thread.
void account(int64_t bytes, int64_t blocks);

} // namespace vox
