#pragma once
// Real ROMs and disks, which are not part of the project: a folder named by VANTOREL_REAL_DIR may hold them.

#include <optional>
#include <string>

namespace vantorel::test {

/// The path of a real file, none when there is no such file or VANTOREL_REAL_DIR is unset. Use:
///
///     const auto path = realfile("aros-20130502.rom");
///     if (!path) GTEST_SKIP() << needsreal;
[[nodiscard]] std::optional<std::string> realfile(const std::string& name);

inline constexpr const char* needsreal = "needs the real file, in the folder that VANTOREL_REAL_DIR names";

} // namespace vantorel::test
