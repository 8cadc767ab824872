// logarithm.cpp - logarithms.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Ln, ln, LN, three, (0.95f, 0.7f, 0.55f))
VOX_VM_1I_1O(Log1p, log1p, LOG1P, three, (1.75f, 1.3f, 1.1f))
