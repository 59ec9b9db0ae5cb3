// The debug registry's show callback.
#include "authmng.h"
#include "authmng_platform.h"
#include "core/relaxed.h"

using authmng::load_relaxed;

extern "C" void authmng_show_debug_state(void) {
    static const char *const kLines[] = {"authmng event debugging is on\n",
                                         "authmng error debugging is on\n"};
    bool header_printed = false;
    for (int i = 0; authmanage_array[i].sw != nullptr && authmanage_array[i].desc != nullptr; ++i) {
        if (!load_relaxed(*authmanage_array[i].sw)) continue;
        if (!header_printed) {
            cli_printf("authmng debug:\r\n");
            header_printed = true;
        }
        if (i < 2) cli_printf("%s", kLines[i]);
    }
}
