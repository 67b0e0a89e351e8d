#include "embedded/shortfall.h"

#include "embedded/session_state.h"

namespace hierfit {

void note_shortfall(Shortfall::Of of, const Error& why) {
  Session::State* state = state_of_thread();
  if (state != nullptr) state->outputs.shortfalls.push_back({of, why.where(), why.what()});
}

}  // namespace hierfit
