#pragma once
// Images dumped as two EPROMs.

#include <cstdint>
#include <string>

namespace vantorel {

/// Merges the dumps of two EPROMs that hold the 16-bit halves of each long, in whichever order gives a valid
/// checksum, and loads the image into slot `rom`; of an image of two 512K ROMs the second goes into a new
/// slot that becomes current. Overburnt dumps (of even size) count once. Without a valid order the files are
/// joined one behind the other. Returns 0; 1 and a message when the files cannot be read, the first is empty
/// (the message names the second), they differ in size, or come to more than 2 GiB - 1.
int loadsplitrom(const std::string& path1, const std::string& path2, int32_t rom);

} // namespace vantorel
