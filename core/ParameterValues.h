// The normalised value of every parameter, by index, as hosts read them
// back: each starts at the protocol's default.
#pragma once

#include "SorvaneProtocol.h"

namespace sorvane {

class ParameterValues {
public:
    ParameterValues() {
        for (int i = 0; i < kNumParams; ++i) values[i] = kParameters[i].defaultValue;
    }
    float& operator[](int index) { return values[index]; }
    float operator[](int index) const { return values[index]; }
    const float* data() const { return values; }

private:
    float values[kNumParams];
};

}  // namespace sorvane
