#pragma once
// The help text.

namespace vantorel {

/// Prints the help text; the entry for `idiotmode` only while that mode is set.
void help();

} // namespace vantorel
