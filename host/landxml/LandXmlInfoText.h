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

/// Returns a number with its noun, such as "1 point" or "2 points".
std::wstring CountText(size_t count, const wchar_t* one, const wchar_t* many);

}  // namespace quonhost
