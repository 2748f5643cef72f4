#pragma once

namespace Platform {

// Stops in the debugger when one is attached; does nothing otherwise, so that choosing
// "Debug" never kills a process that runs without one.
void BreakIntoDebugger();

} // namespace Platform
