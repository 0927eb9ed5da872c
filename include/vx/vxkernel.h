/* The whole exported interface. Each family's header can be included by itself as well. */
#ifndef VX_VXKERNEL_H
#define VX_VXKERNEL_H

#include "vx/blend.h"
#include "vx/capability.h"
#include "vx/channels.h"
#include "vx/composite.h"
#include "vx/curve.h"
#include "vx/dib.h"
#include "vx/dibcopy.h"
#include "vx/errors.h"
#include "vx/fields.h"
#include "vx/formattext.h"
#include "vx/internationals.h"
#include "vx/kernel.h"
#include "vx/lang.h"
#include "vx/list.h"
#include "vx/metrics.h"
#include "vx/msgbox.h"
#include "vx/numbers.h"
#include "vx/osversion.h"
#include "vx/path.h"
#include "vx/pixel.h"
#include "vx/print.h"
#include "vx/ruler.h"
#include "vx/scale.h"
#include "vx/smpte.h"
#include "vx/timer.h"
#include "vx/types.h"
#include "vx/xchg.h"

#endif
