// loops_16.cpp - loops over vectors of 16 bytes.
#include "bench/vm/loops.hpp"

namespace vm_peers {
constinit const loops loops_16 = loops_of<16>();
}
