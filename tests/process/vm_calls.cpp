// vm_calls.cpp - vector functions.
#include "tests/process/routine_calls.hpp"
#include "vox/tqm.h"

namespace {

using namespace test;

template <class T>
constexpr T fixed_power = T(1.5);

// A function of two operands: a function of one, or of one and a number, passes over the second.
#define VM_one(f, T) [](vox_int n, const T *a, const T *, T *r) { f(n, a, r); }
#define VM_two(f, T) [](vox_int n, const T *a, const T *b, T *r) { f(n, a, b, r); }
#define VM_fixed(f, T) [](vox_int n, const T *a, const T *, T *r) { f(n, a, fixed_power<T>, r); }
#define VM_ROWS(shape, Name)                                                                       \
    add<float>(all, length, "vs" #Name, VM_##shape(vs##Name, float));                              \
    add<double>(all, length, "vd" #Name, VM_##shape(vd##Name, double));

template <class T, class Function>
void add(routine_calls &all, vox_int n, const char *name, const Function &function) {
    routine_call call{name, {}, {}};
    std::vector<T> magnitudes = random_vector<T>(size_t(n), 2); // of which there are logarithms
    for (T &x : magnitudes)
        x = x < 0 ? -x : x;
    call.operands = {plain_operand(magnitudes), numbers_operand<T>(size_t(n), 1),
                     numbers_operand<T>(size_t(n), 3)};
    call.make = [=](char *const *at) { function(n, as<T>(at[0]), as<T>(at[1]), as<T>(at[2])); };
    all.push_back(call);
}

} // namespace

void test::add_vm_calls(routine_calls &all, call_size size) {
    const vox_int length = size == call_size::small ? 9 : 20000;
    VM_ROWS(one, Abs)
    VM_ROWS(two, Add)
    VM_ROWS(one, Ceil)
    VM_ROWS(two, Div)
    VM_ROWS(one, Exp)
    VM_ROWS(one, Floor)
    VM_ROWS(one, Inv)
    VM_ROWS(one, InvSqrt)
    VM_ROWS(one, Ln)
    VM_ROWS(one, Log1p)
    VM_ROWS(two, Mul)
    VM_ROWS(two, Pow)
    VM_ROWS(fixed, Powx)
    VM_ROWS(one, Round)
    VM_ROWS(one, Sqr)
    VM_ROWS(one, Sqrt)
    VM_ROWS(two, Sub)
    VM_ROWS(one, Tanh)
}
