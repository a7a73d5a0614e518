#include "bench/programs/first_paint.h"
#include "windows/app/program.h"

namespace pellux {
Q_COREAPP_STARTUP_FUNCTION(end_at_first_paint)
}

// The whole program, until it has been painted.
int main(int argument_count, char** arguments) {
    return pellux::run_pellux(argument_count, arguments);
}
