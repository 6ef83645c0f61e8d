// PullExchange.h: the steps of a pull that both event engines take, each at its own pace. Any thread.
#pragma once

#include "OnvifEventTypes.h"

#include <functional>
#include <string>

/// A pull request and where it goes.
struct PULL_REQUEST
{
    std::string text; ///< the whole HTTP request
    std::string ip;
    unsigned short port = 0;
};

/// Renders a pull request with its security header.
/// @return false when the login is gone or has no pull point to ask
bool MakePullRequest(unsigned int token, const std::string& document, PULL_REQUEST& request);

/// Connects, in three attempts; a refused one ends at once. @param polls  waits of 50 ms that an attempt has
/// @param mayGoOn  asked before each attempt
/// @param id       receives the id of the last connection, also of one that failed and is ended
/// @return whether a connection stands
bool ConnectForPull(const PULL_REQUEST& request, int polls, const std::function<bool()>& mayGoOn, int& id);

/// Sends the request. @return false when the connection broke
bool SendPull(int id, const PULL_REQUEST& request);

/// Reads the events of an answer in the client's own vocabulary. An item without a topic or a value has those of the
/// item before it.
void ReadPullAnswer(const std::string& answer, const ONVIF_TOPIC* topics,
                    const std::function<void(const OnvifEvent&)>& found);
