// primitives_test.cpp - the generic entry points, on objects that know no family, and the threading table.
#include <atomic>

#include "dnn/threads.hpp"
#include "tests/dnn/calls.hpp"
#include "tests/support/child.hpp"

namespace {

using namespace test;
using vox::dnn::primitive;

template <class T>
class Primitives : public testing::Test {};
TYPED_TEST_SUITE(Primitives, precisions);

int released;
primitive *make(uint32_t kind) {
    auto *const p = static_cast<primitive *>(vox_serv_calloc(1, sizeof(primitive), 64));
    p->kind = kind;
    return p;
}

TYPED_TEST(Primitives, AreKnownByTheirKind) {
    using call = api<TypeParam>;
    void *resources[DNN_RES_COUNT] = {}, *out = &out;
    EXPECT_EQ(call::Execute(nullptr, resources), -1);
    EXPECT_EQ(call::ExecuteAsync(nullptr, resources), -1);
    EXPECT_EQ(call::WaitFor(nullptr), -1);
    EXPECT_EQ(call::Delete(nullptr), -1);
    EXPECT_EQ(call::LayoutCreateFromPrimitive(&out, nullptr, 0), -1);
    const int before = allocations();
    for (uint32_t kind = 0; kind <= 30; ++kind) {
        primitive *const p = make(kind);
        const bool known = kind <= 27 && kind != 15 && kind != 16;
        EXPECT_EQ(call::Execute(p, resources), -1); // no operations
        EXPECT_EQ(call::LayoutCreateFromPrimitive(&out, p, 0), -1);
        p->execute = [](const primitive *, void *const *r) { return r[0] ? 5 : 6; };
        p->layout_for = [](const primitive *, dnnLayout_t *layout, int resource) {
            *layout = nullptr;
            return resource;
        };
        p->release = [](primitive *) { return ++released, -3; };
        EXPECT_EQ(call::Execute(p, nullptr), -1);
        EXPECT_EQ(call::Execute(p, resources), known ? 6 : -1);
        EXPECT_EQ(call::ExecuteAsync(p, nullptr), known ? -127 : -1);
        EXPECT_EQ(call::WaitFor(p), known ? -127 : -1);
        EXPECT_EQ(call::LayoutCreateFromPrimitive(nullptr, p, 0), -1);
        EXPECT_EQ(out, &out);
        EXPECT_EQ(call::LayoutCreateFromPrimitive(&out, p, 77), known ? 77 : -1);
        out = &out;
        released = 0;
        EXPECT_EQ(call::Delete(p), known ? 0 : -1);
        EXPECT_EQ(released, known);
        if (!known)
            vox_serv_free(p);
        EXPECT_EQ(allocations(), before);
    }
}

TYPED_TEST(Primitives, HaveAttributesThatCarryNothing) {
    using call = api<TypeParam>;
    dnnPrimitiveAttributes_t out = &out;
    EXPECT_EQ(call::PrimitiveAttributesCreate(nullptr), -1);
    EXPECT_EQ(call::PrimitiveAttributesCreate(&out), 0);
    EXPECT_EQ(call::PrimitiveGetAttributes(nullptr, &out), -1);
    EXPECT_EQ(call::PrimitiveGetAttributes(&out, nullptr), -1);
    EXPECT_EQ(call::PrimitiveGetAttributes(&out, &out), 0);
    EXPECT_EQ(out, &out);
    EXPECT_EQ(call::PrimitiveAttributesDestroy(nullptr), 0);
    EXPECT_EQ(call::PrimitiveAttributesDestroy(vox_serv_malloc(1, 64)), 0);
}

// How often the body ran, with which team, and whether the barrier held everyone.
struct tally {
    std::atomic<int> runs{0}, team{0}, early{0};
};
void count(int, int team, void *argument) {
    auto &t = *static_cast<tally *>(argument);
    t.team = team;
    ++t.runs;
    if (team > 1)
        vox_dnn_getTtl_F64()->barrier();
    t.early += t.runs != team;
}

// "threads: runs/early" for each count in turn.
CHILD(counts) {
    vox_set_dynamic(0);
    for (const int threads : {3, 3, 2, 3}) {
        vox_set_num_threads(threads);
        tally t;
        vox_dnn_getTtl_F32()->parallel(count, &t);
        std::printf("%d:%d/%d/%d ", vox_dnn_getTtl_F64()->threads(), t.runs.load(), t.team.load(),
                    t.early.load());
    }
}

// The count is that of the first create call, so that a change before the first execution counts too.
CHILD(counts_of_creation) {
    vox_set_dynamic(0);
    const size_t size = 8, stride = 1;
    dnnLayout_t l;
    dnnPrimitive_t a, b;
    dnnLayoutCreate_F32(&l, 1, &size, &stride);
    vox_set_num_threads(3);
    dnnReLUCreateForward_F32(&a, nullptr, l, 0);
    vox_set_num_threads(2);
    dnnReLUCreateForward_F32(&b, nullptr, l, 0);
    std::printf("%d", vox_dnn_getNThreads_F32());
    dnnDelete_F32(a);
    dnnDelete_F32(b);
    dnnLayoutDelete_F32(l);
}

TEST(PrimitiveThreads, AreAsManyAsAtFirstOrOne) {
    EXPECT_EQ(run_child(counts).out, "3:3/3/0 3:3/3/0 0:1/1/0 3:3/3/0 ");
    EXPECT_EQ(run_child(counts_of_creation).out, "0");
    EXPECT_EQ(vox_dnn_getTtl_F32()->has_barrier(), 1);
}

CHILD(work) {
    vox_set_dynamic(0);
    vox_set_num_threads(3);
    for (const uint64_t bytes : {uint64_t(0), ::dnn::divided_bytes - 1, ::dnn::divided_bytes}) {
        std::atomic<int> runs{0};
        ::dnn::divide(bytes, [&runs](int, int team) { runs += team; });
        std::printf("%d ", runs.load());
    }
}
TEST(PrimitiveThreads, AreNoneForLittleWork) { EXPECT_EQ(run_child(work).out, "1 1 9 "); }

} // namespace
