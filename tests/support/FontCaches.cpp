// Text drawing fills cairo's and fontconfig's process-wide caches; hand
// them back after the last test so leak checkers report only our own leaks.
#include <cairo.h>
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

namespace {
class FontCaches : public ::testing::Environment {
public:
    void TearDown() override {
        cairo_debug_reset_static_data();
        FcFini();
    }
};
const auto* const registered = ::testing::AddGlobalTestEnvironment(new FontCaches);
}  // namespace
