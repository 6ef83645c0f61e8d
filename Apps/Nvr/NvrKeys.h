// NvrKeys.h: the keys that the library knows. It ends the process on any other, so each is looked up here first.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// What a key of a "Get" document needs.
enum class NvrNeed
{
    Nothing,
    Index,   ///< `index`, the number of a profile
    Indexes, ///< the same, several if wanted
    Profile, ///< that the camera has a profile
};

struct NvrKey
{
    const char* name;
    NvrNeed need;
    const char* what; ///< a few words for the help
};

const std::vector<NvrKey>& NvrGetKeys();
const std::vector<NvrKey>& NvrSetKeys();

/// @return null for a key that is not in the list
const NvrKey* FindNvrKey(const std::vector<NvrKey>& keys, const std::string& name);

/// The list as lines of a help text.
std::string DescribeNvrKeys(const std::vector<NvrKey>& keys);

/// What is wrong with the keys of a "Get" document, for a person to read; empty when nothing is.
std::string GetKeysProblem(const std::vector<std::string>& keys);

/// A "Get" document.
/// @param indexes  for the keys that take one; the first alone for those that take no more
/// @param fields   further children of each key, by name
std::string MakeGetDocument(const std::vector<std::string>& keys, const std::vector<int>& indexes,
                            const std::vector<std::pair<std::string, std::string>>& fields);

/// What is wrong with a "Set" document, for a person to read; empty when the library can take it.
std::string SetDocumentProblem(const std::string& document);

/// The keys of a "Set" document.
std::vector<std::string> SetDocumentKeys(const std::string& document);

/// Whether one of the names is a key that needs a profile.
bool AnyNeedsProfile(const std::vector<NvrKey>& keys, const std::vector<std::string>& names);
