// Build-time program: draws every PNG the editor names into the directory
// given as its argument.
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <cstdio>

#include "Artwork.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: sorvane_artwork OUTPUT_DIR\n");
        return 2;
    }
    bool ok = artwork::drawKnobStrips(argv[1]);
    ok = artwork::drawSwitchStrips(argv[1]) && ok;
    ok = artwork::drawPanels(argv[1]) && ok;
    // Hand back cairo's and fontconfig's caches so leak checkers see a clean exit.
    cairo_debug_reset_static_data();
    FcFini();
    return ok ? 0 : 1;
}
