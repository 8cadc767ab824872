// lapack_calls.cpp - the C forms of LAPACK, on matrices by columns and by rows.
#include "tests/lapack/lapacke_table.hpp"
#include "tests/process/routine_calls.hpp"

namespace {

using namespace test;

// The matrices come first; then pivots, the vector, the number and info.
template <class T>
void add(routine_calls &all, call_size size) {
    using namespace lapacke;
    const sizes s = size == call_size::small ? sizes{9, 2, 11} : sizes{230, 140, 240};
    for (const routine<T> &r : lapacke::routines<T>(s))
        for (int layout : {LAPACK_COL_MAJOR, LAPACK_ROW_MAJOR}) {
            if (size == call_size::small && layout == LAPACK_ROW_MAJOR)
                continue; // copies are its way
            const lapacke::arguments<T> filled = fill(r, layout);
            constexpr size_t part = sizeof(real_of<T>);
            std::vector<operand_bytes> operands;
            for (const auto &m : filled.m)
                operands.push_back(plain_operand(m.memory, part));
            operands.push_back(plain_operand(filled.pivots));
            operands.push_back(plain_operand(filled.vector, part));
            operands.push_back(plain_operand(std::vector<real_of<T>>(1), part));
            operands.push_back(plain_operand(std::vector<vox_int>(1)));
            lapacke::arguments<T> bare = filled;
            for (auto &m : bare.m)
                m.memory.clear(), m.values.clear();
            const auto make = [r, layout, bare](char *const *at) {
                lapacke::arguments<T> now = bare;
                const size_t matrices = now.m.size();
                for (size_t i = 0; i < matrices; ++i)
                    now.m[i].elsewhere = as<T>(at[i]);
                std::memcpy(now.pivots.data(), at[matrices], now.pivots.size() * sizeof(vox_int));
                std::memcpy(now.vector.data(), at[matrices + 1], now.vector.size() * sizeof(T));
                *as<vox_int>(at[matrices + 3]) = r.call(layout, now);
                std::memcpy(at[matrices], now.pivots.data(), now.pivots.size() * sizeof(vox_int));
                std::memcpy(at[matrices + 1], now.vector.data(), now.vector.size() * sizeof(T));
                *as<real_of<T>>(at[matrices + 2]) = now.number;
            };
            all.push_back(
                {letter_of<T> + r.name, operands, make, 0, r.matrices.size(), r.name == "geqp3"});
        }
}

} // namespace

void test::add_lapack_calls(routine_calls &all, call_size size) {
    for_each_type([&](auto zero) { add<decltype(zero)>(all, size); });
}
