// power.cpp - powers, with an exponent for each element or one for all.
#include "vm/frame.hpp"

VOX_VM_2I_1O(Pow, pow, POW, three, (3.0f, 3.0f, 2.0f))
VOX_VM_1I_1O_FIXED(Powx, powx, POWX, three, (3.0f, 3.0f, 2.0f))
