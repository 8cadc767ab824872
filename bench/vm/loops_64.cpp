// loops_64.cpp - loops over vectors of 64 bytes.
#include "bench/vm/loops.hpp"

namespace vm_peers {
constinit const loops loops_64 = loops_of<64>();
}
