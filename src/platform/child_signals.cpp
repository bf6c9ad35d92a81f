#include "platform/child_signals.h"

#include <pthread.h>

namespace {

constexpr int termination_signals[] = {SIGTERM, SIGHUP, SIGQUIT, SIGINT};

}  // namespace

sigset_t block_termination_signals()
{
    sigset_t blocked;
    sigset_t previous;
    sigemptyset(&blocked);
    for (int signal_number : termination_signals)
        sigaddset(&blocked, signal_number);
    pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    return previous;
}

void restore_signal_mask(const sigset_t& previous)
{
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

void restore_default_signals(const sigset_t& previous)
{
    for (int signal_number : termination_signals)
        std::signal(signal_number, SIG_DFL);
    restore_signal_mask(previous);
}
