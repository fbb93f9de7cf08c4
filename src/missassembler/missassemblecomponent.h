#pragma once
// The one-pass listing: a component from its first byte to its end, where its library's own structures say
// what is no code.

#include <cstdint>

namespace vantorel {

/// Lists component `component` of slot `rom` on the console, and suggests other bounds for it when its code
/// refers to addresses beyond them. Without such a slot or component, a mnemonic table, or room in the image
/// for the component: a message, and nothing is listed.
void missassembleComponent(int32_t rom, int32_t component);

} // namespace vantorel
