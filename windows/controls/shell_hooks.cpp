#include "windows/controls/shell_hooks.h"

namespace pellux {
namespace {

ShellHooks g_shell;

} // namespace

void install_shell(const ShellHooks& hooks) {
    g_shell = hooks;
}

const ShellHooks& shell() {
    return g_shell;
}

} // namespace pellux
