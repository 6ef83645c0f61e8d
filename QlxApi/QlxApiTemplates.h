// QlxApiTemplates.h: the documents of Templates/, as the build embeds them byte for byte. Constants; any thread.
#pragma once

#include <string_view>

namespace QLX_TEMPLATES
{

extern const std::string_view CorrectResponse;
extern const std::string_view ErrorResponse;
extern const std::string_view GetDateAndTime;
extern const std::string_view GetDeviceInfo;
extern const std::string_view GetVerifyXml;

} // namespace QLX_TEMPLATES
