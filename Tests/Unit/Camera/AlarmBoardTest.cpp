#include "AlarmBoard.h"

#include "AlarmReporter.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <string>
#include <vector>

namespace
{

/// An edge as a short text: "motion on", "sensor 1 off".
std::string Text(const AlarmEdge& edge)
{
    const std::string end = edge.active ? " on" : " off";
    switch (edge.kind)
    {
    case AlarmKind::Motion:
        return "motion" + end;
    case AlarmKind::Sensor:
        return "sensor " + std::to_string(edge.id) + end;
    case AlarmKind::VideoLoss:
        break;
    }
    return "loss" + end;
}

class AlarmBoard : public ::testing::Test
{
protected:
    AlarmBoard()
    {
        m_settings.motion.motionSwitch = 1;
        m_settings.motion.alarmHoldTime = 5;
        m_settings.sensors[1].voltage = 1; // normally closed
        m_settings.alarmOuts[0].alarmHoldTime = 3;
        m_board.Configure(m_settings);
    }

    std::vector<std::string> TakeEdges()
    {
        std::vector<std::string> edges;
        edges.swap(m_edges);
        return edges;
    }

    DeviceSettings m_settings = DefaultSettings(CameraOptions());
    std::vector<std::string> m_edges;
    CAlarmBoard m_board{[this](const AlarmEdge& edge)
                        {
                            m_edges.push_back(Text(edge));
                        }};
};

using Edges = std::vector<std::string>;

} // namespace

TEST_F(AlarmBoard, MotionLastsForTheHoldTimeBehindTheLastMovement)
{
    m_settings.sensors[1].sensorSwitch = 0;
    m_board.Configure(m_settings);
    m_board.SetMoving(true, 1000);
    m_board.SetMoving(true, 2000);
    EXPECT_EQ(Edges{"motion on"}, TakeEdges());
    m_board.SetMoving(false, 3000);
    m_board.Tick(6999);
    EXPECT_EQ(Edges{}, TakeEdges());
    m_board.Tick(7000);
    EXPECT_EQ(Edges{"motion off"}, TakeEdges());
}

TEST_F(AlarmBoard, MotionThatIsSwitchedOffEnds)
{
    m_settings.sensors[1].sensorSwitch = 0;
    m_board.Configure(m_settings);
    m_board.SetMoving(true, 1000);
    m_settings.motion.motionSwitch = 0;
    m_board.Configure(m_settings);
    m_board.Tick(1001);
    EXPECT_EQ((Edges{"motion on", "motion off"}), TakeEdges());
}

TEST_F(AlarmBoard, TheVoltageSaysWhichContactIsTheAlarm)
{
    m_board.Tick(1000);
    EXPECT_EQ(Edges{"sensor 1 on"}, TakeEdges()); // normally closed, and open
    EXPECT_TRUE(m_board.SetContact(1, true, 2000));
    m_board.Tick(7000);
    EXPECT_EQ(Edges{"sensor 1 off"}, TakeEdges());
    EXPECT_TRUE(m_board.SetContact(0, true, 8000)); // normally open
    EXPECT_EQ(Edges{"sensor 0 on"}, TakeEdges());
    EXPECT_FALSE(m_board.SetContact(2, true, 9000));
}

TEST_F(AlarmBoard, VideoLossIsReportedOnEachChangeOnly)
{
    m_board.SetVideoLoss(false);
    m_board.SetVideoLoss(true);
    m_board.SetVideoLoss(true);
    m_board.SetVideoLoss(false);
    EXPECT_EQ((Edges{"loss on", "loss off"}), TakeEdges());
}

TEST_F(AlarmBoard, AnAlarmTriggersItsOutputsAndTheyOutlastIt)
{
    m_settings.motion.alarmOuts[0] = 0;
    m_settings.motion.alarmOutCount = 1;
    m_settings.motion.alarmHoldTime = 0;
    m_board.Configure(m_settings);
    m_board.SetMoving(true, 1000);
    EXPECT_TRUE(m_board.Read().outputs[0]);
    EXPECT_FALSE(m_board.Read().outputs[1]);
    m_board.SetMoving(false, 2000);
    EXPECT_FALSE(m_board.Read().motion);
    m_board.Tick(3999);
    EXPECT_TRUE(m_board.Read().outputs[0]);
    m_board.Tick(4000);
    EXPECT_FALSE(m_board.Read().outputs[0]);
}

TEST_F(AlarmBoard, AnOutputThatIsSwitchedOnByHandStaysOn)
{
    EXPECT_TRUE(m_board.SwitchOutput(1, true));
    m_board.Tick(1000000);
    EXPECT_TRUE(m_board.Read().outputs[1]);
    EXPECT_TRUE(m_board.SwitchOutput(1, false));
    EXPECT_FALSE(m_board.Read().outputs[1]);
    EXPECT_FALSE(m_board.SwitchOutput(2, true));
}

TEST(AlarmReporter, ReportsEdgesInTheirOrderOnItsOwnThread)
{
    std::mutex lock;
    std::condition_variable wake;
    std::vector<std::string> reported;
    {
        CAlarmReporter reporter(
            [&](const AlarmEdge& edge)
            {
                const std::lock_guard<std::mutex> guard(lock);
                reported.push_back(Text(edge));
                wake.notify_all();
            });
        reporter.Put({AlarmKind::Motion, 0, true});
        reporter.Put({AlarmKind::Sensor, 1, true});
        reporter.Put({AlarmKind::Motion, 0, false});
        std::unique_lock<std::mutex> guard(lock);
        ASSERT_TRUE(wake.wait_for(guard, std::chrono::seconds(30), [&] { return reported.size() == 3; }));
    }
    EXPECT_EQ((Edges{"motion on", "sensor 1 on", "motion off"}), reported);
}

TEST(AlarmReporter, KeepsTheLastEdgeOfEachAlarmWhenReportsAreSlow)
{
    std::mutex lock;
    std::condition_variable wake;
    bool isHeld = true;
    std::vector<std::string> reported;
    {
        CAlarmReporter reporter(
            [&](const AlarmEdge& edge)
            {
                std::unique_lock<std::mutex> guard(lock);
                reported.push_back(Text(edge));
                wake.notify_all();
                wake.wait(guard, [&] { return !isHeld; });
            });
        const auto waitFor = [&](std::size_t count)
        {
            std::unique_lock<std::mutex> guard(lock);
            return wake.wait_for(guard, std::chrono::seconds(30), [&] { return reported.size() == count; });
        };
        reporter.Put({AlarmKind::VideoLoss, 0, true});
        ASSERT_TRUE(waitFor(1)); // the server holds this one
        reporter.Put({AlarmKind::Sensor, 1, true});
        for (std::size_t i = 0; i < CAlarmReporter::MAX_EDGES; ++i)
        {
            reporter.Put({AlarmKind::Motion, 0, true});
            reporter.Put({AlarmKind::Motion, 0, false});
        }
        {
            const std::lock_guard<std::mutex> guard(lock);
            isHeld = false;
        }
        wake.notify_all();
        ASSERT_TRUE(waitFor(1 + CAlarmReporter::MAX_EDGES));
    }
    EXPECT_EQ("sensor 1 on", reported[1]);
    EXPECT_EQ("motion off", reported.back());
}
