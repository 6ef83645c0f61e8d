// Limits.h: the bounds that this library chooses for what peers, cameras and hosts may ask of it.
#pragma once

#include <cstddef>

/// Bytes of an HTTP message that may come without an end of the header, and the largest body.
constexpr std::size_t LIMIT_HTTP_MESSAGE_BYTES = 0xA00000; // 10 MiB
/// Bytes of RTSP answers that may wait for a peer that does not read.
constexpr std::size_t LIMIT_RTSP_QUEUED_ANSWER_BYTES = std::size_t{1024} * 1024;
/// Bytes of a snapshot that a host or a camera delivers.
constexpr std::size_t LIMIT_SNAPSHOT_BYTES = std::size_t{64} * 1024 * 1024;
/// Video streams of a channel that are shown.
constexpr int LIMIT_CHANNEL_STREAMS = 64;
/// Privacy masks in one request.
constexpr std::size_t LIMIT_PRIVACY_MASKS = 256;
/// Cells of a camera's motion grid in each direction.
constexpr int LIMIT_MOTION_GRID_SIDE = 1024;
/// Connections whose peers are gone and that still wait to be collected.
constexpr std::size_t LIMIT_ABANDONED_CONNECTIONS = 32;
/// Elements within elements in an XML document.
constexpr std::size_t LIMIT_XML_NESTING = 500;
/// Elements, attributes and other markup of an XML document.
constexpr std::size_t LIMIT_XML_NODES = 65536;
/// Attributes of one element in an XML document.
constexpr std::size_t LIMIT_XML_ATTRIBUTES = 256;
/// Character references without an end in an XML document.
constexpr std::size_t LIMIT_XML_OPEN_REFERENCES = 64;

/// Events of one camera that wait for the next delivery; what comes on top is dropped.
constexpr std::size_t LIMIT_WAITING_EVENTS = 4096;
