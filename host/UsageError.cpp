#include "host/UsageError.h"

#include "host/NearestName.h"

#include <algorithm>

namespace quonhost
{
namespace
{

// The command that the parser had come to.
const CLI::App& LastCommand(const CLI::App& app)
{
    const CLI::App* last = &app;
    while (!last->get_subcommands().empty())
    {
        last = last->get_subcommands().front();
    }
    return *last;
}

// The command with those that contain it, as it is typed.
std::string TypedName(const CLI::App& command)
{
    const CLI::App* const parent = command.get_parent();
    return parent == nullptr ? command.get_name() : TypedName(*parent) + ' ' + command.get_name();
}

std::vector<std::string> CommandNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::App* const sub :
         command.get_subcommands([](const CLI::App* app) { return !app->get_name().empty(); }))
    {
        names.push_back(sub->get_name());
    }
    return names;
}

// Those of option groups, which are commands without a name, included.
std::vector<std::string> OptionNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::App* const group :
         command.get_subcommands([](const CLI::App* app) { return app->get_name().empty(); }))
    {
        names = OptionNames(*group);
    }
    for (const CLI::Option* const option : command.get_options())
    {
        for (const std::string& name : option->get_lnames())
        {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string DescribeUnknown(const CLI::App& command, const std::string& argument)
{
    if (argument.size() > 1 && argument.front() == '-')
    {
        const std::string name = argument.substr(0, argument.find('='));
        return "\"" + name + "\" is not an option of " + command.get_name() + Suggestion(name, OptionNames(command));
    }
    const std::vector<std::string> commands = CommandNames(command);
    if (!commands.empty())
    {
        return "\"" + argument + "\" is not a command of " + command.get_name() + Suggestion(argument, commands);
    }
    return "\"" + argument + "\" is one argument too many for " + command.get_name();
}

// The parser names an option first; what it says after that is a riddle.
std::string NameBefore(const std::string& text, const char* mark)
{
    return text.substr(0, text.find(mark));
}

std::string DescribeMismatch(const std::string& text)
{
    if (text.find(" missing") != std::string::npos)
    {
        return NameBefore(text, ":") + " needs a value";
    }
    if (text.find("At Most") != std::string::npos)
    {
        return NameBefore(text, ":") + " is given more than once";
    }
    return text.find("flag override") != std::string::npos ? NameBefore(text, " was") + " takes no value" : text;
}

std::string DescribeRequired(const CLI::App& command, const std::string& text)
{
    if (text.find("subcommand") != std::string::npos)
    {
        return "a command is missing: " + CLI::detail::join(CommandNames(command), ", ");
    }
    const size_t list = text.find('[');
    if (list != std::string::npos)
    {
        return "give only one of " + text.substr(list + 1, text.rfind(']') - list - 1);
    }
    return text.find(" is required") == std::string::npos ? text : NameBefore(text, " is required") + " is missing";
}

std::string Describe(const CLI::App& app, const CLI::App& command, const CLI::ParseError& error)
{
    const std::string text = error.what();
    // A mistyped option or command is also why something else is missing.
    const std::vector<std::string> unknown = app.remaining(true);
    const bool isMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (!unknown.empty() && (isMissing || dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr))
    {
        return DescribeUnknown(command, unknown.front());
    }
    if (isMissing)
    {
        return DescribeRequired(command, text);
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
    {
        return DescribeMismatch(text);
    }
    if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr)
    {
        const std::string first = NameBefore(text, " excludes ");
        return first + " does not go with " + text.substr(first.size() + std::string(" excludes ").size());
    }
    return text;
}

}  // namespace

std::string DescribeUsageError(const CLI::App& app, const CLI::ParseError& error)
{
    const CLI::App& command = LastCommand(app);
    return Describe(app, command, error) + " (see \"" + TypedName(command) + " --help\")";
}

}  // namespace quonhost
