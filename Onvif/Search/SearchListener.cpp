#include "SearchListener.h"

void CSearchListener::Initial(void* /*search*/, unsigned int /*option*/) {}

void CSearchListener::Destroy() {}

void CSearchListener::ProcListenThread(void* listener)
{
    static_cast<CSearchListener*>(listener)->ListenDevice();
}

void CSearchListener::ListenDevice() {}
