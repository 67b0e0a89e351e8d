// What a run goes on without.
#pragma once

#include "embedded/error.h"

namespace hierfit {

/// Something that the report of a run lacks, with the reason. The module knows no word for it.
struct Shortfall {
  enum class Of { ProgramFile, Chart };

  Of of;
  Location where;
  std::string sentence;
};

/// Notes it in the session of this thread, if there is one; of a chart the report says so, too, in
/// the chart's place.
void note_shortfall(Shortfall::Of of, const Error& why);

}  // namespace hierfit
