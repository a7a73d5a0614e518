#include "tools/driver/simulator/simulation.h"
#include "tools/driver/tool_main.h"

int main(int argc, char** argv) {
    using namespace pellux;
    return run_tool("BRIXSIM", {argv, static_cast<std::size_t>(argc)}, parse_simulation,
                    run_simulation);
}
