// Build-time program: draws every PNG the editor names into the directory
// given as its argument.
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
    return ok ? 0 : 1;
}
