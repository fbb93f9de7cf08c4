#pragma once
// The settings of a session: where its output goes, and where its files.

#include <cstdint>
#include <string>

namespace vantorel {

/// Put in front of every file name that the save commands form: empty, or a path that ends in "/". Set by
/// `savedir`.
extern std::string cSaveDir;

/// 1 while `help` shows its own entry for `idiotmode`; changes nothing else. Set by `idiotmode`.
extern int32_t iDiotMode;

/// Sends standard output to the file at `path`, emptied first. Says so on the old output, and "OK" on the new
/// one. Returns 0; 1 with an error line, the old output staying in use, when the file cannot be opened.
int logfile(const std::string& path);

/// Whether `logfile` has sent the output to a file of the user's.
[[nodiscard]] bool haslogfile();

/// Makes the directory `path` the save directory. Returns 0; 1 with a message, the old one staying, when it
/// is none.
int savedir(const std::string& path);

/// The path that a save command writes to: `cSaveDir` and `name`, cut at `iPathMax` characters.
[[nodiscard]] std::string savepath(const std::string& name);

} // namespace vantorel
