#include "host/LandXmlCommands.h"

#include "host/Console.h"
#include "host/Report.h"
#include "host/Streams.h"
#include "host/landxml/LandXmlInfoJson.h"
#include "host/landxml/LandXmlInfoText.h"

#include <memory>

namespace quonhost
{
namespace
{

struct InfoOptions
{
    LandXmlInput input;
    bool json = false;
};

void PrintInfo(const InfoOptions& options)
{
    const LandXmlContents contents = ReadInput(options.input);
    if (options.json)
    {
        PrintJson(ContentsAsJson(contents));
        return;
    }
    for (const std::wstring& line : DescribeContents(contents))
    {
        PrintLine(line);
    }
}

}  // namespace

void AddLandXmlInfo(CLI::App& parent)
{
    auto options = std::make_shared<InfoOptions>();
    CLI::App* const command = parent.add_subcommand("info", "Print what a LandXML file (1.0 to 1.2) holds");
    AddInput(*command, options->input);
    AddJsonFlag(*command, options->json);
    SetLandXmlWork(*command, [options] { PrintInfo(*options); });
}

}  // namespace quonhost
