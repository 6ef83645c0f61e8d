// The login: a probe with fallbacks that ends with usable service paths for devices that answer GetServices, or only
// GetCapabilities, or only the single categories of it, or nothing at all.
#include "HttpClient.h"

namespace
{

struct CategoryRow
{
    int (CHttpClient::*get)(std::string& url);
    const char* service;
};

// In the order in which a device is asked.
// clang-format off
const CategoryRow CATEGORIES[] = {
    {&CHttpClient::GetMediaService,     SERVICE_MEDIA    },
    {&CHttpClient::GetPTZService,       SERVICE_PTZ      },
    {&CHttpClient::GetImageService,     SERVICE_IMAGING  },
    {&CHttpClient::GetEventsService,    SERVICE_EVENTS   },
    {&CHttpClient::GetDeviceService,    SERVICE_DEVICE   },
    {&CHttpClient::GetAnalyticsService, SERVICE_ANALYTICS},
    {&CHttpClient::GetSearchService,    SERVICE_SEARCH   },
    {&CHttpClient::GetDeviceIOService,  SERVICE_DEVICEIO },
    {&CHttpClient::GetReceiverService,  SERVICE_RECEIVER },
    {&CHttpClient::GetRecordingService, SERVICE_RECORDING},
    {&CHttpClient::GetDisplayService,   SERVICE_DISPLAY  },
    {&CHttpClient::GetReplayService,    SERVICE_REPLAY   },
};
// clang-format on

using ServiceTable = std::map<std::string, std::string>;

void Ask(CHttpClient& client, int (CHttpClient::*get)(std::string& url), const char* service, ServiceTable& services)
{
    std::string url;
    if ((client.*get)(url) == ONVIF_OK)
    {
        services.emplace(service, url);
    }
}

/// For a device without GetServices.
void FindByCapabilities(CHttpClient& client, ServiceTable& services)
{
    if (client.GetAllCapabilitieUrls(services) != ONVIF_OK || services.empty())
    {
        for (const CategoryRow& row : CATEGORIES)
        {
            Ask(client, row.get, row.service, services);
        }
    }
    if (services.empty())
    {
        services.emplace(SERVICE_DEVICE, DEFAULT_DEVICE_SERVICE);
        services.emplace(SERVICE_MEDIA, DEFAULT_MEDIA_SERVICE);
    }
}

/// What a list of services may lack.
void AskForMissing(CHttpClient& client, ServiceTable& services)
{
    ServiceTable scratch;
    client.GetAllCapabilitieUrls(scratch); // for the event flags, which a list of services does not bring
    if (services.count(SERVICE_MEDIA) == 0)
    {
        Ask(client, &CHttpClient::GetMediaService, SERVICE_MEDIA, services);
    }
    if (services.count(SERVICE_IMAGING) == 0)
    {
        Ask(client, &CHttpClient::GetImageService, SERVICE_IMAGING, services);
    }
}

} // namespace

int CHttpClient::Login()
{
    ServiceTable services;
    SetServiceTable(services);
    const int listed = GetServersUrl(services);
    if (listed == ONVIF_UNAUTHORIZED || listed == ONVIF_NO_ENVELOPE)
    {
        return listed;
    }
    if (listed == ONVIF_OK && !services.empty())
    {
        AskForMissing(*this, services);
    }
    else
    {
        FindByCapabilities(*this, services);
    }
    SetServiceTable(services);

    std::string answer;
    std::vector<ONVIF_PROFILE_TOKEN> profiles;
    const int result = GetProfiles(answer, profiles);
    SetProfileList(profiles);
    if (result == ONVIF_OK && !profiles.empty())
    {
        ReadRanges(services, profiles.front());
    }
    return result;
}

// Without them the commands take a range of -1 to 1.
void CHttpClient::ReadRanges(const ServiceTable& services, const ONVIF_PROFILE_TOKEN& profile)
{
    if (services.count(SERVICE_PTZ) != 0 && profile.ptzToken[0] != '\0')
    {
        GetPTZCfgOptions();
    }
    if (services.count(SERVICE_IMAGING) != 0 && profile.videoSourceToken[0] != '\0')
    {
        GetImgMoveOptions();
    }
}
