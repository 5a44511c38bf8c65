#pragma once

/// Makes the application's module state. @return whether it stands
bool StartModuleStates();
/// Takes back what StartModuleStates did, also when it failed half way.
void EndModuleStates();

/// Takes the slot of the threads' handlers for short memory. @return false when the system has none left
bool StartNewHandlers();
/// Frees the slot, if there is one.
void EndNewHandlers();
