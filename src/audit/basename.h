#pragma once
// The base-name helper.

namespace vantorel {

/// The text behind the last "/" or "\" of `path`, or all of it when it has neither. Points into `path`.
[[nodiscard]] const char* mBasename(const char* path);

} // namespace vantorel
