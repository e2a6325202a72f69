// Who owns what: views are shared between the creator and the frame by
// reference counts, and a frame the editor over-remembers still goes away.
#include <gtest/gtest.h>

#include "CBitmap.h"
#include "CFrame.h"
#include "OffscreenCanvas.h"
#include "Probes.h"

namespace {
CFrame* offscreenFrame() { return new CFrame(CRect(0, 0, 578, 502), nullptr, nullptr); }
}  // namespace

// A view is shared by its creator and the frame it is in: removing it
// without forget hands the frame's reference back, with forget drops it.
TEST(References, FrameHoldsAViewUntilRemovedOrHandsItBack) {
    bool deleted = false;
    CFrame *frame = offscreenFrame(), *other = offscreenFrame();
    auto* view = new DeathProbe(CRect(0, 0, 10, 10), &deleted);
    ASSERT_TRUE(frame->addView(view));
    EXPECT_FALSE(frame->addView(view)) << "a view is a child only once";
    EXPECT_EQ(view->getNbReference(), 2);
    EXPECT_TRUE(frame->removeView(view, false));
    EXPECT_EQ(view->getFrame(), nullptr);
    EXPECT_EQ(view->getNbReference(), 2) << "the creator's and the one the frame handed back";
    view->forget();

    ASSERT_TRUE(other->addView(view));
    EXPECT_FALSE(frame->isChild(view)) << "now a child of another frame only";
    view->forget();  // the creator lets go; the frame still holds it
    EXPECT_FALSE(deleted);
    EXPECT_TRUE(other->isChild(view));
    EXPECT_EQ(view->getFrame(), other);
    EXPECT_TRUE(other->removeView(view, true));
    EXPECT_TRUE(deleted);
    // A second removal of the same (now gone) view finds nothing and touches nothing.
    EXPECT_FALSE(other->removeView(view, true));
    EXPECT_EQ(other->getNbViews(), 0);
    forgetAll(frame, other);
}

// The editor remembers the frame after every addView and forgets it once
// at close; that one forget must still free the frame and the views only it
// holds, and leave a view its creator kept without a frame.
TEST(References, OwnersForgetFreesAFrameRememberedPerView) {
    bool deleted[4] = {false, false, false, false};
    CFrame* frame = offscreenFrame();
    DeathProbe* views[4];
    for (int i = 0; i < 4; ++i) {
        views[i] = new DeathProbe(CRect(0, 0, 5, 5), &deleted[i]);
        frame->addView(views[i]);
        frame->remember();
        if (i < 3) views[i]->forget();
    }
    // A view removed on the way keeps its claim on the frame as well.
    frame->removeView(frame->getView(0), true);
    EXPECT_TRUE(deleted[0]);
    EXPECT_EQ(frame->getNbReference(), 5);
    // Another, real owner keeps it alive through the editor's forget.
    frame->remember();
    frame->forget();
    EXPECT_FALSE(deleted[1]);
    frame->forget();
    EXPECT_TRUE(deleted[1] && deleted[2]);
    EXPECT_FALSE(deleted[3]) << "its creator still holds it";
    EXPECT_EQ(views[3]->getFrame(), nullptr);
    views[3]->forget();
    EXPECT_TRUE(deleted[3]);
}

TEST(Bitmaps, SizeComesFromTheNamedPngAndViewsShareIt) {
    auto* plot = new CBitmap("plot.png");
    EXPECT_EQ(plot->getWidth(), 126);
    EXPECT_EQ(plot->getHeight(), 126);
    auto* view = new CView(CRect(0, 0, 10, 10));
    view->setBackground(plot);
    EXPECT_EQ(plot->getNbReference(), 2);
    plot->forget();
    EXPECT_EQ(plot->getNbReference(), 1) << "the view's";

    auto* missing = new CBitmap("no_such_file.png");
    EXPECT_EQ(missing->getWidth(), 0);
    EXPECT_EQ(missing->getHeight(), 0);
    EXPECT_EQ(missing->getSurface(), nullptr);
    // Views made with it still exist and draw nothing.
    view->setBackground(missing);  // lets go of the plot's last reference
    missing->forget();
    OffscreenCanvas canvas(10, 10);
    canvas.render([&](CDrawContext* context) { view->draw(context); });
    EXPECT_EQ(canvas.at(0, 0), 0u);
    view->forget();
}
