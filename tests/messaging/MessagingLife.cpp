// A host whose plug-in uses the window server, a worker and a queue, and which then ends in the way that its argument
// tells.
#include "helpers/PluginHost.h"

int main()
{
    using quon_test::PluginEnd;
    return quon_test::RunPluginHost(L"messaging_life_plugin.dll",
                                    {{L"return", {"Work"}, PluginEnd::kReturn},
                                     {L"exit", {"Work"}, PluginEnd::kExitProcess},
                                     {L"worker-left-running", {"LeaveAWorkerRunning"}, PluginEnd::kReturn},
                                     {L"free", {"Work"}, PluginEnd::kFree},
                                     {L"free-twice", {"Work"}, PluginEnd::kFreeTwice}});
}
