// pool.cpp - see pool.hpp.
#include "serv/pool.hpp"

#include "serv/memory.hpp"
#include "serv/peak.hpp"

namespace {

using namespace vox;

constinit std::atomic<pool_state> state{pool_state::unread};

inline bool pooling() { return state.load(std::memory_order_acquire) == pool_state::in_use; }

inline void *hand_out(pool_entry &entry, size_t size, size_t alignment) {
    entry.in_use = true;
    entry.size = size;
    entry.aligned = align_up(entry.block, alignment);
    return entry.aligned;
}

// What the scan of a pool found: a fitting entry, or a cell for a new one (empty, or holding a
// buffer that is too small), or neither.
struct scan_result {
    pool_entry *fitting, *cell;
};

inline scan_result scan(thread_record &record, size_t need) {
    pool_entry *larger = nullptr, *smaller = nullptr, *empty = nullptr;
    for (pool_entry &entry : record.pool) {
        if (entry.in_use)
            continue;
        if (entry.capacity == need)
            return {&entry, nullptr};
        if (!entry.block) {
            if (!empty)
                empty = &entry;
        } else if (entry.capacity > need) {
            if (!larger || entry.capacity < larger->capacity)
                larger = &entry;
        } else if (!smaller) {
            smaller = &entry;
        }
    }
    return {larger, empty ? empty : smaller};
}

// Fills a cell that the caller has reserved, its former content being `old`. No lock is held: the
// user's hooks may run, and may even come back to this pool.
void *renew(const record_ref &own, pool_entry &cell, const pool_entry &old, size_t size,
            size_t alignment) {
    if (old.block) {
        account(-int64_t(old.capacity), -1);
        release_block(old.block);
    }
    const size_t capacity = size + alignment;
    char *block = static_cast<char *>(take_block(capacity, contents::any));
    if (block)
        account(int64_t(capacity), 1);
    record_lock lock(own);
    cell = {block, nullptr, 0, block ? capacity : 0, false};
    return block ? hand_out(cell, size, alignment) : nullptr;
}

inline void *take_pooled(size_t size, size_t wanted_alignment) {
    const size_t alignment = normal_alignment(wanted_alignment);
    const record_ref own = current_or_new_record();
    if (VOX_UNLIKELY(!own || alignment == 0))
        return vox_serv_malloc(size, wanted_alignment);
    pool_entry old;
    scan_result found;
    {
        record_lock lock(own);
        found = scan(*own.record, size + alignment);
        if (VOX_LIKELY(found.fitting != nullptr))
            return hand_out(*found.fitting, size, alignment);
        if (found.cell) {
            old = *found.cell;
            *found.cell = {nullptr, nullptr, 0, 0, true};
        }
    }
    if (!found.cell)
        return vox_serv_malloc(size, alignment);
    return renew(own, *found.cell, old, size, alignment);
}

__attribute__((noinline)) void *take_unusual(size_t size, size_t alignment) {
    if (size == 0)
        return nullptr;
    configure_memory();
    return pooling() && size <= pool_limit ? take_pooled(size, alignment)
                                           : vox_serv_malloc(size, alignment);
}

inline bool hand_back(thread_record &record, const void *pointer) {
    for (pool_entry &entry : record.pool)
        if (entry.aligned == pointer) {
            entry.in_use = false;
            return true;
        }
    return false;
}

// For a thread without a record: scratch that it took before the exit clean-up is in one still.
bool hand_back_anywhere(const void *pointer) {
    bool found = false;
    records_walk walk;
    walk.each([&](thread_record &record) { found = found || hand_back(record, pointer); });
    return found;
}

} // namespace

void vox::start_pool(pool_state initial) { state.store(initial, std::memory_order_release); }

vox::pool_state vox::current_pool_state() {
    configure_memory();
    return state.load(std::memory_order_relaxed);
}

void vox::detached_buffers::take(thread_record &record, pool_entry &entry) {
    record.add(-int64_t(entry.capacity), -1);
    bytes_ -= int64_t(entry.capacity);
    --blocks_;
    link *const buffer = reinterpret_cast<link *>(entry.block);
    buffer->next = first_;
    first_ = buffer;
    entry = {};
}

void vox::detached_buffers::take_idle(thread_record &record) {
    for (pool_entry &entry : record.pool)
        if (entry.block && !entry.in_use)
            take(record, entry);
}

void vox::detached_buffers::take_all(thread_record &record) {
    for (pool_entry &entry : record.pool) {
        if (entry.block)
            take(record, entry);
        entry = {};
    }
}

void vox::detached_buffers::release() {
    track_peak(bytes_, blocks_);
    while (link *const buffer = first_) {
        first_ = buffer->next;
        release_block(buffer);
    }
}

extern "C" void *vox_serv_allocate(size_t size, size_t alignment) {
    if (VOX_UNLIKELY(!pooling() || size - 1 >= pool_limit))
        return take_unusual(size, alignment);
    return take_pooled(size, alignment);
}

extern "C" void vox_serv_deallocate(void *pointer) {
    if (!pointer)
        return;
    if (const record_ref own = current_record()) {
        record_lock lock(own);
        if (VOX_LIKELY(hand_back(*own.record, pointer)))
            return;
    } else if (hand_back_anywhere(pointer)) {
        return;
    }
    vox_serv_free(pointer);
}

extern "C" void vox_serv_free_buffers() {
    detached_buffers buffers;
    {
        records_walk walk;
        walk.each([&](thread_record &record) { buffers.take_idle(record); });
    }
    buffers.release();
}

extern "C" void vox_serv_thread_free_buffers() {
    const record_ref own = current_record();
    if (!own)
        return;
    detached_buffers buffers;
    {
        record_lock lock(own);
        buffers.take_idle(*own.record);
    }
    buffers.release();
}

extern "C" int vox_serv_disable_fast_mm() {
    configure_memory();
    pool_state expected = pool_state::in_use;
    state.compare_exchange_strong(expected, pool_state::off_by_call);
    return 1;
}

extern "C" int vox_serv_get_fast_mm_status() { return current_pool_state() != pool_state::in_use; }

VOX_ALIAS(vox_serv_iface_allocate, vox_serv_allocate);
VOX_ALIAS(vox_serv_iface_deallocate, vox_serv_deallocate);
VOX_ALIAS(vox_free_buffers, vox_serv_free_buffers);
VOX_FORTRAN_FORM(void, vox_free_buffers, VOX_FREE_BUFFERS, (), ());
VOX_ALIAS(vox_thread_free_buffers, vox_serv_thread_free_buffers);
VOX_FORTRAN_FORM(void, vox_thread_free_buffers, VOX_THREAD_FREE_BUFFERS, (), ());
VOX_ALIAS(vox_disable_fast_mm, vox_serv_disable_fast_mm);
VOX_FORTRAN_FORM(vox_int, vox_disable_fast_mm, VOX_DISABLE_FAST_MM, (), ());
