// logarithm.cpp - logarithms.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Ln, ln, LN, three, (0.8f, 0.7f, 0.5f))
