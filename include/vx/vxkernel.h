/* The whole exported interface. Each family's header can be included by itself as well. */
#ifndef VX_VXKERNEL_H
#define VX_VXKERNEL_H

#include "vx/blend.h"
#include "vx/capability.h"
#include "vx/channels.h"
#include "vx/composite.h"
#include "vx/dibcopy.h"
#include "vx/fields.h"
#include "vx/internationals.h"
#include "vx/numbers.h"
#include "vx/pixel.h"
#include "vx/scale.h"
#include "vx/smpte.h"
#include "vx/timer.h"
#include "vx/types.h"

#endif
