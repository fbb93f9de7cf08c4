#pragma once
// What every listing and search begins with.

namespace vantorel {

/// Loads "missassemble.ini" of the hash library into `sMnemonic`, once for the process, and empties both
/// label tables. Returns 0; 1 with a message, the label tables as they were, when there is no such file or
/// no section "mnemonics" in it. A section without an entry is for the caller to refuse.
int initmissassembler();

/// The same, and whether there is an entry to decode with.
[[nodiscard]] bool readymissassembler();

} // namespace vantorel
