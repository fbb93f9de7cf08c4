#pragma once
// The program's state, which is global, put back to what it is when the program starts.

namespace vantorel::test {

/// No ROMs, aliases, audit, hash library, disk or save directory; verbosity 1. Prints nothing.
void freshstate();

} // namespace vantorel::test
