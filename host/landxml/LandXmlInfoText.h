// What `quonhost landxml info` prints.
#pragma once

#include "host/landxml/LandXmlFile.h"

#include <string>
#include <vector>

namespace quonhost
{

/// One fact a line, for people.
std::vector<std::wstring> DescribeInfo(const LandXmlInfo& info);

/// The same as a JSON object, for programs. UTF-8
std::string InfoAsJson(const LandXmlInfo& info);

}  // namespace quonhost
