#include "core/os/interruption.h"

#include "core/os/linux/system_call.h"
#include "core/os/loop.h"
#include "core/os/process.h"

#include <array>
#include <csignal>

#include <unistd.h>

namespace pellux {
namespace {

volatile std::sig_atomic_t g_signal = 0;
volatile std::sig_atomic_t g_wake =
    -1; ///< descriptor; a signal before the loop sleeps ends its sleep

/// What wakes the loop; kept to the end of the program.
struct Wakening {
    OwnedHandle read_end;
    OwnedHandle write_end;
    DescriptorWatch watch;
    void (*noticed)() = nullptr;
};
Wakening g_wakening;

void on_signal(int signal) {
    const int error = errno;
    g_signal = signal;
    static_cast<void>(!::write(g_wake, "", 1));
    errno = error;
}

void on_wakened(void*, bool, bool) {
    std::array<std::byte, 16> bytes;
    std::size_t got = 0;
    bool would_wait = false;
    static_cast<void>(read_handle(g_wakening.read_end.get(), bytes, got, would_wait));
    if (g_wakening.noticed != nullptr)
        g_wakening.noticed();
}

} // namespace

void notice_interruption(void (*noticed)()) {
    g_wakening.noticed = noticed;
    if (g_wake < 0 && !failed(make_pipe(g_wakening.read_end, g_wakening.write_end))) {
        set_non_blocking(g_wakening.read_end.get());
        set_non_blocking(g_wakening.write_end.get());
        g_wakening.watch.handle = g_wakening.read_end.get();
        g_wakening.watch.ready = on_wakened;
        watch_descriptor(g_wakening.watch);
        g_wake = descriptor(g_wakening.write_end.get());
    }
    struct sigaction action {};
    action.sa_handler = on_signal; // NOLINT: the system's name
    for (const int signal : std::array{SIGINT, SIGTERM, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

int interruption() {
    return g_signal;
}

} // namespace pellux
