// chunks_test.cpp - who holds which data: the table of shared chunks.
#include "tests/rng/streams.hpp"

#include <barrier>
#include <csignal>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace test;
using namespace vox::rng;

// A list of chunks without a generator.
struct holder : stream {
    holder() : stream{} {}
    ~holder() { delete_chunks(*this); }
    holder(const holder &) = delete;
    holder &operator=(const holder &) = delete;
};

constexpr uint32_t size = 40;
uint32_t *new_data(uint32_t value) {
    auto *data = static_cast<uint32_t *>(new_chunk_data(size));
    std::fill_n(data, size / 4, value);
    return data;
}
uint32_t value_of(const stream &s, uint32_t id) {
    return *static_cast<uint32_t *>(find_chunk(s, id)->data);
}
chunk_key key(uint64_t i) { return {0, i}; }

class Chunks : public ::testing::Test {
    int64_t before_ = vox_mem_stat(nullptr);
    void TearDown() override {
        EXPECT_EQ(shared_chunks(), 0);
        EXPECT_EQ(vox_mem_stat(nullptr), before_);
    }
};

TEST_F(Chunks, AreSharedByKeyAndPrivateWithoutOne) {
    holder a, b, c;
    EXPECT_EQ(share_chunk(a, 1, key(9), size), key_not_found);
    ASSERT_EQ(add_chunk(a, 1, key(9), new_data(5), size), 0);
    ASSERT_EQ(add_chunk(a, 2, {}, new_data(6), size), 0);
    EXPECT_EQ(holders(key(9)), 1u);
    ASSERT_EQ(add_chunk(b, 1, key(9), new_data(7), size), 0);
    EXPECT_EQ(value_of(b, 1), 5u) << "the first data under a key are everybody's";
    EXPECT_EQ(find_chunk(b, 1)->data, find_chunk(a, 1)->data);
    ASSERT_EQ(share_chunk(b, 3, key(9), size), 0);
    EXPECT_EQ(holders(key(9)), 3u);
    EXPECT_EQ(find_chunk(b, 2), nullptr);

    EXPECT_EQ(share_chunk(c, 1, key(9), size + 1), key_not_found) << "another size";
    ASSERT_EQ(add_chunk(c, 1, key(9), new_data(8), size - 4), 0);
    EXPECT_EQ(value_of(c, 1), 8u);
    EXPECT_FALSE(find_chunk(c, 1)->key);

    delete_chunks(a);
    EXPECT_EQ(a.chunks, nullptr);
    EXPECT_EQ(value_of(b, 1), 5u) << "held by b";
    delete_chunks(b);
    EXPECT_EQ(holders(key(9)), 0u);
}

TEST_F(Chunks, CopiesComeInReverseOrder) {
    holder a, b;
    for (uint32_t i = 0; i < 4; ++i)
        ASSERT_EQ(add_chunk(a, i, i % 2 ? key(i) : chunk_key{}, new_data(i), size), 0);
    ASSERT_EQ(copy_chunks(b, a), 0);
    uint32_t id = 0;
    for (const chunk *c = b.chunks; c; c = c->next, ++id) {
        EXPECT_EQ(c->id, id);
        EXPECT_EQ(value_of(b, id), id);
        EXPECT_EQ(c->data == find_chunk(a, id)->data, id % 2 == 1);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(c->data) % 128, 0u);
    }
    EXPECT_EQ(id, 4u);
    EXPECT_EQ(holders(key(3)), 2u);
}

TEST_F(Chunks, ArePrivateWhereTheTableIsFull) {
    holder many, late, later;
    for (uint32_t i = 1; i <= 127; ++i)
        ASSERT_EQ(add_chunk(many, i, key(i), new_data(i), size), 0);
    EXPECT_EQ(shared_chunks(), 127);
    ASSERT_EQ(add_chunk(late, 1, key(200), new_data(200), size), 0);
    EXPECT_EQ(shared_chunks(), 127);
    EXPECT_FALSE(find_chunk(late, 1)->key);
    ASSERT_EQ(copy_chunks(later, late), 0);
    EXPECT_NE(find_chunk(later, 1)->data, find_chunk(late, 1)->data);
    EXPECT_EQ(value_of(later, 1), 200u);
    ASSERT_EQ(share_chunk(late, 2, key(50), size), 0) << "what is in the table is still shared";
    delete_chunks(many);
    EXPECT_EQ(shared_chunks(), 1);
    EXPECT_EQ(value_of(late, 2), 50u);
    ASSERT_EQ(add_chunk(later, 3, key(201), new_data(201), size), 0);
    EXPECT_EQ(holders(key(201)), 1u);
}

TEST_F(Chunks, FreshKeysAreNew) {
    holder a;
    for (uint32_t i = 0; i < 50; ++i) {
        const chunk_key k = fresh_key(77);
        EXPECT_EQ(k.second, 77u);
        EXPECT_NE(k.first, 0u);
        EXPECT_EQ(holders(k), 0u);
        ASSERT_EQ(add_chunk(a, i, k, new_data(i), size), 0);
        EXPECT_EQ(holders(k), 1u);
    }
}

// Streams of many threads come and go, over keys that are few enough to meet and many enough to fill the
// table now and then.
TEST_F(Chunks, OfManyThreads) {
    constexpr int threads = 16, rounds = 2000;
    std::barrier together(threads);
    std::atomic<int> wrong{0};
    const auto work = [&](unsigned seed) {
        std::mt19937 random(seed);
        for (int round = 0; round < rounds; ++round) {
            if (round % 50 == 0)
                together.arrive_and_wait();
            holder mine, copy;
            for (int i = 0; i < 12; ++i) {
                const uint32_t k = 1 + random() % 150;
                int status = share_chunk(mine, k, key(k), size);
                if (status == key_not_found)
                    status =
                        add_chunk(mine, k, random() % 8 ? key(k) : chunk_key{}, new_data(k), size);
                wrong += status != 0;
            }
            wrong += copy_chunks(copy, mine) != 0;
            delete_chunks(mine);
            for (const chunk *c = copy.chunks; c; c = c->next)
                wrong += value_of(copy, c->id) != c->id;
        }
    };
    std::vector<std::thread> team;
    for (int t = 0; t < threads; ++t)
        team.emplace_back(work, t);
    for (std::thread &t : team)
        t.join();
    EXPECT_EQ(wrong, 0);
}

// A child never waits for a lock that a thread of its parent's held.
TEST_F(Chunks, AreThereAfterAFork) {
    std::atomic<bool> stop{false};
    std::thread other([&] {
        while (!stop) {
            holder h;
            for (uint32_t i = 0; i < 100; ++i)
                fresh_key(i);
        }
    });
    {
        holder mine;
        ASSERT_EQ(add_chunk(mine, 1, key(1), new_data(1), size), 0);
        for (int i = 0; i < 100; ++i) {
            const pid_t child = fork();
            if (child == 0) {
                alarm(20);
                stream own{};
                const bool good = share_chunk(own, 1, key(1), size) == 0 && holders(key(1)) == 2;
                _exit(good ? 0 : 1);
            }
            int status = -1;
            waitpid(child, &status, 0);
            EXPECT_EQ(status, 0);
        }
    }
    stop = true;
    other.join();
}

} // namespace
