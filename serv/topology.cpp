// topology.cpp - see topology.hpp.
//
// An APIC identifier is made of three bit fields, package, core and thread, whose widths are the
// logarithms of the sizes that CPUID gives, rounded up (the vendors' manuals, "topology
// enumeration").
#include "serv/topology.hpp"

#include <bit>
#include <string.h>

#include "serv/cpu_snapshot.hpp"
#include "serv/environment.hpp"
#include "serv/lines.hpp"
#include "serv/lock.hpp"

namespace {

using namespace vox;

// How many different values key(0) .. key(count - 1) are.
template <class Key>
int count_distinct(int count, const Key &key) {
    int distinct = 0;
    for (int i = 0; i < count; ++i) {
        int j = 0;
        while (j < i && key(j) != key(i))
            ++j;
        distinct += j == i;
    }
    return distinct;
}

int width(int size) { return size < 2 ? 0 : std::bit_width(unsigned(size - 1)); }

// The largest sizes that leaves 1 and 4 can express; larger packages show them, too.
bool is_exact(const apic_reading &r) {
    return r.logical_per_package < 255 && r.cores_per_package < 64;
}

// 0 when the visits do not tell the cores apart.
int visit_processors(const machine &m, const processor_mask &mask, core_tables &tables) {
    processor_mask before;
    if (!m.read_affinity(0, before))
        return 0;
    int visited = 0;
    bool complete = true;
    for (int p = 0; complete && p < max_processors; ++p) {
        if (!mask.has(p))
            continue;
        processor_mask only;
        only.add(p);
        if (!m.set_affinity(only)) {
            complete = false;
            break;
        }
        vox_serv_thread_yield();
        const apic_reading r = m.read_apic();
        const int core_width = width(r.cores_per_package);
        const int package_width = width(r.logical_per_package);
        const int thread_width = package_width > core_width ? package_width - core_width : 0;
        tables.thread[visited] = uint8_t(r.id & ((1 << thread_width) - 1));
        tables.core[visited] = uint8_t(r.id >> thread_width & ((1 << core_width) - 1));
        tables.package[visited] = uint8_t(r.id >> (thread_width + core_width));
        ++visited;
        complete = is_exact(r);
    }
    m.set_affinity(before);
    const auto core = [&](int i) { return tables.package[i] << 8 | tables.core[i]; };
    const auto processor = [&](int i) { return core(i) << 8 | tables.thread[i]; };
    // Identifiers have 8 bits here: on larger machines two processors may show the same.
    if (!complete || count_distinct(visited, processor) < visited)
        return 0;
    return count_distinct(visited, core);
}

// Collects the cores of the processors in a mask from the lines of cpuinfo.
class cpuinfo_reader {
  public:
    cpuinfo_reader(const processor_mask &wanted, uint64_t *keys) : wanted_(wanted), keys_(keys) {}

    void line(const char *text) {
        if (const char *value = value_of(text, "processor")) {
            finish_processor();
            number_ = package_ = core_ = -1;
            parse_digits(value, &number_);
        } else if ((value = value_of(text, "physical id"))) {
            parse_digits(value, &package_);
        } else if ((value = value_of(text, "core id"))) {
            parse_digits(value, &core_);
        }
    }

    void finish_processor() {
        if (number_ < 0 || number_ >= max_processors || !wanted_.has(number_))
            return;
        wanted_.remove(number_);
        complete_ = complete_ && package_ >= 0 && core_ >= 0;
        constexpr uint64_t of_its_own = uint64_t(1) << 63;
        keys_[found_++] = package_ >= 0 && core_ >= 0 ? uint64_t(package_) << 32 | unsigned(core_)
                                                      : of_its_own | unsigned(number_);
    }

    int found() const { return found_; }
    bool complete() const { return found_ > 0 && complete_; }
    int cores() const {
        return count_distinct(found_, [this](int i) { return keys_[i]; });
    }

