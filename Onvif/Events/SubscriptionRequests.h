// SubscriptionRequests.h: the four requests that open, keep and close a subscription at a camera (ONVIF Core, 9; Web
// Services Base Notification 1.3). Each is a document for the client's own dispatch, and lasts as long as its exchange.
// Any thread.
#pragma once

#include <string>

/// Room for an address, the zero byte included. A longer one cannot be used: it would be cut to another's.
constexpr int ONVIF_ADDRESS_BYTES = 128;

/// Opens a pull point. @param address  room for ONVIF_ADDRESS_BYTES; receives its address, untouched on failure
/// @return whether an address came
bool PullPoint(unsigned int token, unsigned int timeoutSeconds, char* address);

/// Has a camera push its events. @param clientAddr  where to. @param address  receives the subscription manager's
/// address, as in PullPoint
bool Subscribe(unsigned int token, unsigned int timeoutSeconds, const char* clientAddr, char* address);

/// Sends the key of Subscribe without a client's address: in practice a subscription runs out by its term.
/// @return whether the exchange went through
bool Unsubscribe(unsigned int token, const char* address);

/// Prolongs a subscription or a pull point. @return whether the exchange went through
bool Renew(unsigned int token, const char* address, unsigned int timeoutSeconds);

/// Makes the document that asks a pull point for its messages.
std::string PullMessagesDocument(const char* pullAddress, unsigned int timeoutSeconds, unsigned int messageLimit);
