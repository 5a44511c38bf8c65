#pragma once

/// Makes the application's module state. @return whether it stands
bool StartModuleStates();
/// Takes back what StartModuleStates did, also when it failed half way.
void EndModuleStates();
