// What `quonhost landxml info` prints.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlFile.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace quonhost
{

/// One fact a line, for people.
std::vector<std::wstring> DescribeInfo(const LandXmlInfo& info);

/// The same as a JSON object, for programs.
nlohmann::ordered_json InfoAsJson(const LandXmlInfo& info);

}  // namespace quonhost
