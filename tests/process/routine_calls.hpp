// routine_calls.hpp - a call of every computational routine, for tests of what all of them must bear: operands as
// bytes that may lie anywhere, and the call on them.
#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/numbers.hpp"

namespace test {

enum class call_size { small, threaded }; // for the stack of one thread; for several threads

using byte_array = std::vector<char>;

struct operand_bytes {
    byte_array initial;
    size_t part; // of a number that stands in it: 4, 8, or 0 for integers
};

struct routine_call {
    std::string name;
    std::vector<operand_bytes> operands; // results among them
    std::function<void(char *const *operands)> make;
    int requests = 0;    // of memory that the call makes however often it is repeated
    size_t matrices = 0; // come first if info is last
    bool pivots = false; // are a matter of rounding, and with them the result
};
using routine_calls = std::vector<routine_call>;

void add_level1_calls(routine_calls &, call_size);
void add_matrix_calls(routine_calls &, call_size);
void add_trans_calls(routine_calls &, call_size);
void add_dnn_calls(routine_calls &, call_size);
void add_lapack_calls(routine_calls &, call_size);
void add_vm_calls(routine_calls &, call_size);

template <class T>
operand_bytes plain_operand(const std::vector<T> &values, size_t part = 0) {
    operand_bytes o{byte_array(values.size() * sizeof(T)), part};
    std::memcpy(o.initial.data(), values.data(), o.initial.size());
    return o;
}
// Numbers of the size of `scale`.
template <class T>
operand_bytes numbers_operand(size_t count, unsigned seed, double scale = 1) {
    using R = vox::real_of<T>;
    std::vector<R> parts = random_vector<R>(count * (sizeof(T) / sizeof(R)), seed);
    for (R &x : parts)
        x *= R(scale);
    return plain_operand(parts, sizeof(R));
}
// So many, each of so many numbers.
template <class T>
std::vector<operand_bytes> numbers_operands(unsigned operands, size_t count) {
    std::vector<operand_bytes> all;
    for (unsigned i = 0; i < operands; ++i)
        all.push_back(numbers_operand<T>(count, i));
    return all;
}
template <class T>
T *as(char *operand) {
    return reinterpret_cast<T *>(operand);
}
template <class T>
constexpr char letter_of = std::is_same_v<T, float>               ? 's'
                           : std::is_same_v<T, double>            ? 'd'
                           : std::is_same_v<T, vox_complex_float> ? 'c'
                                                                  : 'z';

// What adds rows gets a number of each type.
template <class Add>
void for_each_type(const Add &add) {
    add(float()), add(double()), add(vox_complex_float()), add(vox_complex_double());
}

} // namespace test
