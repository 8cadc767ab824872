// loops_32.cpp - loops over vectors of 32 bytes.
#include "bench/vm/loops.hpp"

namespace vm_peers {
constinit const loops loops_32 = loops_of<32>();
}
