// arithmetic.cpp - the functions that are exactly rounded.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Abs, abs, ABS, one, (0.2f, 0.2f, 0.2f))
VOX_VM_2I_1O(Add, add, ADD, one, (0.3f, 0.3f, 0.3f))
