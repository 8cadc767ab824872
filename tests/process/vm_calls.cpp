// vm_calls.cpp - vector functions.
#include "tests/process/routine_calls.hpp"
#include "tests/vm/functions.hpp"

namespace {

using namespace test;

template <class T>
void add(routine_calls &all, call_size size) {
    const vox_int n = size == call_size::small ? 9 : 20000;
    const size_t count = size_t(n);
    std::vector<T> magnitudes = random_vector<T>(count, 2); // of which there are logarithms
    for (T &x : magnitudes)
        x = std::abs(x);
    for (const vector_function<T> &f : vector_functions<T>())
        all.push_back({f.name,
                       {plain_operand(magnitudes), numbers_operand<T>(count, 1),
                        numbers_operand<T>(count, 3)},
                       [=](char *const *at) { f.v(n, as<T>(at[0]), as<T>(at[1]), as<T>(at[2])); }});
}

} // namespace

void test::add_vm_calls(routine_calls &all, call_size size) {
    add<float>(all, size);
    add<double>(all, size);
}
