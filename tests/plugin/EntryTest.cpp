// The exported entry and the record a host reads right after loading. That
// nothing else is exported, the validator checks (validate_sorvane).
#include "SorvaneHost.h"

using namespace sorvane_test;

TEST_F(SorvaneTest, RecordShowsTheEffectsShape) {
    const AEffect* e = fx().effect();
    EXPECT_EQ(e->magic, 0x56737450);
    EXPECT_EQ(e->numPrograms, 5);
    EXPECT_EQ(e->numParams, kNumParams);
    EXPECT_EQ(e->numInputs, 4);
    EXPECT_EQ(e->numOutputs, 6);
    // Editor, replacing, no tail, double replacing.
    EXPECT_EQ(e->flags, 1 + 16 + 32 + 512 + 4096);
    EXPECT_EQ(e->ioRatio, 1.0f);
    EXPECT_EQ(e->uniqueID, sorvane::kUniqueId);
    EXPECT_EQ(e->version, 1);
    EXPECT_EQ(e->initialDelay, 0);
    EXPECT_NE(e->object, nullptr);
    EXPECT_NE(e->process, nullptr);
    EXPECT_NE(e->processReplacing, nullptr);
    EXPECT_NE(e->processDoubleReplacing, nullptr);
    EXPECT_NE(e->setParameter, nullptr);
    EXPECT_NE(e->getParameter, nullptr);
}

TEST(SorvaneEntry, HostTooOldForVersionGetsNoEffect) {
    std::string error;
    auto plugin = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error, 0);
    EXPECT_FALSE(plugin);
    EXPECT_NE(error.find("gave no effect"), std::string::npos) << error;
}

TEST(SorvaneEntry, CloseAnswersOneAndInstancesAreIndependent) {
    auto first = loadSorvane();
    auto second = loadSorvane();
    ASSERT_TRUE(first && second);
    first->setParameter(kRotate, 0.25f);
    EXPECT_EQ(second->getParameter(kRotate), 0.5f);
    EXPECT_EQ(first->close(), 1);
    // The other instance lives on after the first one deleted itself.
    EXPECT_EQ(second->parameterDisplay(kRotate), "0.0\u00B0");
}
