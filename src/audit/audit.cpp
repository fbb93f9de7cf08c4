#include "audit/audit.h"

#include "audit/basename.h"
#include "base/directory.h"
#include "base/files.h"
#include "base/message.h"
#include "base/text.h"
#include "hash/crc32.h"
#include "hash/library.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

namespace vantorel {

std::vector<AuditDirectory> psAuditFilesDir;
std::vector<AuditFile> psAuditFilesFile;

namespace {

std::string workingdirectory() {
    std::error_code ignored;
    return std::filesystem::current_path(ignored).string();
}

/// Sorts the directories from position `start` on as insertion does, and tells each exchange.
void sortdirectoriestelling(size_t start) {
    for (size_t added = start + 1; added < psAuditFilesDir.size(); ++added)
        for (size_t at = added; at > start; --at) {
            if (psAuditFilesDir[at].cPath >= psAuditFilesDir[at - 1].cPath) break;
            message(kTrace, "Swapping %d with %d\n", static_cast<int>(at), static_cast<int>(at) - 1);
            std::swap(psAuditFilesDir[at], psAuditFilesDir[at - 1]);
        }
}

void sortdirectories(size_t start) {
    // The exchanges are quadratic, so they are only made for those who watch.
    if (isshown(kTrace)) return sortdirectoriestelling(start);
    std::sort(psAuditFilesDir.begin() + static_cast<std::ptrdiff_t>(start), psAuditFilesDir.end(),
              [](const AuditDirectory& a, const AuditDirectory& b) { return a.cPath < b.cPath; });
}

void sortfiles(size_t start) {
    std::sort(psAuditFilesFile.begin() + static_cast<std::ptrdiff_t>(start), psAuditFilesFile.end(),
              [](const AuditFile& a, const AuditFile& b) { return a.cName < b.cName; });
}

/// Scans directory `index`: its files and its subdirectories go to the ends of the lists, each sorted.
void addfiles(size_t index) {
    const size_t directories = psAuditFilesDir.size();
    const size_t files = psAuditFilesFile.size();
    // The list that holds the path grows.
    const std::string path = psAuditFilesDir[index].cPath;
    const auto number = static_cast<uint32_t>(index);
    scandirectory(
        index, path,
        [&](std::string found) {
            psAuditFilesDir.push_back({number, std::move(found)});
        },
        [&](const char* name) {
            psAuditFilesFile.push_back({number, name, 0});
        });
    sortdirectories(directories);
    sortfiles(files);
}

/// The CRC32 of the file at `path`; 0, and a message, when it cannot be had.
uint32_t hashedfile(const std::string& path) {
    message(kTrace, "CRCing... %s \n", path.c_str());
    InputFile file(path);
    if (!file.isopen()) {
        message(kAlways, "ERROR: file %s failed to open\n", path.c_str());
        return 0;
    }
    message(kChatty, "Size:%ld\n", static_cast<long>(file.size()));
    const auto crc = crc32rest(file);
    if (!crc) message(kResult, "ERROR: file %s could not be read in full\n", path.c_str());
    return crc.value_or(0);
}

// Breadth first: each scan may lengthen the list.
void scantree() {
    for (size_t index = 0; index < psAuditFilesDir.size(); ++index)
        // The hash library describes files; it holds none to be found.
        if (std::string_view(mBasename(psAuditFilesDir[index].cPath.c_str())) != cHashLibrary)
            addfiles(index);
}

} // namespace

int32_t auditfiles(const std::string& top) {
    // `top` may be one of the texts that go.
    std::string root = top;
    if (isshown(kTrace))
        message(kTrace, "Auditing files at TLD [%s]\nCWD=%s\n", root.c_str(), workingdirectory().c_str());
    freeauditfiles();
    psAuditFilesDir.push_back({0, std::move(root)});
    try {
        scantree();
    } catch (const std::bad_alloc&) {
        freeauditfiles(); // half an audit would be in no order
        throw;
    }
    return static_cast<int32_t>(psAuditFilesDir.size() + psAuditFilesFile.size());
}

void freeauditfiles() {
    message(kTrace, "Freeing all audit memory\n");
    if (psAuditFilesDir.empty()) return;
    message(kTrace, "Freeing %d audited Dirs\n", static_cast<int>(psAuditFilesDir.size()));
    psAuditFilesDir = {};
    message(kTrace, "Freeing %d audited files\n", static_cast<int>(psAuditFilesFile.size()));
    psAuditFilesFile = {};
}

int getauditfile(int32_t index, AuditFileData& record) {
    if (index < 0 || static_cast<size_t>(index) >= psAuditFilesFile.size()) return 1;
    AuditFile& file = psAuditFilesFile[static_cast<size_t>(index)];
    message(kChatty, "GETTING File #%d [%s] Parent=%d\n", index, file.cName.c_str(),
            static_cast<int>(file.iDirectory));
    record.iDirectory = file.iDirectory;
    record.cName = cut(file.cName, iRecordText);
    if (file.iCRC32 == 0) file.iCRC32 = hashedfile(psAuditFilesDir[file.iDirectory].cPath + "/" + file.cName);
    record.cCRC = hexlong(file.iCRC32);
    message(kTrace, "CRC: %s\n", record.cCRC.c_str());
    return 0;
}

int getauditdir(int32_t index, AuditDirData& record) {
    if (index < 0 || static_cast<size_t>(index) >= psAuditFilesDir.size()) return 1;
    const AuditDirectory& directory = psAuditFilesDir[static_cast<size_t>(index)];
    record.iParent = directory.iParent;
    record.cName = cut(mBasename(directory.cPath.c_str()), iRecordText);
    return 0;
}

} // namespace vantorel
