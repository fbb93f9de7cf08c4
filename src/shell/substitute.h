#pragma once
// The substitution of alias references in command lines.

#include <string>

namespace vantorel {

/// `line` with every reference, "$" and a name, replaced by its text. What the name begins with is tried in
/// this order:
/// - "$": one "$";
/// - an alias of the user's: its value;
/// - "0x" and eight hexadecimal digits: the path of the audited file with that CRC32, or nothing;
/// - ROMBASE, CALCCHECKSUM and (KICKSTARTVERSION), of the current ROM: "0x%08x" (several may follow each
/// other);
/// - a component of the current ROM: with a suffix such as ".(START)" one "0x%08x", alone its "start end" in
/// decimal
///   (those of further components may follow).
/// Of any other reference only the "$" disappears, with a message when no ROM is current.
[[nodiscard]] std::string parsealias(const char* line);

} // namespace vantorel
