// The interactive prompt: every show, debug and configuration command of
// the client, with history, line editing, "?" help, tab completion and
// Ctrl-C to cancel the line.
#ifndef AUTHMNG_SIM_PROMPT_H
#define AUTHMNG_SIM_PROMPT_H

#include "simulator.h"

namespace authmng_sim {

// Reads command lines until end of input or "exit"/"quit".
void run_prompt(Simulator *simulator);

}  // namespace authmng_sim

#endif
