#include "shell/settings.h"

#include "base/message.h"
#include "base/text.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantorel {

std::string cSaveDir;
int32_t iDiotMode = 0;

namespace {

// Not waiting for a reader when the path is a pipe; once it is open, writing may wait.
int openlog(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (descriptor >= 0) ::fcntl(descriptor, F_SETFL, O_WRONLY);
    return descriptor;
}

} // namespace

int logfile(const std::string& path) {
    message(kAlways, "freopen() - %s\n", path.c_str());
    const int descriptor = openlog(path);
    if (descriptor < 0) {
        message(kResult, "ERROR: failed to open output file %s\n", path.c_str());
        return 1;
    }
    std::fflush(stdout);
    ::dup2(descriptor, STDOUT_FILENO);
    if (descriptor != STDOUT_FILENO) ::close(descriptor);
    message(kAlways, "OK\n");
    return 0;
}

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

} // namespace vantorel
