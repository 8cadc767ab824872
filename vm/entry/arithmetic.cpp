// arithmetic.cpp - the functions that are exactly rounded, and the inverse root.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Abs, abs, ABS, one, (0.2f, 0.2f, 0.2f))
VOX_VM_2I_1O(Add, add, ADD, one, (0.3f, 0.3f, 0.3f))
VOX_VM_1I_1O(Ceil, ceil, CEIL, one, (0.2f, 0.2f, 0.2f))
VOX_VM_2I_1O(Div, div, DIV, three, (0.4f, 0.4f, 0.4f))
VOX_VM_1I_1O(Floor, floor, FLOOR, one, (0.2f, 0.2f, 0.2f))
VOX_VM_1I_1O(Inv, inv, INV, three, (0.4f, 0.4f, 0.4f))
VOX_VM_1I_1O(InvSqrt, invsqrt, INVSQRT, three, (1.2f, 1.0f, 1.0f))
VOX_VM_2I_1O(Mul, mul, MUL, one, (0.3f, 0.3f, 0.3f))
VOX_VM_1I_1O(Round, round, ROUND, one, (0.2f, 0.2f, 0.2f))
VOX_VM_1I_1O(Sqr, sqr, SQR, one, (0.2f, 0.2f, 0.2f))
VOX_VM_1I_1O(Sqrt, sqrt, SQRT, three, (0.7f, 0.7f, 0.7f))
VOX_VM_2I_1O(Sub, sub, SUB, one, (0.3f, 0.3f, 0.3f))
