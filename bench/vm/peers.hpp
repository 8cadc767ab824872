// peers.hpp - the vector functions of other libraries, and loops over arrays for them.
#pragma once

#include <string>

namespace vm_peers {

enum precision { single, real };
constexpr int element_bytes[] = {4, 8};

// Loops of a program's own, without a look at errors.
enum class operation { none, copy, sum, product, square, quotient, inverse, root };

struct loops {
    void (*call_1[2])(void *f, long n, const void *a, const void *b, void *r);
    void (*call_2[2])(void *f, long n, const void *a, const void *b, void *r);
    void (*plain[2])(operation o, long n, const void *a, const void *b, void *r);
};
extern const loops loops_16, loops_32, loops_64;

// The kernel sets of this library (VOX_TQM_CODE_PATH), and how others call their instructions.
struct kernel_set {
    const char *name;
    int bytes;
    const char *sleef; // end of SLEEF's names
    char mvec;         // letter in libmvec's names
    const loops *loop;
};
constexpr int set_count = 10;
extern const kernel_set kernel_sets[set_count];
int best_set(); // of this machine

// The function of registers of so many arguments, or null. name: as the C library calls it in double
// precision; accuracy: "u10", "u35", or "" where there is but one.
void *sleef_function(const std::string &name, const std::string &accuracy, precision p,
                     const kernel_set &set);
void *mvec_function(const std::string &name, int arguments, precision p, const kernel_set &set);

} // namespace vm_peers
