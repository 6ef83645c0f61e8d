// NvrAnswer.h: answer documents of the library, for a person to read.
#pragma once

#include <string>
#include <vector>

/// The document with one element a line. @return the text as it is when it is no document
std::string IndentAnswer(const std::string& answer);

/// A line for each `status` that reads "fail": key, code and the camera's own words.
std::vector<std::string> FaultsOf(const std::string& answer);

/// "serviceUrl" and "profiles" as tables.
std::string TabulateServices(const std::string& answer);
std::string TabulateProfiles(const std::string& answer);
/// "presets" as a table.
std::string TabulatePresets(const std::string& answer);

/// An HTTP request with its login data masked.
std::string MaskRequest(const std::string& request);

/// Whether bytes are a picture in one of the formats that cameras send.
bool IsPicture(const std::string& bytes);
