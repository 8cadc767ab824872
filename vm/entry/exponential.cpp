// exponential.cpp - exponentials and hyperbolic tangents.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Exp, exp, EXP, three, (0.6f, 0.5f, 0.35f))
VOX_VM_1I_1O(Tanh, tanh, TANH, three, (1.2f, 0.8f, 0.5f))
