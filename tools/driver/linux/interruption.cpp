#include "tools/driver/interruption.h"

#include <array>
#include <csignal>

namespace pellux {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void on_signal(int) {
    g_interrupted = 1;
}

} // namespace

void notice_interruption() {
    struct sigaction action {};
    action.sa_handler = on_signal; // NOLINT: the system's name
    for (const int signal : std::array{SIGINT, SIGTERM, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

bool interrupted() {
    return g_interrupted != 0;
}

} // namespace pellux
