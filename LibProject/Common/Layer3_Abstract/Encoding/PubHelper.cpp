#include "PubHelper.h"

#include "PFHelper.h"

#include <cstdio>
#include <cstdlib>

void PUB_PrintError(const char* file, int line)
{
    char text[256];
    std::snprintf(text, sizeof(text), "%s %d ", file, line);
    std::perror(text);
}

unsigned int PUB_Rand()
{
    srandom(CPFHelper::GetTickCount());
    return static_cast<unsigned int>(random());
}

unsigned int PUB_GetBitCount(unsigned int value)
{
    unsigned int count = 0;
    for (; value != 0; value &= value - 1)
    {
        ++count;
    }
    return count;
}
