#pragma once
// The commands: each a keyword, the arguments it takes and what runs it.

#include <cstdint>
#include <span>

namespace vantorel {

/// A row of the table of commands.
struct Command {
    const char* keyword;   ///< in lower case
    const char* arguments; ///< as a user types them, for documents; [optional], a | b: either
    void (*run)();         ///< reads its arguments from the current tokens
};

/// All commands, in the order in which their keywords are tried.
[[nodiscard]] std::span<const Command> commandtable();

/// Runs one command line: expands its alias references, cuts it into tokens and runs the command that the
/// first names. A blank line and one that begins with "#" do nothing; an unknown word gives an error line.
/// When memory runs out the command ends with an error line. Standard output is flushed. Returns 0.
int32_t script(const char* line);

} // namespace vantorel
