#pragma once
// Command lines as a user types them, and what they print.

#include "support/fresh.h"
#include "support/tempdir.h"

#include <string>
#include <string_view>

namespace vantorel::test {

/// What every decimal number that fits no 32-bit type stands for in these tests.
inline constexpr const char* cTooLarge = "99999999999";

/// What is printed for a command that does not exist.
inline constexpr const char* cUnknown = "ERROR, I've no idea what you mean, type help for help\n";

/// Runs a command line; what it prints is lost.
void type(const std::string& line);

/// What a command line prints at the present verbosity.
[[nodiscard]] std::string printed(const std::string& line);

/// What it prints at verbosity `level`, which is put back afterwards.
[[nodiscard]] std::string printedat(int32_t level, const std::string& line);

/// What the prompt loop prints, prompts included, when `input` is its input.
[[nodiscard]] std::string session(std::string_view input);

/// `text` with "<ptr>" for what %p printed in the lines that show pointers.
[[nodiscard]] std::string withoutpointers(const std::string& text);

/// Whether `text` is one line and begins with "ERROR".
[[nodiscard]] bool isoneerror(const std::string& text);

/// A program as it starts, in a working directory of its own.
class ShellTest : public FreshTest {
protected:
    TempDir directory;
    InDirectory inside{directory};
};

} // namespace vantorel::test
