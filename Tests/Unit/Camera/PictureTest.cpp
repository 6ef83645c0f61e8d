// The work on pictures, on small ones whose samples are known.
#include "ImageAdjust.h"
#include "MotionDetector.h"
#include "PictureWork.h"
#include "PrivacyMasks.h"
#include "RecordTime.h"
#include "ViewScaler.h"

#include <gtest/gtest.h>

#include <vector>

using namespace NETNS;

namespace
{

/// A picture with rows that are longer than its width, and a guard behind them that nobody may touch.
class CTestPicture
{
public:
    CTestPicture(unsigned int width, unsigned int height, std::uint8_t luma = 100, std::uint8_t blue = 128,
                 std::uint8_t red = 128)
        : m_width(width), m_height(height), m_luma(Make(width, height, luma)),
          m_blue(Make((width + 1) / 2, (height + 1) / 2, blue)), m_red(Make((width + 1) / 2, (height + 1) / 2, red))
    {
    }

    Picture Get(std::uint64_t timeUs = 0)
    {
        const auto plane = [](std::vector<std::uint8_t>& samples, unsigned int width, unsigned int height)
        {
            return PicturePlane{samples.data(), static_cast<int>(width + MARGIN), width, height};
        };
        return {plane(m_luma, m_width, m_height), plane(m_blue, (m_width + 1) / 2, (m_height + 1) / 2),
                plane(m_red, (m_width + 1) / 2, (m_height + 1) / 2), timeUs};
    }

    std::uint8_t& Luma(unsigned int x, unsigned int y) { return m_luma[y * (m_width + MARGIN) + x]; }
    std::uint8_t& Blue(unsigned int x, unsigned int y) { return m_blue[y * ((m_width + 1) / 2 + MARGIN) + x]; }
    std::uint8_t& Red(unsigned int x, unsigned int y) { return m_red[y * ((m_width + 1) / 2 + MARGIN) + x]; }

    bool IsMarginUntouched() const
    {
        for (unsigned int row = 0; row < m_height; ++row)
        {
            for (unsigned int column = 0; column < MARGIN; ++column)
            {
                if (m_luma[row * (m_width + MARGIN) + m_width + column] != GUARD)
                {
                    return false;
                }
            }
        }
        return true;
    }

private:
    static constexpr unsigned int MARGIN = 3;
    static constexpr std::uint8_t GUARD = 0xee;

    static std::vector<std::uint8_t> Make(unsigned int width, unsigned int height, std::uint8_t value)
    {
        std::vector<std::uint8_t> samples(std::size_t{width + MARGIN} * height, GUARD);
        for (unsigned int row = 0; row < height; ++row)
        {
            std::fill_n(samples.begin() + row * (width + MARGIN), width, value);
        }
        return samples;
    }

    unsigned int m_width;
    unsigned int m_height;
    std::vector<std::uint8_t> m_luma;
    std::vector<std::uint8_t> m_blue;
    std::vector<std::uint8_t> m_red;
};

DEV_MOTION_CONFIG WholeArea(std::int32_t sensitivity)
{
    DEV_MOTION_CONFIG config = {};
    config.motionSwitch = 1;
    config.sensitivity = sensitivity;
    config.rows = 8;
    config.columns = 16;
    for (DEV_MOTION_ROW& row : config.area)
    {
        row.cells = 0xffff;
    }
    return config;
}

constexpr std::uint64_t STEP_US = 200000;

} // namespace

TEST(PrivacyMasks, PaintsExactlyTheRectangle)
{
    CTestPicture picture(16, 8, 100, 50, 60);
    PaintMasks(picture.Get(), {{1, 4, 2, 6, 4, 1}});
    for (unsigned int y = 0; y < 8; ++y)
    {
        for (unsigned int x = 0; x < 16; ++x)
        {
            const bool hidden = x >= 4 && x < 10 && y >= 2 && y < 6;
            EXPECT_EQ(hidden ? 235 : 100, picture.Luma(x, y)) << x << "," << y;
            EXPECT_EQ(hidden ? 128 : 50, picture.Blue(x / 2, y / 2)) << x << "," << y;
            EXPECT_EQ(hidden ? 128 : 60, picture.Red(x / 2, y / 2)) << x << "," << y;
        }
    }
}

TEST(PrivacyMasks, ColoursAreBlackWhiteAndGray)
{
    const std::uint8_t LUMA[] = {16, 235, 128};
    for (std::uint32_t color = 0; color < 3; ++color)
    {
        CTestPicture picture(4, 4);
        PaintMasks(picture.Get(), {{1, 0, 0, 4, 4, color}});
        EXPECT_EQ(LUMA[color], picture.Luma(3, 3));
    }
}

