#include "host/Commands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/Report.h"
#include "support/Angles.h"

#include <cmath>
#include <limits>
#include <memory>

namespace quonhost
{
namespace
{

// No angle is too large, as long as it is a number.
constexpr double kLargest = std::numeric_limits<double>::max();

struct AngleOptions
{
    double value = 0;
    std::string from;
    std::string to;
    bool json = false;
};

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
    const double angle = Convert(options.value, options.from, options.to);
    if (!std::isfinite(angle))
    {
        throw CommandError(L"the angle is too large to convert");
    }
    if (options.json)
    {
        PrintJson({{"value", angle}, {"unit", options.to}});
        return;
    }
    CString text;
    text.Format(L"%.15g", angle);
    PrintLine(text.GetString());
}

}  // namespace

void AddAngleCommand(CLI::App& app)
{
    auto options = std::make_shared<AngleOptions>();
    CLI::App* command = app.add_subcommand("angle", "Convert an angle");
    AddNumber(*command, "value", options->value, -kLargest, kLargest, "", "The angle")->required();
    const Choices units = {"deg", "rad", "dms"};
    AddChoice(*command, "--from", options->from, units, "deg: decimal degrees, rad: radians, dms: D.MMSS")->required();
    AddChoice(*command, "--to", options->to, units,
              "The same units; to dms, the last four decimals are the fraction of a minute, not seconds")
        ->required();
    AddJsonFlag(*command, options->json);
    command->callback([options] { PrintAngle(*options); });
}

}  // namespace quonhost
