// replay.cpp - a fuzz target without a fuzzer: the same few thousand inputs every time, for the quick loop.
#include <gtest/gtest.h>
#include <random>

#include "tests/fuzz/layouts.hpp"

TEST(Replay, FindsNothing) {
    std::mt19937 random(1);
    for (int i = 0; i < 4000; ++i) {
        std::vector<uint8_t> bytes(random() % 200);
        for (uint8_t &byte : bytes)
            byte = uint8_t(random());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
}