TEST(PrivacyMasks, WhatLiesOutsideIsCutOff)
{
    for (const DEV_PRIVACY_MASK mask :
         {DEV_PRIVACY_MASK{1, 14, 6, 0xffffffff, 0xffffffff, 0}, DEV_PRIVACY_MASK{1, 14, 6, 2, 2, 0}})
    {
        CTestPicture picture(16, 8);
        PaintMasks(picture.Get(), {mask, {1, 16, 8, 10, 10, 0}, {1, 4000000000U, 0, 10, 10, 0}});
        EXPECT_EQ(16, picture.Luma(15, 7));
        EXPECT_EQ(100, picture.Luma(13, 7));
        EXPECT_EQ(100, picture.Luma(15, 5));
        EXPECT_TRUE(picture.IsMarginUntouched());
    }
}

TEST(PrivacyMasks, AMaskThatIsOffHidesNothing)
{
    CTestPicture picture(8, 8);
    PaintMasks(picture.Get(), {{0, 0, 0, 8, 8, 0}, {1, 2, 2, 0, 4, 0}});
    EXPECT_EQ(100, picture.Luma(2, 2));
    EXPECT_EQ(128, picture.Blue(1, 1));
}

TEST(ViewScaler, ZoomOneChangesNothing)
{
    CTestPicture picture(8, 8);
    picture.Luma(3, 3) = 200;
    CViewScaler().Apply(picture.Get(), {0.5, 0.5, 1});
    EXPECT_EQ(200, picture.Luma(3, 3));
    EXPECT_EQ(100, picture.Luma(4, 4));
}

TEST(ViewScaler, ShowsThePartThatTheHeadLooksAt)
{
    CTestPicture picture(16, 16, 10);
    for (unsigned int y = 8; y < 16; ++y)
    {
        for (unsigned int x = 8; x < 16; ++x)
        {
            picture.Luma(x, y) = 200; // the lower right quarter
            picture.Blue(x / 2, y / 2) = 30;
        }
    }
    CViewScaler().Apply(picture.Get(), {0.75, 0.75, 2});
    EXPECT_EQ(200, picture.Luma(15, 15));
    EXPECT_EQ(200, picture.Luma(2, 2));
    EXPECT_EQ(30, picture.Blue(7, 7));
    EXPECT_TRUE(picture.IsMarginUntouched());
}

TEST(ViewScaler, StaysInsideAtEveryRimAndZoom)
{
    for (const PtzView view : {PtzView{0.0625, 0.0625, 8}, PtzView{0.9375, 0.9375, 8}, PtzView{0.5, 0.5, 1.001}})
    {
        CTestPicture picture(6, 4, 77);
        CViewScaler().Apply(picture.Get(), view);
        for (unsigned int x = 0; x < 6; ++x)
        {
            EXPECT_EQ(77, picture.Luma(x, 3));
        }
        EXPECT_TRUE(picture.IsMarginUntouched());
    }
}

TEST(ImageAdjust, ANeutralImageStaysAsItIs)
{
    CTestPicture picture(8, 8, 100, 90, 160);
    const DEV_IMAGE_PARAM image = DefaultSettings(CameraOptions()).image;
    CImageAdjust().Apply(picture.Get(), image, 12);
    EXPECT_EQ(100, picture.Luma(4, 4));
    EXPECT_EQ(90, picture.Blue(2, 2));
    EXPECT_EQ(160, picture.Red(2, 2));
}

TEST(ImageAdjust, NightHasNoColour)
{
    DEV_IMAGE_PARAM image = DefaultSettings(CameraOptions()).image;
    image.irCutMode = 2;
    CTestPicture picture(8, 8, 100, 90, 160);
    CImageAdjust adjust;
    adjust.Apply(picture.Get(), image, 12);
    EXPECT_TRUE(adjust.IsNight());
    EXPECT_EQ(128, picture.Blue(3, 3));
    EXPECT_EQ(128, picture.Red(3, 3));
    EXPECT_EQ(100, picture.Luma(4, 4));
}

TEST(ImageAdjust, TheTimerMakesNightFromSixToSix)
{
    DEV_IMAGE_PARAM image = {};
    image.irCutMode = 3;
    CImageAdjust adjust;
    CTestPicture picture(8, 8);
    for (const int hour : {0, 5, 18, 23})
    {
        adjust.Apply(picture.Get(), image, hour);
        EXPECT_TRUE(adjust.IsNight()) << hour;
    }
    for (const int hour : {6, 12, 17})
    {
        adjust.Apply(picture.Get(), image, hour);
        EXPECT_FALSE(adjust.IsNight()) << hour;
    }
}

