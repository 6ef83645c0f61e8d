#include "CameraWorld.h"

#include "RecordTime.h"

using namespace NETNS;

namespace
{

constexpr int ZOOM_IN = 10;
constexpr int STOP = 14;

class CameraDevicePtz : public CCameraWorld
{
protected:
    std::vector<std::pair<int, std::string>> Presets()
    {
        DEV_PTZ_PRESET list[256] = {};
        int count = 0;
        EXPECT_EQ(DEV_RET_OK, m_device->PtzGetPresets(m_admin, 1, list, 256, count));
        std::vector<std::pair<int, std::string>> presets;
        for (int index = 0; index < count; ++index)
        {
            presets.emplace_back(list[index].id, list[index].name);
        }
        return presets;
    }

    void AddPresets(std::initializer_list<const char*> names)
    {
        for (const char* name : names)
        {
            ASSERT_EQ(DEV_RET_OK, m_device->PtzAddPreset(m_admin, 1, name));
        }
    }
};

using PresetList = std::vector<std::pair<int, std::string>>;

} // namespace

TEST_F(CameraDevicePtz, TheOptionDecidesOnTheKindsOfHead)
{
    const struct
    {
        PtzSupport option;
        bool integrated;
        bool rs485;
    } CASES[] = {{PtzSupport::None, false, false},
                 {PtzSupport::Integrated, true, false},
                 {PtzSupport::Rs485, false, true},
                 {PtzSupport::Both, true, true}};
    for (const auto& one : CASES)
    {
        m_options.ptz = one.option;
        Start();
        bool integrated = !one.integrated;
        bool rs485 = !one.rs485;
        EXPECT_EQ(DEV_RET_OK, m_device->GetIntegratedPtz(integrated));
        EXPECT_EQ(DEV_RET_OK, m_device->GetSupportRS485Ptz(rs485));
        EXPECT_EQ(one.integrated, integrated);
        EXPECT_EQ(one.rs485, rs485);
    }
}

TEST_F(CameraDevicePtz, ACommandMovesTheHead)
{
    ASSERT_EQ(DEV_RET_OK, m_device->PtzControl(m_admin, 1, ZOOM_IN, 8));
    EXPECT_TRUE(m_head.IsMoving(SteadyClockUs()));
    ASSERT_EQ(DEV_RET_OK, m_device->PtzControl(m_admin, 1, STOP, 0));
    EXPECT_FALSE(m_head.IsMoving(SteadyClockUs()));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzControl(m_admin, 1, 15, 1));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzControl(m_admin, 1, -1, 1));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->PtzControl(m_stranger, 1, ZOOM_IN, 8));
    EXPECT_FALSE(m_head.IsMoving(SteadyClockUs()));
}

TEST_F(CameraDevicePtz, FocusAndIrisAreKept)
{
    for (const int command : {9, 9, 12}) // far, far, iris open
    {
        ASSERT_EQ(DEV_RET_OK, m_device->PtzControl(m_admin, 1, command, 3));
    }
    Start();
    EXPECT_EQ(56U, m_device->Settings().focus);
    EXPECT_EQ(53U, m_device->Settings().iris);
    for (int count = 0; count < 20; ++count)
    {
        ASSERT_EQ(DEV_RET_OK, m_device->PtzControl(m_admin, 1, 8, 8)); // near
    }
    EXPECT_EQ(0U, m_device->Settings().focus);
}

TEST_F(CameraDevicePtz, ANewPresetGetsTheSmallestIdThatIsFree)
{
    AddPresets({"one", "two", "three"});
    EXPECT_EQ((PresetList{{1, "one"}, {2, "two"}, {3, "three"}}), Presets());
    ASSERT_EQ(DEV_RET_OK, m_device->PtzDeletePreset(m_admin, 1, 2));
    AddPresets({"again"});
    EXPECT_EQ((PresetList{{1, "one"}, {2, "again"}, {3, "three"}}), Presets());
    Start();
    EXPECT_EQ((PresetList{{1, "one"}, {2, "again"}, {3, "three"}}), Presets());
}

TEST_F(CameraDevicePtz, PresetNamesHaveUpTo11Bytes)
{
    AddPresets({"elevenbytes"});
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzAddPreset(m_admin, 1, "twelve bytes"));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzAddPreset(m_admin, 1, ""));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzModifyPresetName(m_admin, 1, 1, "twelve bytes"));
    ASSERT_EQ(DEV_RET_OK, m_device->PtzModifyPresetName(m_admin, 1, 1, "gate"));
    EXPECT_EQ((PresetList{{1, "gate"}}), Presets());
}

TEST_F(CameraDevicePtz, HasRoomFor64Presets)
{
    for (int count = 0; count < 64; ++count)
    {
        ASSERT_EQ(DEV_RET_OK, m_device->PtzAddPreset(m_admin, 1, "x"));
    }
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzAddPreset(m_admin, 1, "x"));
}

TEST_F(CameraDevicePtz, PresetsThatAreNotThereAreRefused)
{
    AddPresets({"one"});
    for (const int id : {0, 2, -1, 257})
    {
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzGotoPreset(m_admin, 1, id)) << id;
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzDeletePreset(m_admin, 1, id)) << id;
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzModifyPresetPosition(m_admin, 1, id)) << id;
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzModifyPresetName(m_admin, 1, id, "x")) << id;
    }
    EXPECT_EQ(1U, Presets().size());
}

