/* The whole exported interface. Each family's header can be included by itself as well. */
#ifndef VX_VXKERNEL_H
#define VX_VXKERNEL_H

#include "vx/blend.h"
#include "vx/capability.h"
#include "vx/list.h"
#include "vx/types.h"

#endif
