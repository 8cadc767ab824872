// exponential.cpp - exponentials and hyperbolic tangents.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Exp, exp, EXP, three, (0.75f, 0.7f, 0.6f))
VOX_VM_1I_1O(Tanh, tanh, TANH, three, (2.2f, 1.4f, 1.0f))
