// thread_records.cpp - see thread_records.hpp.
#include "serv/thread_records.hpp"

#include <bit>
#include <sys/mman.h>

#include "serv/cleanup.hpp"
#include "serv/inspector.hpp"
#include "serv/peak.hpp"
#include "serv/pool.hpp"

constinit vox::thread_record vox::records::table[table_slots]{};

namespace {

using namespace vox;

constexpr int64_t no_key = -1;
constexpr int64_t key_deleted = -2;

// Extension block k holds table_slots << k records. Slot numbers have 32 bits, so they end in the
// 23rd block.
constexpr int extension_levels = 53;
constinit std::atomic<thread_record *> extensions[extension_levels];

// The readers' count, in steps of 2, and the writer's mark in bit 0.
constinit std::atomic<int> shared_word;

// Of slot 0.
constinit thread_record common{};

// Under the registry lock.
constinit uint32_t slots_made;
constinit uint32_t free_table_slot, free_shared_slot; // heads of lists, 0 for the end

// The key's value while a thread gives up its record: slot 0.
void *const ended = reinterpret_cast<void *>(uint64_t(1) << 32);

void at_exit();
constinit vox::cleanup exit_node{at_exit, nullptr};

struct extension_place {
    int level;
    uint64_t index;
};

extension_place place_of(uint32_t slot) {
    const uint64_t beyond = slot - table_slots - 1;
    const int level = std::bit_width(beyond / table_slots + 1) - 1;
    return {level, beyond - table_slots * ((uint64_t(1) << level) - 1)};
}

// The mapping needs no allocation hook, may be made under the lock, and costs only the pages used.
bool extend(int level) {
    if (extensions[level].load(std::memory_order_relaxed))
        return true;
    void *block = mmap(nullptr, (sizeof(thread_record) * table_slots) << level,
                       PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (block == MAP_FAILED)
        return false;
    extensions[level].store(static_cast<thread_record *>(block), std::memory_order_release);
    return true;
}

// A slot without an owner, 0 when there is none. Slots with a lock of their own come first.
uint32_t take_slot() {
    for (uint32_t *head : {&free_table_slot, &free_shared_slot})
        if (const uint32_t slot = *head) {
            *head = record_at(slot)->next_free;
            return slot;
        }
    if (slots_made == UINT32_MAX)
        return 0;
    const uint32_t slot = slots_made + 1;
    if (slot > table_slots && !extend(place_of(slot).level))
        return 0;
    return ++slots_made;
}

// Whatever the thread still holds is on the common balance from here on.
void give_back_slot(uint32_t slot) {
    thread_record &record = *record_at(slot);
    common.add(record.bytes.exchange(0, std::memory_order_relaxed),
               record.blocks.exchange(0, std::memory_order_relaxed));
    record.owned = false;
    ++record.generation;
    uint32_t &head = slot <= table_slots ? free_table_slot : free_shared_slot;
    record.next_free = head;
    head = slot;
}

// Under the registry lock.
bool set_value(void *value) {
    const int64_t key = records::key.load(std::memory_order_relaxed);
    return key >= 0 && pthread_setspecific(pthread_key_t(key), value) == 0;
}

// The key's destructor. While the buffers go, the mark keeps hooks that come back to the library
// from making the thread a new record. Destructors of other keys may make one afterwards; the
// system then calls this again, but not after the last of its rounds: a record made there stays.
void end_thread(void *value) {
    detached_buffers buffers;
    {
        scoped_lock guard(lock_id::pool_registry);
        set_value(ended);
        const uint32_t slot = uint32_t(uint64_t(value));
        const record_ref own{record_at(slot), slot > table_slots};
        {
            record_lock lock(own);
            buffers.take_all(*own.record);
        }
        give_back_slot(slot);
    }
    buffers.release();
    scoped_lock guard(lock_id::pool_registry);
    set_value(nullptr);
}

// In the child of a fork, under the registry lock: of the threads that own records only the caller
// is alive. A record whose lock is held was caught in the middle of a change: its buffers are
// forgotten. Of the others the idle buffers stay, for the slot's next owner.
void abandon_dead_threads() {
    const bool shared_caught = shared_word.exchange(0, std::memory_order_relaxed) != 0;
    const thread_record *own = current_record().record;
    for (uint32_t slot = 1; slot <= slots_made; ++slot) {
        thread_record &record = *record_at(slot);
        if (&record == own || !record.owned)
            continue;
        const bool caught = slot <= table_slots ? record.word != 0 : shared_caught;
        record.word = 0;
        for (pool_entry &entry : record.pool)
            if (caught || entry.in_use)
                entry = {};
        give_back_slot(slot);
    }
}

int64_t make_key() {
    pthread_key_t key;
    if (pthread_key_create(&key, end_thread) != 0)
        return no_key;
    records::key.store(key, std::memory_order_release);
    after_fork_in_child(abandon_dead_threads);
    register_cleanup(&exit_node);
    return key;
}

// Threads that are still inside the library get no records from here on, only plain memory.
void at_exit() {
    {
        scoped_lock guard(lock_id::pool_registry);
        pthread_key_delete(
            pthread_key_t(records::key.exchange(key_deleted, std::memory_order_relaxed)));
    }
    vox_serv_free_buffers();
}

void wait_a_little(int spins) {
    if (spins < 64)
        __builtin_ia32_pause();
    else
        vox_serv_thread_yield();
}

} // namespace

constinit std::atomic<int64_t> vox::records::key{no_key};

vox::thread_record *vox::records::beyond_table(uint32_t slot) {
    const extension_place place = place_of(slot);
    return extensions[place.level].load(std::memory_order_acquire) + place.index;
}

void vox::records::enter_shared() {
    while (shared_word.fetch_add(2, std::memory_order_acquire) & 1) {
        shared_word.fetch_sub(2, std::memory_order_relaxed);
        for (int spins = 0; shared_word.load(std::memory_order_relaxed) & 1; ++spins)
            wait_a_little(spins);
    }
    inspector_acquired(&shared_word);
}

void vox::records::leave_shared() {
    inspector_releasing(&shared_word);
    shared_word.fetch_sub(2, std::memory_order_release);
}

vox::records_walk::records_walk() : registry_(lock_id::pool_registry), slots_(slots_made) {
    shared_word.fetch_or(1, std::memory_order_relaxed);
    for (int spins = 0; shared_word.load(std::memory_order_acquire) != 1; ++spins)
        wait_a_little(spins);
    inspector_acquired(&shared_word);
}

vox::records_walk::~records_walk() {
    inspector_releasing(&shared_word);
    shared_word.fetch_sub(1, std::memory_order_release);
}

vox::record_ref vox::make_record() {
    scoped_lock guard(lock_id::pool_registry);
    int64_t key = records::key.load(std::memory_order_relaxed);
    if (key == no_key)
        key = make_key();
    if (key < 0 || pthread_getspecific(pthread_key_t(key)) == ended)
        return {};
    const uint32_t slot = take_slot();
    if (slot == 0)
        return {};
    thread_record *record = record_at(slot);
    const uint64_t value = uint64_t(record->generation) << 32 | slot;
    if (!set_value(reinterpret_cast<void *>(value))) {
        give_back_slot(slot);
        return {};
    }
    record->owned = true;
    return {record, slot > table_slots};
}

void vox::account(int64_t bytes, int64_t blocks) {
    const record_ref own = current_or_new_record();
    (own ? own.record : &common)->add(bytes, blocks);
    track_peak(bytes, blocks);
}

extern "C" int64_t vox_serv_mem_stat(int *count) {
    int64_t bytes = 0, blocks = 0;
    auto sum = [&](const thread_record &record) {
        bytes += record.bytes.load(std::memory_order_relaxed);
        blocks += record.blocks.load(std::memory_order_relaxed);
    };
    {
        records_walk walk;
        sum(common);
        walk.each(sum);
    }
    if (count)
        *count = int(blocks);
    return bytes;
}

VOX_ALIAS(vox_mem_stat, vox_serv_mem_stat);
VOX_FORTRAN_FORM(int64_t, vox_mem_stat, VOX_MEM_STAT, (vox_int * count), (count));
