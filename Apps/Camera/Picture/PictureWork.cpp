#include "PictureWork.h"

#include "PrivacyMasks.h"
#include "RecordTime.h"

#include <algorithm>

namespace
{

// A setting may change while a picture is between the elements that it concerns.
constexpr int UNSETTLED_PICTURES = 3;

} // namespace

void CPictureWork::SetImage(const NETNS::DEV_IMAGE_PARAM& image)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_image = image;
    m_picturesToForget = UNSETTLED_PICTURES;
}

void CPictureWork::SetMasks(const std::vector<NETNS::DEV_PRIVACY_MASK>& masks)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_masks = masks;
    m_picturesToForget = UNSETTLED_PICTURES;
}

void CPictureWork::SetMotion(const NETNS::DEV_MOTION_CONFIG& motion)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_motion = motion;
}

void CPictureWork::Prepare(const Picture& picture)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_scaler.Apply(picture, m_head.At(SteadyClockUs()));
    m_adjust.Apply(picture, m_image, ToLocalTime(WallClockUs()).time.hour);
    PaintMasks(picture, m_masks);
}

bool CPictureWork::LookForMotion(const Picture& picture)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_picturesToForget > 0 || m_head.IsMoving(SteadyClockUs()))
    {
        m_picturesToForget = std::max(m_picturesToForget - 1, 0);
        m_detector.Forget();
    }
    return m_motion.motionSwitch != 0 && m_detector.Look(picture, m_motion);
}
