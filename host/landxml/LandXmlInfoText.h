// What `quonhost landxml info` prints for people.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"

#include <string>
#include <vector>

namespace quonhost
{

/// Returns one fact a line.
std::vector<std::wstring> DescribeContents(const LandXmlContents& contents);

/// Returns what a document holds in a few words, such as "2 alignments, 1 parcel"; "nothing" for an empty one.
std::wstring NameContents(const LandXmlContents& contents);

}  // namespace quonhost
