// Who owns what: views are shared between the creator and the frame by
// reference counts, and a frame the editor over-remembers still goes away.
#include <gtest/gtest.h>

#include "CBitmap.h"
#include "CDrawContext.h"
#include "CFrame.h"
#include "Probes.h"

namespace {
CFrame* offscreenFrame() { return new CFrame(CRect(0, 0, 578, 502), nullptr, nullptr); }
}  // namespace

TEST(References, ForgottenViewLivesInTheFrameUntilRemovedWithForget) {
    bool deleted = false;
    CFrame* frame = offscreenFrame();
    auto* view = new DeathProbe(CRect(0, 0, 10, 10), &deleted);
    ASSERT_TRUE(frame->addView(view));
    EXPECT_EQ(view->getNbReference(), 2);
    view->forget();  // the creator lets go; the frame still holds it
    EXPECT_FALSE(deleted);
    EXPECT_TRUE(frame->isChild(view));
    EXPECT_EQ(view->getFrame(), frame);

    EXPECT_TRUE(frame->removeView(view, true));
    EXPECT_TRUE(deleted);
    // A second removal of the same (now gone) view finds nothing and touches nothing.
    EXPECT_FALSE(frame->removeView(view, true));
    EXPECT_EQ(frame->getNbViews(), 0);
    frame->forget();
}

TEST(References, RemovingWithoutForgetHandsTheViewBack) {
    bool deleted = false;
    CFrame* frame = offscreenFrame();
    auto* view = new DeathProbe(CRect(0, 0, 10, 10), &deleted);
    frame->addView(view);
    EXPECT_FALSE(frame->addView(view)) << "a view is a child only once";
    EXPECT_TRUE(frame->removeView(view, false));
    EXPECT_FALSE(frame->isChild(view));
    EXPECT_EQ(view->getFrame(), nullptr);
    EXPECT_EQ(view->getNbReference(), 2) << "the creator's and the one the frame handed back";
    frame->forget();
    EXPECT_FALSE(deleted);
    view->forget();
    view->forget();
    EXPECT_TRUE(deleted);
}

TEST(References, IsChildKnowsOnlyDirectChildren) {
    CFrame* frame = offscreenFrame();
    CFrame* other = offscreenFrame();
    auto* a = new CView(CRect(0, 0, 5, 5));
    auto* b = new CView(CRect(0, 0, 5, 5));
    frame->addView(a);
    other->addView(b);
    EXPECT_TRUE(frame->isChild(a));
    EXPECT_FALSE(frame->isChild(b));
    EXPECT_FALSE(frame->isChild(nullptr));
    EXPECT_FALSE(frame->isChild(frame));
    a->forget();
    b->forget();
    frame->forget();
    other->forget();
}

TEST(References, FrameReleasesItsViewsWhenItGoes) {
    bool first = false, second = false;
    CFrame* frame = offscreenFrame();
    auto* kept = new DeathProbe(CRect(0, 0, 5, 5), &first);
    auto* handed = new DeathProbe(CRect(0, 0, 5, 5), &second);
    frame->addView(kept);
    frame->addView(handed);
    handed->forget();
    frame->forget();
    EXPECT_TRUE(second) << "only the frame held it";
    EXPECT_FALSE(first) << "its creator still holds it";
    EXPECT_EQ(kept->getFrame(), nullptr);
    kept->forget();
    EXPECT_TRUE(first);
}

// The editor remembers the frame after every addView and forgets it once
// at close; that one forget must still free the frame and its views.
TEST(References, OwnersForgetFreesAFrameRememberedPerView) {
    bool deleted[3] = {false, false, false};
    CFrame* frame = offscreenFrame();
    for (bool& flag : deleted) {
        auto* view = new DeathProbe(CRect(0, 0, 5, 5), &flag);
        frame->addView(view);
        frame->remember();
        view->forget();
    }
    // A view removed on the way keeps its claim on the frame as well.
    frame->removeView(frame->getView(0), true);
    EXPECT_TRUE(deleted[0]);
    EXPECT_EQ(frame->getNbReference(), 4);
    // Another, real owner keeps it alive through the editor's forget.
    frame->remember();
    frame->forget();
    EXPECT_FALSE(deleted[1]);
    frame->forget();
    EXPECT_TRUE(deleted[1]);
    EXPECT_TRUE(deleted[2]);
}

TEST(References, BackgroundBitmapIsSharedByReference) {
    auto* bitmap = new CBitmap("plot.png");
    auto* view = new CView(CRect(0, 0, 126, 126));
    view->setBackground(bitmap);
    EXPECT_EQ(bitmap->getNbReference(), 2);
    bitmap->forget();
    EXPECT_EQ(bitmap->getNbReference(), 1);
    EXPECT_EQ(view->getBackground(), bitmap);
    view->setBackground(nullptr);  // the view's reference was the last
    EXPECT_EQ(view->getBackground(), nullptr);
    view->forget();
}

TEST(Bitmaps, SizeComesFromTheNamedPngAndUnknownNamesAreEmpty) {
    CBitmap plot("plot.png");
    EXPECT_EQ(plot.getWidth(), 126);
    EXPECT_EQ(plot.getHeight(), 126);
    CBitmap knob("360_knob.png");
    EXPECT_EQ(knob.getHeight(), knob.getWidth() * 281);

    auto* missing = new CBitmap("no_such_file.png");
    EXPECT_EQ(missing->getWidth(), 0);
    EXPECT_EQ(missing->getHeight(), 0);
    EXPECT_EQ(missing->getSurface(), nullptr);
    // Views made with it still exist and draw nothing.
    auto* view = new CView(CRect(0, 0, 10, 10));
    view->setBackground(missing);
    missing->forget();
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 10, 10);
    cairo_t* cr = cairo_create(image);
    {
        CDrawContext context(cr);
        view->draw(&context);
    }
    cairo_destroy(cr);
    cairo_surface_flush(image);
    EXPECT_EQ(*reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(image)), 0u);
    cairo_surface_destroy(image);
    view->forget();
}
