// A host whose plug-in watches a file, and which then ends in the way that its argument tells.
#include "helpers/PluginHost.h"

int main()
{
    using quon_test::PluginEnd;
    return quon_test::RunPluginHost(L"monitoring_life_plugin.dll",
                                    {{L"return", {"Watch"}, PluginEnd::kReturn},
                                     {L"exit", {"Watch"}, PluginEnd::kExitProcess},
                                     {L"return-in-event", {"WatchAndWrite"}, PluginEnd::kReturn},
                                     {L"shutdown-return", {"Watch", "ShutDown"}, PluginEnd::kReturn},
                                     {L"free", {"Watch", "ShutDown"}, PluginEnd::kFree},
                                     {L"free-twice", {"Watch", "ShutDown"}, PluginEnd::kFreeTwice}});
}
