#pragma once
// Signals around fork. The program's handlers for the termination signals write to the
// pipe its main loop reads, which a child shares: run in the child, they would end the
// parent. They stay blocked from just before fork until the child has put the default
// actions back.
#include <csignal>

// Blocks SIGTERM, SIGHUP, SIGQUIT and SIGINT; returns the mask as it was.
sigset_t block_termination_signals();
// Puts back the mask that block_termination_signals returned.
void restore_signal_mask(const sigset_t& previous);
// In the child: the termination signals take their default action again, and the mask
// is the one from before the fork.
void restore_default_signals(const sigset_t& previous);
