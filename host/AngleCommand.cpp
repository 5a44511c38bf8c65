#include "host/Commands.h"

#include "host/Console.h"
#include "host/Report.h"
#include "support/Angles.h"
#include "support/StringHelpers.h"

#include <cmath>
#include <cwchar>
#include <memory>

namespace quonhost
{
namespace
{

struct AngleOptions
{
    std::string value;
    std::string from;
    std::string to;
    bool json = false;
};

double ParseValue(const std::string& text)
{
    double value = 0;
    if (text.empty() || !ParseDouble(ToWide(text).c_str(), &value) || !std::isfinite(value))
    {
        throw CommandError("\"" + text + "\" is no number");
    }
    return value;
}

double Convert(double value, const std::string& from, const std::string& to)
{
    if (from == to)
    {
        return value;
    }
    if (from == "dms" && to == "rad")
    {
        return DmsToRadians(value);
    }
    const double degrees = from == "rad" ? RadiansToDegrees(value) : from == "dms" ? DmsToDegrees(value) : value;
    return to == "rad" ? DegreesToRadians(degrees) : to == "dms" ? DegreesToDms(degrees) : degrees;
}

void PrintAngle(const AngleOptions& options)
{
    const double angle = Convert(ParseValue(options.value), options.from, options.to);
    if (options.json)
    {
        PrintJson({{"value", angle}, {"unit", options.to}});
        return;
    }
    wchar_t text[64] = {};
    _snwprintf(text, 63, L"%.15g", angle);
    PrintLine(text);
}

}  // namespace

void AddAngleCommand(CLI::App& app)
{
    auto options = std::make_shared<AngleOptions>();
    CLI::App* command = app.add_subcommand("angle", "Convert an angle");
    command->add_option("value", options->value, "The angle")->required();
    const CLI::IsMember units({"deg", "rad", "dms"});
    command->add_option("--from", options->from, "deg: decimal degrees, rad: radians, dms: D.MMSS")
        ->required()
        ->check(units);
    command
        ->add_option("--to", options->to,
                     "The same units; to dms, the last four decimals are the fraction of a minute, not seconds")
        ->required()
        ->check(units);
    AddJsonFlag(*command, options->json);
    command->callback([options] { PrintAngle(*options); });
}

}  // namespace quonhost
