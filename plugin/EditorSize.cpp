// The editor's scale as Linux hosts announce it: effVendorSpecific with
// index 'PreS', value 'AeCs' and the factor in opt. The factor is kept as
// sent; the editor decides whether it is usable and follows a change at its
// next idle, on its own thread.
#include "SorvaneDecoder.h"

namespace {
constexpr VstInt32 kPresentationRequest = fourCharCode('P', 'r', 'e', 'S');
constexpr VstIntPtr kContentScale = fourCharCode('A', 'e', 'C', 's');
}  // namespace

VstIntPtr SorvaneDecoder::vendorSpecific(VstInt32 index, VstIntPtr value, void*, float opt) {
    if (index != kPresentationRequest || value != kContentScale) return 0;
    hostScaleFactor.store(opt, std::memory_order_relaxed);
    return 1;
}
