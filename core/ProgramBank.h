// The program records a VST instance edits: one table per speaker layout,
// filled with the factory programs. Hosts select the first five of a table;
// the rest is room a program number past them may land in without reading
// past the table.
#pragma once

#include "FactoryPrograms.h"

namespace sorvane {

class ProgramBank {
public:
    static constexpr int kCapacity = 20;  // records per layout

    ProgramBank() {
        for (int layout = kStereoLayout; layout <= kFiveOneLayout; ++layout)
            for (int program = 0; program < kFactoryPrograms; ++program)
                tables[layout - kStereoLayout][program] = factoryProgram(layout, program);
    }

    // Null for a layout without a table or a number past its room.
    ProgramRecord* record(int layout, int program) {
        if (!isSelectableLayout(layout) || program < 0 || program >= kCapacity) return nullptr;
        return &tables[layout - kStereoLayout][program];
    }

private:
    ProgramRecord tables[kNumLayouts][kCapacity] = {};
};

}  // namespace sorvane
