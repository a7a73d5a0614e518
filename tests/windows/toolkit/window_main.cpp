#include "windows/toolkit/app.h"

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argument_count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    testing::InitGoogleTest(&argument_count, arguments);
    pellux::xvt_app_start(argument_count, arguments);
    const int status = RUN_ALL_TESTS();
    pellux::xvt_app_end();
    return status;
}
