#pragma once
// Texts that may be absent, printf into a string, paths, and comparisons without regard to case.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantorel {

/// A text field of a record: absent is not the same as empty.
using Text = std::optional<std::string>;

/// For "%s": the text up to its first NUL, or "(null)" when it is absent.
[[nodiscard]] inline const char* shown(const Text& text) { return text ? text->c_str() : "(null)"; }

/// For "%p": where the text's characters are, null when it is absent.
[[nodiscard]] inline const void* address(const Text& text) { return text ? text->data() : nullptr; }

/// What printf would have printed, of any length.
[[gnu::format(printf, 1, 2)]] [[nodiscard]] std::string formatted(const char* format, ...);

/// `value` as "0x" and eight hexadecimal digits in small letters, as hash files are called after a CRC32.
[[nodiscard]] std::string hexlong(uint32_t value);

/// The longest path that the program forms: further characters are cut off.
inline constexpr size_t iPathMax = 1023;

/// `directory` + "/" + `name`, cut at `iPathMax` characters.
[[nodiscard]] std::string joinpath(std::string_view directory, std::string_view name);

/// The most characters of a text in the records that a front end is given.
inline constexpr size_t iRecordText = 127;

/// The first `most` characters of `text`, or all.
[[nodiscard]] std::string cut(std::string_view text, size_t most);

/// Whether `text` begins with `prefix`, compared without regard to the case of ASCII letters.
[[nodiscard]] bool startswithnocase(std::string_view text, std::string_view prefix);

/// Whether both are the same text without regard to the case of ASCII letters.
[[nodiscard]] bool equalnocase(std::string_view a, std::string_view b);

} // namespace vantorel
