// What `quonhost landxml info --json` prints.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"

#include <nlohmann/json_fwd.hpp>

namespace quonhost
{

/// Returns the contents as the object that docs/host.md describes.
nlohmann::ordered_json ContentsAsJson(const LandXmlContents& contents);

}  // namespace quonhost
