#pragma once
// What the commands share in reading their arguments. Argument n, 0 to 15, is token n of the current
// line; an empty token is an absent argument.

#include <cstdint>
#include <optional>

namespace vantorel {

[[nodiscard]] const char* argument(int32_t n);

[[nodiscard]] bool isgiven(int32_t n);

/// Whether argument `n` is the word `word`, case ignored.
[[nodiscard]] bool isword(int32_t n, const char* word);

/// Whether argument `n` is given and all decimal digits.
[[nodiscard]] bool isnumber(int32_t n);

/// Whether argument `n` is given; prints `complaint` when it is not.
[[nodiscard]] bool require(int32_t n, const char* complaint);

/// The decimal number of argument `n`, 0 when it is absent or no number. None, and an error line, when it
/// does not fit 32 signed bits.
[[nodiscard]] std::optional<int32_t> numberargument(int32_t n);

/// The decimal number of argument `n`, which a command cannot do without: `missing` is printed when it is not
/// given, `malformed` when it is not all decimal digits. None then, and as above when it does not fit.
[[nodiscard]] std::optional<int32_t> requirenumber(int32_t n, const char* missing, const char* malformed);

/// The same as `numberargument` for what counts or measures: a negative one is refused too.
[[nodiscard]] std::optional<int32_t> countargument(int32_t n);

/// The same as `countargument`, also hexadecimal behind "0x", which wraps at 32 bits.
[[nodiscard]] std::optional<uint32_t> offsetargument(int32_t n);

/// The slot that argument `n` names: the current ROM when it is absent or no number. None, and an error line,
/// when the number does not fit.
[[nodiscard]] std::optional<int32_t> slotargument(int32_t n);

/// Says that `text` is no number that can be taken.
void refusenumber(const char* text);

} // namespace vantorel
