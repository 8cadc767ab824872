// logarithm.cpp - logarithms.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Ln, ln, LN, three, (0.8f, 0.7f, 0.5f))
VOX_VM_1I_1O(Log1p, log1p, LOG1P, three, (1.6f, 1.4f, 1.2f))
