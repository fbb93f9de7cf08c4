#pragma once
// Alias variables: named texts that command lines refer to.

#include <cstdint>
#include <string>
#include <vector>

namespace vantorel {

/// The aliases, name and value at the same index, in the order in which they were made; names are unique.
/// Changed by the functions here alone, emptied by `freealiases`.
extern std::vector<std::string> pcAliasname;
extern std::vector<std::string> pcAliasvalue;

/// Number of aliases.
[[nodiscard]] int32_t iAliasCnt();

/// Gives the alias `name` the value, making it when there is none; with an empty value shows it instead, or
/// "No such alias". An empty name does nothing.
void alias(const std::string& name, const std::string& value);

// The next ones change the alias `name`. Without such an alias they print "No such alias" and change nothing;
// an empty name does nothing.

/// Adds `operand` ("0x" and hexadecimal digits, else decimal) to its value, which is "0x" and up
/// to eight hexadecimal digits, wrapping at 32 bits. The result is stored as "0x%08x".
void aliasadd(const std::string& name, const std::string& operand);

/// The same, subtracting.
void aliassub(const std::string& name, const std::string& operand);

/// Cuts its value down to `length` characters from `start` (both 0 or more); a length of
/// 0 goes to its end. A value shorter than `start` becomes empty.
void aliasmid(const std::string& name, int32_t start, int32_t length);

/// Gives the alias `name` the value "0x" and the `count` bytes of slot `rom` from image offset `start`, two
/// upper-case digits each. No such slot, or a range that reaches the image's end: a message, nothing changed.
void aliasromdata(int32_t rom, const std::string& name, uint32_t start, uint32_t count);

/// Releases every alias.
void freealiases();

} // namespace vantorel
