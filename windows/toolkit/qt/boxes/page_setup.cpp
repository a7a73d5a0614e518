#include "windows/toolkit/page_setup.h"

#include <QLocale>

namespace pellux {

PrintRecord xvt_print_get_default() {
    PrintRecord record;
    if (QLocale::system().measurementSystem() == QLocale::ImperialUSSystem)
        record.paper = Paper::letter;
    return record;
}

} // namespace pellux
