// operands.hpp - the memory that a call works on, and the call itself.
#pragma once

#include "bench/peers/peers.hpp"
#include "bench/peers/routines.hpp"

#include <string>

namespace peers {

// Which triangle, and which transposition where the routine does not say.
struct form {
    char uplo = 'L', trans = 'N';
};

// One case: a routine in one type at one size, for the candidates at hand.
struct test_case {
    const routine *what;
    size_t type; // index into type_letters
    extents size;
    form shape;
    double beta;
};

// Memory for the largest case; made once.
class memory {
  public:
    memory(size_t a_bytes, size_t x_bytes, size_t y_bytes);
    ~memory();
    memory(const memory &) = delete;
    memory &operator=(const memory &) = delete;

    void *a, *x, *y;

  private:
    void *blocks_[3];
};

// Best seconds per call of each function.
std::vector<double> seconds(const test_case &c, const std::vector<void *> &functions,
                            memory &operands, effort allowed);

// Whether two functions compute the same from the same operands; otherwise says where they differ.
bool agree(const test_case &c, void *const functions[2], memory *const operands[2],
           std::string &difference);

} // namespace peers