// Between dark and bright the camera stays what it is, so that it does not flicker at dusk.
TEST(ImageAdjust, DarknessMakesNightAndBrightnessDay)
{
    const DEV_IMAGE_PARAM image = {};
    CImageAdjust adjust;
    const struct
    {
        std::uint8_t luma;
        bool night;
    } STEPS[] = {{50, false}, {39, true}, {50, true}, {61, false}, {41, false}};
    for (const auto& step : STEPS)
    {
        CTestPicture picture(16, 16, step.luma);
        adjust.Apply(picture.Get(), image, 12);
        EXPECT_EQ(step.night, adjust.IsNight()) << int{step.luma};
    }
}

TEST(ImageAdjust, WhiteBalanceMovesColoursTheRightWay)
{
    const struct
    {
        const char* name;
        std::uint32_t mode;
        std::uint32_t red;
        std::uint32_t blue;
        int blueStep; // sign of the change of a white place
        int redStep;
    } CASES[] = {
        {"manual, neutral", 1, 50, 50, 0, 0},   {"manual, more red", 1, 80, 50, 0, 1},
        {"manual, less red", 1, 20, 50, 0, -1}, {"manual, more blue", 1, 50, 80, 1, 0},
        {"outdoor", 2, 50, 50, -1, 1},          {"indoor", 3, 50, 50, 1, -1},
        {"sodium lamps", 5, 50, 50, 1, -1},
    };
    for (const auto& one : CASES)
    {
        DEV_IMAGE_PARAM image = {};
        image.irCutMode = 1;
        image.whiteBalanceMode = one.mode;
        image.red = one.red;
        image.blue = one.blue;
        CTestPicture picture(8, 8, 200);
        CImageAdjust().Apply(picture.Get(), image, 12);
        const auto sign = [](int value)
        {
            return value > 128 ? 1 : value < 128 ? -1 : 0;
        };
        EXPECT_EQ(one.blueStep, sign(picture.Blue(1, 1))) << one.name;
        EXPECT_EQ(one.redStep, sign(picture.Red(1, 1))) << one.name;
        EXPECT_EQ(200, picture.Luma(1, 1)) << one.name;
    }
}

TEST(ImageAdjust, TrackingTakesAColourCastAway)
{
    DEV_IMAGE_PARAM image = {};
    image.irCutMode = 1;
    image.whiteBalanceMode = 4;
    CImageAdjust adjust;
    for (int count = 0; count < 100; ++count)
    {
        CTestPicture picture(16, 16, 100, 100, 150);
        adjust.Apply(picture.Get(), image, 12);
        if (count == 99)
        {
            EXPECT_NEAR(128, picture.Blue(0, 0), 1);
            EXPECT_NEAR(128, picture.Red(0, 0), 1);
        }
    }
}

TEST(ImageAdjust, SharpnessRaisesTheDifferenceAtAnEdge)
{
    DEV_IMAGE_PARAM image = {};
    image.irCutMode = 1;
    image.sharpenSwitch = 1;
    image.sharpenValue = 100;
    CTestPicture picture(8, 8, 100);
    for (unsigned int y = 0; y < 8; ++y)
    {
        for (unsigned int x = 4; x < 8; ++x)
        {
            picture.Luma(x, y) = 140;
        }
    }
    CImageAdjust().Apply(picture.Get(), image, 12);
    EXPECT_EQ(90, picture.Luma(3, 4)); // 100 + 100 * (4 * 100 - 3 * 100 - 140) / 400
    EXPECT_EQ(150, picture.Luma(4, 4));
    EXPECT_EQ(100, picture.Luma(1, 4));
    EXPECT_EQ(140, picture.Luma(6, 4));
    EXPECT_TRUE(picture.IsMarginUntouched());
}

TEST(MotionDetector, TheFirstPictureIsNoMotion)
{
    CMotionDetector detector;
    CTestPicture picture(128, 64);
    EXPECT_FALSE(detector.Look(picture.Get(0), WholeArea(8)));
    EXPECT_FALSE(detector.Look(picture.Get(STEP_US), WholeArea(8)));
}

TEST(MotionDetector, SeesAChangeInOneCellAndForgetsIt)
{
    CMotionDetector detector;
    CTestPicture still(128, 64);
    CTestPicture changed(128, 64);
    for (unsigned int y = 16; y < 24; ++y)
    {
        for (unsigned int x = 32; x < 40; ++x)
        {
            changed.Luma(x, y) = 160;
        }
    }
    detector.Look(still.Get(0), WholeArea(6));
    EXPECT_TRUE(detector.Look(changed.Get(STEP_US), WholeArea(6)));
    EXPECT_TRUE(detector.Look(changed.Get(STEP_US + 1), WholeArea(6))); // too soon for a comparison
    EXPECT_FALSE(detector.Look(changed.Get(2 * STEP_US), WholeArea(6)));
}

