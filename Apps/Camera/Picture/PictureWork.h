// PictureWork.h: what is done to each picture before it is encoded, and what is looked for in it.
//
// Pictures come on one media thread; settings may be changed on any thread and hold from the next picture on.
#pragma once

#include "ImageAdjust.h"
#include "MotionDetector.h"
#include "PtzHead.h"
#include "ViewScaler.h"

#include <mutex>
#include <vector>

class CPictureWork
{
public:
    /// @param head  borrowed for the life of the work
    explicit CPictureWork(CPtzHead& head) : m_head(head) {}

    void SetImage(const NETNS::DEV_IMAGE_PARAM& image);
    void SetMasks(const std::vector<NETNS::DEV_PRIVACY_MASK>& masks);
    void SetMotion(const NETNS::DEV_MOTION_CONFIG& motion);

    /// The head's view, the image settings, then the masks over all of it.
    void Prepare(const Picture& picture);

    /// @return whether something moves in the area; not while the head does
    bool LookForMotion(const Picture& picture);

private:
    CPtzHead& m_head;

    std::mutex m_lock; // held for the work on a picture, some milliseconds
    NETNS::DEV_IMAGE_PARAM m_image = {};
    std::vector<NETNS::DEV_PRIVACY_MASK> m_masks;
    NETNS::DEV_MOTION_CONFIG m_motion = {};
    int m_picturesToForget = 0; // that may look otherwise than the one in front, without a movement

    CViewScaler m_scaler; // the media thread
    CImageAdjust m_adjust;
    CMotionDetector m_detector;
};
