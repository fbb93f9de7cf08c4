#pragma once
// The file audit: a directory tree of files that can be found by what they hold, hashed when first asked for.

#include <cstdint>
#include <string>
#include <vector>

namespace vantorel {

/// A directory of the audit.
struct AuditDirectory {
    uint32_t iParent = 0; ///< index into `psAuditFilesDir`; 0 for the root
    std::string cPath;    ///< the root as it was given, or the parent's path + "/" + name
};

/// A file of the audit.
struct AuditFile {
    uint32_t iDirectory = 0; ///< index into `psAuditFilesDir`
    std::string cName;       ///< the name alone
    uint32_t iCRC32 = 0;     ///< 0: not yet computed
};

// The audit. Filled by `auditfiles`, the CRCs by `getauditfile`; emptied by `freeauditfiles`.

/// The directories, breadth first, each one's subdirectories in ascending byte order.
extern std::vector<AuditDirectory> psAuditFilesDir;
/// The files, in the order of their directories and within one in ascending byte order.
extern std::vector<AuditFile> psAuditFilesFile;

/// What `getauditfile` tells of a file.
struct AuditFileData {
    uint32_t iDirectory = 0;
    std::string cName; ///< at most `iRecordText` characters
    std::string cCRC;  ///< "0x%08x"
};

/// What `getauditdir` tells of a directory.
struct AuditDirData {
    uint32_t iParent = 0;
    std::string cName; ///< base name of the path, at most `iRecordText` characters
};

/// Discards the audit and makes that of the tree at `top`. Directories that cannot be read, and any called
/// "Vantorel Hashes", are listed but not scanned, as are those whose path fills `iPathMax`; hidden
/// directories are not listed, and links are not followed. Returns the number of directories plus the number
/// of files.
int32_t auditfiles(const std::string& top);

/// Releases the audit.
void freeauditfiles();

/// Fills `record` for file `index`, hashing the file first if its CRC is still 0. One that cannot be opened
/// keeps 0 and is reported at every level, one that cannot be read in full above level 0. Returns 0, or 1 and
/// nothing filled when there is no such file.
int getauditfile(int32_t index, AuditFileData& record);

/// Fills `record` for directory `index`. Returns 0, or 1 and nothing filled when there is no such directory.
int getauditdir(int32_t index, AuditDirData& record);

} // namespace vantorel