TEST_F(CameraDevicePtz, APresetRemembersTheViewOfItsMoment)
{
    m_head.GoTo({0.25, 0.25, 4}, 8, SteadyClockUs());
    m_head.At(SteadyClockUs() + 10000000);
    const PtzView view = m_head.At(SteadyClockUs());
    AddPresets({"corner"});
    const DeviceSettings settings = m_device->Settings();
    EXPECT_DOUBLE_EQ(4, view.zoom);
    EXPECT_DOUBLE_EQ(4, settings.presets[0].view.zoom);
    EXPECT_DOUBLE_EQ(0.25, settings.presets[0].view.x);
}

TEST_F(CameraDevicePtz, CruisesKeepTheirPointsOverARestart)
{
    AddPresets({"one", "two"});
    const DEV_PTZ_CRUISE_POINT points[] = {{1, "", 8, 1}, {2, "", 4, 120}};
    ASSERT_EQ(DEV_RET_OK, m_device->PtzAddCruise(m_admin, 1, "round", points, 2));
    Start();
    DEV_PTZ_CRUISE cruises[12] = {};
    int count = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->PtzGetCruises(m_admin, 1, cruises, 12, count));
    ASSERT_EQ(1, count);
    EXPECT_EQ(1, cruises[0].id);
    EXPECT_STREQ("round", cruises[0].name);
    DEV_PTZ_CRUISE_POINT read[64] = {};
    ASSERT_EQ(DEV_RET_OK, m_device->PtzGetCruisePoints(m_admin, 1, 1, read, 64, count));
    ASSERT_EQ(2, count);
    EXPECT_EQ(2, read[1].presetId);
    EXPECT_STREQ("two", read[1].name);
    EXPECT_EQ(4, read[1].speed);
    EXPECT_EQ(120, read[1].holdTime);
}

TEST_F(CameraDevicePtz, CruisePointsMustBePossible)
{
    AddPresets({"one"});
    for (const DEV_PTZ_CRUISE_POINT point : {DEV_PTZ_CRUISE_POINT{2, "", 1, 1}, DEV_PTZ_CRUISE_POINT{1, "", 0, 1},
                                             DEV_PTZ_CRUISE_POINT{1, "", 9, 1}, DEV_PTZ_CRUISE_POINT{1, "", 1, 121}})
    {
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzAddCruise(m_admin, 1, "x", &point, 1));
    }
    const std::vector<DEV_PTZ_CRUISE_POINT> many(33, {1, "", 1, 1});
    EXPECT_EQ(DEV_RET_OK, m_device->PtzAddCruise(m_admin, 1, "x", many.data(), 32));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzAddCruise(m_admin, 1, "x", many.data(), 33));
}

TEST_F(CameraDevicePtz, ModifiesAndDeletesCruises)
{
    AddPresets({"one"});
    const DEV_PTZ_CRUISE_POINT point = {1, "", 8, 1};
    ASSERT_EQ(DEV_RET_OK, m_device->PtzAddCruise(m_admin, 1, "old", &point, 1));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzModifyCruise(m_admin, 1, 2, "new", &point, 1));
    ASSERT_EQ(DEV_RET_OK, m_device->PtzModifyCruise(m_admin, 1, 1, "new", &point, 0));
    EXPECT_EQ("new", m_device->Settings().cruises[0].name);
    EXPECT_TRUE(m_device->Settings().cruises[0].points.empty());
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzRunCruise(m_admin, 1, 1)); // without a stop
    EXPECT_EQ(DEV_RET_OK, m_device->PtzDeleteCruise(m_admin, 1, 1));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->PtzDeleteCruise(m_admin, 1, 1));
}

TEST_F(CameraDevicePtz, ACruiseRunsUntilItIsStoppedOrTheHeadIsMovedByHand)
{
    AddPresets({"one"});
    const DEV_PTZ_CRUISE_POINT point = {1, "", 8, 120};
    ASSERT_EQ(DEV_RET_OK, m_device->PtzAddCruise(m_admin, 1, "round", &point, 1));
    const auto isRunning = [this]
    {
        const std::string request = "POST /c HTTP/1.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\n\r\nORBIT-700 status";
        char* body = nullptr;
        int length = 0;
        int status = 0;
        m_device->ProcHttpData(request.c_str(), static_cast<int>(request.size()), body, length, status);
        const std::string text(body, static_cast<std::size_t>(length));
        m_device->FreeBuffer(body);
        return text.find("cruise=\"true\"") != std::string::npos;
    };
    ASSERT_EQ(DEV_RET_OK, m_device->PtzRunCruise(m_admin, 1, 1));
    EXPECT_TRUE(isRunning());
    ASSERT_EQ(DEV_RET_OK, m_device->PtzStopCruise(m_admin, 1));
    EXPECT_FALSE(isRunning());
    ASSERT_EQ(DEV_RET_OK, m_device->PtzRunCruise(m_admin, 1, 1));
    ASSERT_EQ(DEV_RET_OK, m_device->PtzControl(m_admin, 1, STOP, 1));
    EXPECT_FALSE(isRunning());
}

TEST_F(CameraDevicePtz, KeepsTheProtocolOfAnExternalHead)
{
    const DEV_PTZ_PROTOCOL protocol = {115200, 8, 255};
    ASSERT_EQ(DEV_RET_OK, m_device->SetPtzProtocol(m_admin, 1, &protocol));
    Start();
    DEV_PTZ_PROTOCOL kept = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetPtzProtocol(m_admin, 1, &kept));
    EXPECT_EQ(115200U, kept.baudRate);
    EXPECT_EQ(8U, kept.protocol);
    EXPECT_EQ(255U, kept.address);
    for (const DEV_PTZ_PROTOCOL bad :
         {DEV_PTZ_PROTOCOL{9601, 0, 1}, DEV_PTZ_PROTOCOL{9600, 9, 1}, DEV_PTZ_PROTOCOL{9600, 0, 256}})
    {
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetPtzProtocol(m_admin, 1, &bad));
    }
}
