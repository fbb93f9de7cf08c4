#pragma once
// The walk over a component: code told from data by following the flow of control.

#include <cstdint>

namespace vantorel {

/// Lists component `component` of slot `rom` on the console and in "missassembler.tmp" in the working
/// directory, from the entry points that its ROMTAGs and hints name. Without such a slot or component, a
/// mnemonic table, or room in the image for the component: a message, and nothing is listed.
void missassembleLibrary(int32_t rom, int32_t component);

} // namespace vantorel
