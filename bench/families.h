// The families of works, each in a file of its own. A new family is a function here, called by main.
#pragma once

#include "compare.h"

namespace vxbench {

void AddMixWorks(Suite& suite);
void AddChannelWorks(Suite& suite);
void AddCompositeWorks(Suite& suite);
void AddScaleWorks(Suite& suite);
void AddConvertWorks(Suite& suite);
void AddListWorks(Suite& suite);
void AddTextWorks(Suite& suite);
void AddTimeWorks(Suite& suite);
void AddSettingsWorks(Suite& suite);
void AddKernelWorks(Suite& suite);

} // namespace vxbench
