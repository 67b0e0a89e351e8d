// Where the module's messages go, and how grave they are.
#pragma once

#include "host/pivot.h"

inline constexpr BpErrorShow kShowInOutput{2};
inline constexpr BpErrorLevel kWarningLevel{2};
inline constexpr BpErrorLevel kErrorLevel{3};
