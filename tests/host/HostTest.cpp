// The host library on its own: readable errors for libraries it cannot use,
// and the callbacks and processing of a probe plug-in.
#include <gtest/gtest.h>

#include "AudioBuffer.h"
#include "Plugin.h"

using vsthost::Plugin;

namespace {
std::string loadError(const std::string& path) {
    std::string error;
    auto plugin = Plugin::load(path, error);
    EXPECT_FALSE(plugin);
    return error;
}
}  // namespace

TEST(HostLoad, ClearErrorsForUnusableLibraries) {
    EXPECT_NE(loadError("/nonexistent/Missing.so").find("cannot load /nonexistent/Missing.so"), std::string::npos);
    EXPECT_NE(loadError(FIXTURE_NO_ENTRY).find("no VSTPluginMain"), std::string::npos);
    EXPECT_NE(loadError(FIXTURE_NULL_ENTRY).find("gave no effect"), std::string::npos);
    EXPECT_NE(loadError(FIXTURE_BAD_MAGIC).find("without the VST magic"), std::string::npos);
}

TEST(HostLoad, VersionAnswerOfZeroIsPassedToTheEntry) {
    std::string error;
    EXPECT_FALSE(Plugin::load(FIXTURE_PROBE, error, 0));
    EXPECT_TRUE(Plugin::load(FIXTURE_PROBE, error));
}

TEST(HostCallbacks, AutomationDisplayAndEditsAreRecorded) {
    std::string error;
    auto probe = Plugin::load(FIXTURE_PROBE, error);
    ASSERT_TRUE(probe) << error;
    EXPECT_EQ(probe->effectName(), "Probe");
    probe->setSampleRate(48000.0f);
    EXPECT_EQ(probe->dispatch(effVendorSpecific, 7, 0, nullptr, 0.625f), 48000);
    probe->dispatch(effVendorSpecific, 2, 0, nullptr, 0.5f);
    EXPECT_EQ(probe->automation(), (std::vector<vsthost::Automation>{{7, 0.625f}, {2, 0.5f}}));
    EXPECT_EQ(probe->displayUpdates(), 2);
    EXPECT_EQ(probe->log().beginEdits(), (std::vector<VstInt32>{7, 2}));
    EXPECT_EQ(probe->log().endEdits(), (std::vector<VstInt32>{7, 2}));
    ASSERT_EQ(probe->log().otherCalls().size(), 2u);
    EXPECT_EQ(probe->log().otherCalls()[0].opcode, audioMasterGetSampleRate);
    probe->log().clear();
    EXPECT_TRUE(probe->automation().empty());
}

TEST(HostProcessing, CopiedPointerArraysLeaveTheCallersAlone) {
    std::string error;
    auto probe = Plugin::load(FIXTURE_PROBE, error);
    ASSERT_TRUE(probe) << error;
    vsthost::AudioBuffer<double> in(2, 5), out(2, 5);
    for (int i = 0; i < 5; ++i) in[0][i] = in[1][i] = i;
    auto inPtrs = in.pointers();
    auto outPtrs = out.pointers();
    probe->processDouble(inPtrs, outPtrs, 3);
    EXPECT_EQ(inPtrs[0], in[0].data());
    EXPECT_EQ(outPtrs[1], out[1].data());
    EXPECT_EQ(out[1], (std::vector<double>{0, 2, 4, 0, 0}));
    // Raw arrays are the plug-in's to walk.
    probe->processDoubleRaw(inPtrs.data(), outPtrs.data(), 2);
    EXPECT_EQ(outPtrs[0], out[0].data() + 2);
    vsthost::AudioBuffer<float> fin(2, 4), fout(2, 4);
    fin[0] = {1, 2, 3, 4};
    probe->processFloat(fin.pointers(), fout.pointers(), 4);
    EXPECT_EQ(fout[0], (std::vector<float>{2, 4, 6, 8}));
}

TEST(HostLifecycle, AnEffectIsClosedExactlyOnce) {
    std::string error;
    // A second instance keeps the library, and the probe's close count, loaded.
    auto keeper = Plugin::load(FIXTURE_PROBE, error);
    auto probe = Plugin::load(FIXTURE_PROBE, error);
    ASSERT_TRUE(keeper && probe);
    const VstIntPtr closesBefore = keeper->vendorVersion();
    EXPECT_EQ(probe->close(), 1);
    EXPECT_EQ(probe->close(), 0);  // already closed: nothing is sent
    probe.reset();
    EXPECT_EQ(keeper->vendorVersion(), closesBefore + 1);
}
