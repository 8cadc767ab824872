// entry.cpp - what is exported, see entries.hpp. Each entry keeps the copy that it has chosen.
#include "dnn/entries.hpp"

#include "serv/dispatch.hpp"

#define ENTRY(P, T, name, result, parameters, arguments)                                           \
    VOX_DISPATCH_NAMED(dnn, name##_##P, name##_##P, result, parameters, arguments)                 \
    extern "C" VOX_API result dnn##name##_##P parameters { return name##_##P arguments; }

#define ENTRIES(P, T) VOX_DNN_ENTRIES(ENTRY, P, T)
VOX_DNN_PRECISIONS(ENTRIES)
