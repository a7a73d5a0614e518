#include "tools/driver/compile/runner.h"
#include "tools/driver/tool_main.h"

int main(int argc, char** argv) {
    using namespace pellux;
    return run_tool("BRIX", {argv, static_cast<std::size_t>(argc)}, parse_arguments, run_compiler);
}