  private:
    // "name<blanks>: value"
    static const char *value_of(const char *text, const char *name) {
        const size_t length = strlen(name);
        if (strncmp(text, name, length) != 0)
            return nullptr;
        text += length;
        text += strspn(text, " \t");
        return *text == ':' ? text + 1 + strspn(text + 1, " \t") : nullptr;
    }

    processor_mask wanted_; // and not yet found
    uint64_t *keys_;
    int found_ = 0, number_ = -1, package_ = -1, core_ = -1;
    bool complete_ = true;
};

topology make_topology(int logical, int cores, core_source source) {
    return {logical, cores, (logical + cores - 1) / cores, source};
}

apic_reading read_apic_here() {
    constexpr uint32_t has_several = 1u << 28; // leaf 1 EDX: the logical processor count is valid
    apic_reading r{0, 1, 1};
    const cpuid_registers leaf1 = cpuid(1, 0);
    r.id = int(leaf1.ebx >> 24);
    if (leaf1.edx & has_several)
        r.logical_per_package = int(leaf1.ebx >> 16 & 255);
    if (cpuid(0, 0).eax >= 4)
        r.cores_per_package = int(cpuid(4, 0).eax >> 26) + 1;
    return r;
}

constinit std::atomic<bool> known;
constinit topology process_topology;

__attribute__((noinline)) void find_this_topology() {
    const machine m = {vox_serv_quarn_cpu_true() != 0,
                       read_affinity,
                       set_affinity,
                       read_apic_here,
                       "/proc/cpuinfo",
                       [](size_t bytes) { return vox_serv_malloc(bytes, 0); },
                       vox_serv_free};
    processor_mask mask;
    const bool known_mask = read_process_affinity(mask);
    core_tables tables(m, known_mask ? mask.count() : max_processors);
    once(known, lock_id::thread_settings,
         [&] { process_topology = find_topology(m, known_mask ? &mask : nullptr, tables); });
}

} // namespace

vox::core_tables::core_tables(const machine &m, int processors)
    : owner(m), package(nullptr), core(nullptr), thread(nullptr), core_keys(nullptr) {
    if (m.visits)
        for (uint8_t **table : {&package, &core, &thread})
            *table = static_cast<uint8_t *>(m.allocate(size_t(processors)));
    core_keys = static_cast<uint64_t *>(m.allocate(size_t(processors) * sizeof *core_keys));
}

vox::core_tables::~core_tables() {
    for (void *table : {static_cast<void *>(package), static_cast<void *>(core),
                        static_cast<void *>(thread), static_cast<void *>(core_keys)})
        if (table)
            owner.release(table);
}

vox::topology vox::find_topology(const machine &m, const processor_mask *mask,
                                 core_tables &tables) {
    const int logical = mask ? mask->count() : 0;
    const bool may_visit = tables.package && tables.core && tables.thread;
    if (m.visits && mask && !may_visit)
        return make_topology(logical, logical, core_source::none);
    if (m.visits && mask)
        if (const int cores = visit_processors(m, *mask, tables))
            return make_topology(logical, cores, core_source::cpuid);
    processor_mask all;
    memset(all.words, 0xff, sizeof all.words);
    cpuinfo_reader reader(mask ? *mask : all, tables.core_keys);
    if (tables.core_keys) {
        for_each_line<80>(m.cpuinfo_path, [&](const char *line) { reader.line(line); });
        reader.finish_processor();
    }
    const core_source source = reader.complete() ? core_source::cpuinfo : core_source::none;
    if (!mask)
        return reader.found() ? make_topology(reader.found(), reader.cores(), source) : topology{};
    return make_topology(logical, reader.cores() + logical - reader.found(), source);
}

const vox::topology &vox::this_topology() {
    if (VOX_UNLIKELY(!known.load(std::memory_order_acquire)))
        find_this_topology();
    return process_topology;
}

extern "C" int vox_serv_get_ncpus() { return vox::this_topology().cores; }
extern "C" int vox_serv_get_ncorespercpu() { return vox::this_topology().threads_per_core; }
extern "C" int vox_serv_get_nlogicalcores() { return vox::this_topology().logical; }
extern "C" int vox_serv_get_ht() { return vox::this_topology().hyper_threading(); }
