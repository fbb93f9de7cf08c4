#pragma once
// The options with which vantorel-fixture is told what ROM to make.

#include "support/hashbuilder.h"
#include "support/rombuilder.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace vantorel::test {

/// Wrong arguments; the usage is shown.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A ROM as ordered, and where its hash files go (empty: nowhere).
struct FixtureRom {
    BuiltRom rom;
    RomText text;
    std::string hashes;
};

/// Builds the ROM that the options among `arguments` describe, from the standard ROM or from nothing, and
/// takes the options out.
[[nodiscard]] FixtureRom fixturerom(std::vector<std::string>& arguments, bool isstandard);

/// Takes "--name value" out of the arguments, wherever it stands; `otherwise` when it is not there. Throws
/// UsageError when the value is missing.
[[nodiscard]] std::string takeoption(std::vector<std::string>& arguments, const std::string& name,
                                     const std::string& otherwise = "");

/// A decimal or 0x number of at most 32 bits, with k or m behind it for KiB or MiB. Throws UsageError.
[[nodiscard]] int32_t fixturenumber(const std::string& text);

/// What the options are, for the usage.
extern const char* const fixtureromhelp;

} // namespace vantorel::test
