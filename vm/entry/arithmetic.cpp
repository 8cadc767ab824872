// arithmetic.cpp - the functions that are exactly rounded, and the inverse root.
#include "vm/frame.hpp"

VOX_VM_1I_1O(Abs, abs, ABS, one, (0.15f, 0.15f, 0.15f))
VOX_VM_2I_1O(Add, add, ADD, one, (0.22f, 0.22f, 0.22f))
VOX_VM_1I_1O(Ceil, ceil, CEIL, one, (0.15f, 0.15f, 0.15f))
VOX_VM_2I_1O(Div, div, DIV, three, (0.33f, 0.33f, 0.33f))
VOX_VM_1I_1O(Floor, floor, FLOOR, one, (0.15f, 0.15f, 0.15f))
VOX_VM_1I_1O(Inv, inv, INV, three, (0.33f, 0.33f, 0.33f))
VOX_VM_1I_1O(InvSqrt, invsqrt, INVSQRT, three, (1.0f, 0.9f, 0.9f))
VOX_VM_2I_1O(Mul, mul, MUL, one, (0.22f, 0.22f, 0.22f))
VOX_VM_1I_1O(Round, round, ROUND, one, (0.15f, 0.15f, 0.15f))
VOX_VM_1I_1O(Sqr, sqr, SQR, one, (0.15f, 0.15f, 0.15f))
VOX_VM_1I_1O(Sqrt, sqrt, SQRT, three, (0.6f, 0.6f, 0.6f))
VOX_VM_2I_1O(Sub, sub, SUB, one, (0.22f, 0.22f, 0.22f))
