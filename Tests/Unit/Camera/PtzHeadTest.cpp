#include "PtzHead.h"

#include "PtzTour.h"

#include <gtest/gtest.h>

#include <atomic>

namespace
{

constexpr std::uint64_t SECOND = 1000000;

} // namespace

TEST(PtzHead, SeesTheWholePictureAtFirst)
{
    CPtzHead head;
    const PtzView view = head.At(5 * SECOND);
    EXPECT_DOUBLE_EQ(0.5, view.x);
    EXPECT_DOUBLE_EQ(0.5, view.y);
    EXPECT_DOUBLE_EQ(1, view.zoom);
    EXPECT_FALSE(head.IsMoving(5 * SECOND));
}

TEST(PtzHead, TheZoomDoublesInASecondAtTheHighestSpeed)
{
    CPtzHead head;
    head.Control(PtzCommand::ZoomIn, 8, SECOND);
    EXPECT_NEAR(2, head.At(2 * SECOND).zoom, 1e-9);
    head.Control(PtzCommand::Stop, 0, 3 * SECOND);
    EXPECT_NEAR(4, head.At(9 * SECOND).zoom, 1e-9);
    EXPECT_FALSE(head.IsMoving(9 * SECOND));
}

TEST(PtzHead, ALowerSpeedIsSlower)
{
    CPtzHead head;
    head.Control(PtzCommand::ZoomIn, 4, SECOND);
    EXPECT_NEAR(2, head.At(3 * SECOND).zoom, 1e-9);
    // A speed outside of the limits counts as the nearest one.
    head.Control(PtzCommand::ZoomIn, 100, 3 * SECOND);
    EXPECT_NEAR(4, head.At(4 * SECOND).zoom, 1e-9);
}

TEST(PtzHead, PansWithinThePictureAndEndsAtItsRim)
{
    CPtzHead head;
    head.GoTo({0.5, 0.5, 2}, 8, SECOND);
    ASSERT_NEAR(2, head.At(3 * SECOND).zoom, 1e-9);
    head.Control(PtzCommand::Right, 8, 3 * SECOND);
    EXPECT_NEAR(0.6, head.At(3 * SECOND + SECOND / 5).x, 1e-9);
    EXPECT_NEAR(0.75, head.At(9 * SECOND).x, 1e-9);
    head.At(10 * SECOND);
    EXPECT_FALSE(head.IsMoving(11 * SECOND));
    head.Control(PtzCommand::LeftUp, 8, 11 * SECOND);
    const PtzView view = head.At(11 * SECOND + SECOND / 5);
    EXPECT_NEAR(0.65, view.x, 1e-9);
    EXPECT_NEAR(0.4, view.y, 1e-9);
}

TEST(PtzHead, AtZoomOneThereIsNothingToPanTo)
{
    CPtzHead head;
    head.Control(PtzCommand::Left, 8, SECOND);
    EXPECT_DOUBLE_EQ(0.5, head.At(2 * SECOND).x);
    EXPECT_FALSE(head.IsMoving(2 * SECOND));
}

TEST(PtzHead, ZoomingOutAtTheRimKeepsTheViewInside)
{
    CPtzHead head;
    head.GoTo({0.9, 0.9, 8}, 8, SECOND);
    head.At(20 * SECOND);
    head.Control(PtzCommand::ZoomOut, 8, 20 * SECOND);
    const PtzView view = head.At(22 * SECOND);
    EXPECT_NEAR(2, view.zoom, 1e-9);
    EXPECT_NEAR(0.75, view.x, 1e-9);
}

TEST(PtzHead, GoesToAViewAndStaysThere)
{
    CPtzHead head;
    head.GoTo({0.3, 0.7, 4}, 8, SECOND);
    EXPECT_TRUE(head.IsMoving(SECOND + 1));
    for (std::uint64_t now = SECOND; now < 5 * SECOND; now += SECOND / 25)
    {
        head.At(now);
    }
    const PtzView view = head.At(5 * SECOND);
    EXPECT_DOUBLE_EQ(0.3, view.x);
    EXPECT_DOUBLE_EQ(0.7, view.y);
    EXPECT_DOUBLE_EQ(4, view.zoom);
    EXPECT_FALSE(head.IsMoving(5 * SECOND));
}

TEST(PtzHead, AViewThatReachesOverTheRimIsMovedInside)
{
    CPtzHead head;
    head.GoTo({0, 2, 100}, 8, SECOND);
    head.At(20 * SECOND);
    const PtzView view = head.At(21 * SECOND);
    EXPECT_DOUBLE_EQ(8, view.zoom);
    EXPECT_DOUBLE_EQ(0.0625, view.x);
    EXPECT_DOUBLE_EQ(0.9375, view.y);
}

TEST(PtzHead, FocusAndIrisMoveNothing)
{
    CPtzHead head;
    for (const PtzCommand command : {PtzCommand::Near, PtzCommand::Far, PtzCommand::IrisOpen, PtzCommand::IrisClose})
    {
        head.Control(command, 8, SECOND);
        EXPECT_FALSE(head.IsMoving(2 * SECOND));
    }
}

namespace
{

/// A clock that goes a tenth of a second on with each look.
class CHastyClock
{
public:
    std::uint64_t operator()() { return m_now += SECOND / 10; }

private:
    std::atomic<std::uint64_t> m_now{SECOND};
};

} // namespace

TEST(PtzTour, GoesFromStopToStopOverAndOver)
{
    CPtzHead head;
    CHastyClock clock;
    std::atomic<int> looks{0};
    CPtzTour tour(head,
                  [&]
                  {
                      ++looks;
                      return clock();
                  });
    EXPECT_FALSE(tour.IsRunning());
    tour.Start({{{0.25, 0.5, 2}, 8, 1}, {{0.75, 0.5, 2}, 8, 1}});
    EXPECT_TRUE(tour.IsRunning());
    int seen = 0; // bit 1: left, bit 2: right, bit 4: left again
    while (seen != 7)
    {
        const double x = head.At(0).x; // an old time: only looks
        seen |= x < 0.3 ? (seen >= 3 ? 4 : 1) : 0;
        seen |= x > 0.7 && seen >= 1 ? 2 : 0;
    }
    tour.Stop();
    EXPECT_FALSE(tour.IsRunning());
    EXPECT_FALSE(head.IsMoving(clock()));
}

TEST(PtzTour, StopsAtOnceInTheMiddleOfAStay)
{
    CPtzHead head;
    CPtzTour tour(head, [] { return SECOND; });
    tour.Start({{{0.5, 0.5, 1}, 8, 120}});
    tour.Stop();
    tour.Stop();
    EXPECT_FALSE(tour.IsRunning());
}

TEST(PtzTour, ANewTourReplacesTheOldOne)
{
    CPtzHead head;
    CPtzTour tour(head, [] { return SECOND; });
    tour.Start({{{0.5, 0.5, 1}, 8, 120}});
    tour.Start({{{0.5, 0.5, 2}, 8, 120}});
    EXPECT_TRUE(tour.IsRunning());
}
