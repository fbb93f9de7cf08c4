#include "base/settings.h"

#include "base/files.h"
#include "base/message.h"
#include "base/text.h"

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace vantorel {

std::string cSaveDir;
int32_t iDiotMode = 0;

namespace {

bool islogging = false;

} // namespace

int logfile(const std::string& path) {
    message(kAlways, "freopen() - %s\n", path.c_str());
    std::fflush(stdout); // before the file is emptied, which may be the one in use
    const int descriptor = openoutput(path, 0666);
    if (descriptor < 0) {
        reportnotopened(path);
        return 1;
    }
    ::dup2(descriptor, STDOUT_FILENO);
    if (descriptor != STDOUT_FILENO) ::close(descriptor);
    islogging = true;
    message(kAlways, "OK\n");
    return 0;
}

bool haslogfile() { return islogging; }

int savedir(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || (status.st_mode & S_IFDIR) == 0) {
        message(kResult, "Invalid directory [%s]\n", path.c_str());
        return 1;
    }
    message(kProgress, "Valid dir [%s]\n", path.c_str());
    cSaveDir = joinpath(path, "");
    return 0;
}

std::string savepath(const std::string& name) { return (cSaveDir + name).substr(0, iPathMax); }

} // namespace vantorel
