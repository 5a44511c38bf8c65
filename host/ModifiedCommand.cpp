#include "host/Commands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/ProgressBar.h"
#include "host/Report.h"
#include "host/Stop.h"
#include "host/Streams.h"
#include "monitoring/QuonFileModifiedManager.h"

#include <memory>

namespace quonhost
{
namespace
{

struct ModifiedOptions
{
    std::vector<std::wstring> files;
    double pause = 2;
    bool json = false;
};

void AskForAll(int question, const std::vector<std::wstring>& files, bool isJson)
{
    for (const std::wstring& file : files)
    {
        const bool isModified = QuonFileModifiedManager::IsFileModified(file.c_str());
        if (isJson)
        {
            PrintJsonLine({{"question", question}, {"path", JsonText(file)}, {"modified", isModified}});
            continue;
        }
        PrintLine(std::wstring(question == 1 ? L"first " : L"second") +
                  (isModified ? L"  modified   " : L"  unchanged  ") + file);
    }
    StandardOutput().Flush();
}

// In steps, so that Ctrl+C ends it.
void Pause(double seconds)
{
    constexpr DWORD kStepMilliseconds = 50;
    const ULONGLONG start = ::GetTickCount64();
    const auto limit = static_cast<ULONGLONG>(seconds * 1000);
    while (::GetTickCount64() - start < limit)
    {
        StopIfAsked();
        ::Sleep(kStepMilliseconds);
    }
}

void AskTwice(const ModifiedOptions& options)
{
    const ProgressBar poll(false);
    std::vector<std::wstring> files;
    for (const std::wstring& file : options.files)
    {
        files.push_back(FullPath(file.c_str()));
    }
    AskForAll(1, files, options.json);
    Pause(options.pause);
    AskForAll(2, files, options.json);
}

}  // namespace

void AddModifiedCommand(CLI::App& app)
{
    auto options = std::make_shared<ModifiedOptions>();
    CLI::App* command = app.add_subcommand("modified",
                                           "Ask twice whether files were modified since they were last asked for; the "
                                           "first answer is yes, and it always is for a file that cannot be read");
    AddTexts(*command, "file", options->files, "Files")->required();
    AddNumber(*command, "--pause", options->pause, 0, kLongestWait, "SECONDS", "The time between the two questions")
        ->default_str("2");
    AddJsonFlag(*command, options->json)->description("Print one JSON object a line");
    command->callback([options] { AskTwice(*options); });
}

}  // namespace quonhost
