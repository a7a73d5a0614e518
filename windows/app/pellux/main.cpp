#include "windows/app/shell.h"

int main(int argument_count, char** arguments) {
    return pellux::run_pellux(argument_count, arguments);
}
