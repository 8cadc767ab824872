// chunks.cpp - see chunks.hpp.
//
// The lock is held for a look at the table and a change of it; memory is taken and released outside, since
// that may run the user's hooks.
#include "rng/chunks.hpp"

#include <string.h>

#include "serv/lock.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;

constexpr int capacity = 127; // one entry of the table stays empty
constexpr size_t alignment = 128;

struct entry {
    chunk_key key;
    uint32_t count; // chunks with this key
    uint32_t bytes;
    void *data;
};
static_assert(sizeof(entry) == 32);

constinit entry table[capacity + 1]{};
constinit int entries;

class locked_table : vox::scoped_lock {
  public:
    locked_table() : scoped_lock(vox::lock_id::shared_chunks) {}

    entry *find(chunk_key key) {
        for (int i = 0; key && i < entries; ++i)
            if (table[i].key == key)
                return &table[i];
        return nullptr;
    }
    // The data of the key, with one more holder.
    int reference(chunk_key key, uint32_t bytes, void **data) {
        entry *e = find(key);
        if (!e || e->bytes != bytes)
            return key_not_found;
        ++e->count;
        *data = e->data;
        return ok;
    }
    // A new entry; the key is not in the table.
    int insert(chunk_key key, uint32_t bytes, void *data) {
        if (entries >= capacity)
            return table_full;
        table[entries++] = {key, 1, bytes, data};
        return ok;
    }
    // Whether the data are nobody's any more.
    bool release(chunk_key key) {
        entry *e = find(key);
        if (!e)
            return true; // private
        if (--e->count)
            return false;
        *e = table[--entries];
        table[entries] = {};
        return true;
    }
};

chunk *new_record() { return static_cast<chunk *>(vox_serv_calloc(1, sizeof(chunk), alignment)); }

int push(stream &s, chunk *record, const chunk &content) {
    *record = content;
    record->next = s.chunks;
    s.chunks = record;
    return ok;
}

// Deletes from the head of the list until `end` is its head.
void delete_until(stream &s, const chunk *end) {
    while (s.chunks != end) {
        chunk *c = s.chunks;
        s.chunks = c->next;
        if (locked_table().release(c->key))
            vox_serv_free(c->data);
        vox_serv_free(c);
    }
}

int copy_chunk(stream &to, const chunk &c) {
    if (const int status = share_chunk(to, c.id, c.key, c.bytes); status != key_not_found)
        return status;
    void *data = new_chunk_data(c.bytes);
    if (!data)
        return RSK_ERROR_NO_MEMORY;
    memcpy(data, c.data, c.bytes);
    return add_chunk(to, c.id, {}, data, c.bytes);
}

} // namespace

vox::rng::chunk *vox::rng::find_chunk(const stream &s, uint32_t id) {
    chunk *c = s.chunks;
    while (c && c->id != id)
        c = c->next;
    return c;
}

void *vox::rng::new_chunk_data(uint32_t bytes) {
    return vox_serv_malloc(bytes ? bytes : 1, alignment);
}

void vox::rng::release_chunk_data(void *data) { vox_serv_free(data); }

int vox::rng::add_chunk(stream &s, uint32_t id, chunk_key key, void *data, uint32_t bytes) {
    chunk *record = new_record();
    if (!record) {
        vox_serv_free(data);
        return RSK_ERROR_NO_MEMORY;
    }
    void *kept = data;
    if (key) {
        locked_table shared;
        if (shared.reference(key, bytes, &kept) != ok &&
            (shared.find(key) || shared.insert(key, bytes, data) != ok))
            key = {}; // private: no place, or a key for something else
    }
    if (kept != data)
        vox_serv_free(data);
    return push(s, record, {id, bytes, kept, nullptr, key});
}

int vox::rng::share_chunk(stream &s, uint32_t id, chunk_key key, uint32_t bytes) {
    chunk *record = new_record();
    if (!record)
        return RSK_ERROR_NO_MEMORY;
    void *data;
    if (const int status = locked_table().reference(key, bytes, &data)) {
        vox_serv_free(record);
        return status;
    }
    return push(s, record, {id, bytes, data, nullptr, key});
}

int vox::rng::copy_chunks(stream &to, const stream &from) {
    const chunk *before = to.chunks;
    for (const chunk *c = from.chunks; c; c = c->next)
        if (const int status = copy_chunk(to, *c)) {
            delete_until(to, before);
            return status;
        }
    return ok;
}

void vox::rng::delete_chunks(stream &s) { delete_until(s, nullptr); }

vox::rng::chunk_key vox::rng::fresh_key(uint64_t tag) {
    locked_table shared;
    chunk_key key{0, tag};
    do
        vox_serv_get_cpu_clocks(&key.first);
    while (shared.find(key));
    return key;
}

int vox::rng::shared_chunks() {
    locked_table shared;
    return entries;
}

uint32_t vox::rng::holders(chunk_key key) {
    locked_table shared;
    const entry *e = shared.find(key);
    return e ? e->count : 0;
}
