/* vox.h - everything that the library exports. */
#ifndef VOX_VOX_H
#define VOX_VOX_H

#include "vox/blas.h"
#include "vox/cblas.h"
#include "vox/dnn.h"
#include "vox/lapack.h"
#include "vox/lapacke.h"
#include "vox/rsk.h"
#include "vox/service.h"
#include "vox/tqm.h"
#include "vox/trans.h"

#endif
