#pragma once
// The substitution of alias references in command lines.

#include <string>

namespace vantorel {

/// `line` with every reference, "$" and a name, replaced by its text. Tried in this order: "$$" is a "$"; the
/// user's aliases; "$0x" and eight hexadecimal digits, the path of the audited file with that CRC32; the
/// built-in names ROMBASE, CALCCHECKSUM and (KICKSTARTVERSION) of the current ROM; its components, a name
/// with a suffix such as
/// .(START) giving one "0x%08x" number and a plain name "start end" in decimal. Of any other reference only
/// the "$" disappears, with a message when no ROM is current.
[[nodiscard]] std::string parsealias(const char* line);

} // namespace vantorel
