// AppPipeline.h: a small pipeline of its own that takes raw pictures from the camera and gives something back for each.
//
// Built and destroyed by its owner; Put may be called on any one thread.
#pragma once

#include "GstHandles.h"

#include <functional>
#include <string>

class CAppPipeline
{
public:
    using OnSample = std::function<void(GstSample* sample)>;

    CAppPipeline() = default;

    /// Stops; nothing is given back any more once it returns.
    ~CAppPipeline();

    /// @param text      has an appsrc "in" and an appsink "out"
    /// @param picture   caps of the pictures that will come, borrowed for the call
    /// @param onSample  called on the pipeline's thread; the sample is borrowed for the call
    /// @param problem   receives why it does not start
    bool Start(const std::string& text, GstCaps* picture, OnSample onSample, std::string& problem);

    /// @param picture  borrowed
    void Put(GstBuffer* picture);

    GstElementPtr Child(const char* name) const;

private:
    static GstFlowReturn OnNewSample(GstAppSink* source, gpointer self);

    OnSample m_onSample;
    GstElementPtr m_pipeline;
    GstElementPtr m_input;
};
