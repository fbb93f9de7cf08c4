#pragma once
// An independent reader of Amiga disks, as a judge: the `unadf` of the Debian package of that name.

#include "support/tempdir.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace vantorel::test {

inline bool hasunadf() { return std::system("command -v unadf >/dev/null 2>&1") == 0; }

/// Everything on the disk `image` (a path) below the folder `target`. Returns what the tool had to say.
/// It extracts into its working directory, so it must be given one.
inline std::string unadf(const std::string& image, const TempDir& target) {
    const std::string log = target.file("unadf.log");
    const std::string folder = target.folder("disk");
    const std::string path = std::filesystem::absolute(image).string();
    const std::string command = "cd '" + folder + "' && unadf '" + path + "' >'" + log + "' 2>&1";
    if (std::system(command.c_str()) != 0) return "unadf failed";
    return target.text("unadf.log");
}

} // namespace vantorel::test
