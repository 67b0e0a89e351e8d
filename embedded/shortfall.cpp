#include "embedded/shortfall.h"

#include "embedded/session_state.h"

namespace hierfit {

void note_shortfall(Shortfall::Of of, const Error& why) {
  Session::State* state = state_of_thread();
  if (state == nullptr) return;
  state->outputs.shortfalls.push_back({of, why.where(), why.what()});
  if (of == Shortfall::Of::Chart) {
    state->outputs.tell(state->inputs.strings,
                        "A chart that belongs here could not be made whole.");
  }
}

}  // namespace hierfit