// The leftmost cell of a row of 16 is bit 15.
TEST(MotionDetector, LooksInTheAreaOnly)
{
    DEV_MOTION_CONFIG config = WholeArea(8);
    for (DEV_MOTION_ROW& row : config.area)
    {
        row.cells = 0;
    }
    config.area[2].cells = 0x8000 >> 4; // row 2, column 4
    for (unsigned int column = 0; column < 16; ++column)
    {
        CMotionDetector detector;
        CTestPicture still(128, 64);
        CTestPicture changed(128, 64);
        for (unsigned int y = 16; y < 24; ++y)
        {
            for (unsigned int x = 0; x < 8; ++x)
            {
                changed.Luma(column * 8 + x, y) = 200;
            }
        }
        detector.Look(still.Get(0), config);
        EXPECT_EQ(column == 4, detector.Look(changed.Get(STEP_US), config)) << column;
    }
}

TEST(MotionDetector, AHigherSensitivitySeesSmallerChanges)
{
    const auto sees = [](std::int32_t sensitivity, std::uint8_t step)
    {
        CMotionDetector detector;
        CTestPicture still(128, 64);
        CTestPicture changed(128, 64, static_cast<std::uint8_t>(100 + step));
        detector.Look(still.Get(0), WholeArea(sensitivity));
        return detector.Look(changed.Get(STEP_US), WholeArea(sensitivity));
    };
    EXPECT_TRUE(sees(8, 3));
    EXPECT_FALSE(sees(8, 2));
    EXPECT_FALSE(sees(1, 40));
    EXPECT_TRUE(sees(1, 41));
    EXPECT_TRUE(sees(6, 8));
    EXPECT_FALSE(sees(5, 8));
}

TEST(MotionDetector, WhatChangedForAnotherReasonIsForgotten)
{
    CMotionDetector detector;
    CTestPicture dark(128, 64, 50);
    CTestPicture bright(128, 64, 200);
    detector.Look(dark.Get(0), WholeArea(6));
    detector.Forget();
    EXPECT_FALSE(detector.Look(bright.Get(STEP_US), WholeArea(6)));
}

TEST(MotionDetector, APictureOfAnotherSizeIsNotCompared)
{
    CMotionDetector detector;
    CTestPicture small(16, 16, 50);
    CTestPicture large(128, 64, 200);
    CTestPicture tiny(3, 3);
    detector.Look(small.Get(0), WholeArea(8));
    EXPECT_FALSE(detector.Look(large.Get(STEP_US), WholeArea(8)));
    EXPECT_FALSE(detector.Look(tiny.Get(2 * STEP_US), WholeArea(8)));
    EXPECT_FALSE(detector.Look(tiny.Get(3 * STEP_US), WholeArea(8)));
}

TEST(PictureWork, MasksHideWhateverTheHeadShows)
{
    CPtzHead head;
    CPictureWork work(head);
    work.SetMasks({{1, 0, 0, 8, 8, 1}});
    head.GoTo({0.25, 0.25, 4}, 8, SteadyClockUs());
    CTestPicture picture(16, 16);
    work.Prepare(picture.Get());
    EXPECT_EQ(235, picture.Luma(7, 7));
    EXPECT_EQ(100, picture.Luma(8, 8));
}

TEST(PictureWork, LooksForMotionWhenItIsSwitchedOnAndTheHeadStands)
{
    CPtzHead head;
    CPictureWork work(head);
    CTestPicture dark(128, 64, 50);
    CTestPicture bright(128, 64, 200);
    DEV_MOTION_CONFIG config = WholeArea(6);
    config.motionSwitch = 0;
    work.SetMotion(config);
    EXPECT_FALSE(work.LookForMotion(dark.Get(0)));
    EXPECT_FALSE(work.LookForMotion(bright.Get(STEP_US)));
    work.SetMotion(WholeArea(6));
    EXPECT_FALSE(work.LookForMotion(dark.Get(2 * STEP_US)));
    EXPECT_TRUE(work.LookForMotion(bright.Get(3 * STEP_US)));
    head.Control(PtzCommand::ZoomIn, 1, SteadyClockUs());
    EXPECT_FALSE(work.LookForMotion(dark.Get(4 * STEP_US)));
}

// A brighter picture is no movement in front of the camera.
TEST(PictureWork, AChangeOfTheSettingsIsNoMotion)
{
    CPtzHead head;
    CPictureWork work(head);
    work.SetMotion(WholeArea(8));
    CTestPicture dark(128, 64, 50);
    CTestPicture bright(128, 64, 200);
    EXPECT_FALSE(work.LookForMotion(dark.Get(0)));
    work.SetImage({});
    EXPECT_FALSE(work.LookForMotion(bright.Get(STEP_US)));
    work.SetMasks({});
    EXPECT_FALSE(work.LookForMotion(dark.Get(2 * STEP_US)));
}
