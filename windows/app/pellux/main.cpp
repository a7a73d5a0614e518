#include "windows/app/program.h"

int main(int argument_count, char** arguments) {
    return pellux::run_pellux(argument_count, arguments);
}
