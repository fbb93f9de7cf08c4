#include "base/files.h"

#include "base/message.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantorel {

InputFile::InputFile(const std::string& path)
    : descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (descriptor < 0) return;
    struct stat status {};
    if (descriptor == 0 || ::fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
        ::close(descriptor);
        descriptor = -1;
        return;
    }
    length = status.st_size;
}

InputFile::~InputFile() {
    if (isopen()) ::close(descriptor);
}

size_t InputFile::read(std::span<uint8_t> buffer) {
    size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t got = ::read(descriptor, buffer.data() + done, buffer.size() - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<size_t>(got);
    }
    return done;
}

std::optional<FileContents> readfile(const std::string& path) {
    InputFile file(path);
    if (!file.isopen()) return std::nullopt;
    FileContents contents;
    contents.iExpected = file.size();
    if (file.size() > iFileSizeMax) return contents;
    contents.bytes.resize(static_cast<size_t>(std::max<int64_t>(file.size(), 0)));
    contents.bytes.resize(file.read(contents.bytes));
    return contents;
}

int openoutput(const std::string& path, unsigned permissions) {
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    const int descriptor = ::open(path.c_str(), flags | O_NONBLOCK, permissions);
    // Only the opening must not wait.
    if (descriptor >= 0) ::fcntl(descriptor, F_SETFL, flags);
    return descriptor;
}

OutputFile::OutputFile(const std::string& path) : handle(openoutput(path, 0755)) {}

OutputFile::~OutputFile() { close(); }

void OutputFile::write(View bytes) {
    while (good && !bytes.empty()) {
        const ssize_t put = ::write(handle, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        good = put > 0;
        if (good) bytes = bytes.subspan(static_cast<size_t>(put));
    }
}

bool OutputFile::close() {
    if (!isopen()) return false;
    good = ::close(handle) == 0 && good;
    handle = -1;
    return good;
}

WriteResult writefile(const std::string& path, View bytes) {
    OutputFile file(path);
    if (!file.isopen()) return WriteResult::NotOpened;
    file.write(bytes);
    return file.close() ? WriteResult::Written : WriteResult::NotWritten;
}

void reportnotopened(const std::string& path) {
    message(kResult, "ERROR: failed to open output file %s\n", path.c_str());
}

void reportnotwritten(const std::string& path) {
    message(kResult, "ERROR: failed to write output file %s\n", path.c_str());
}

int savefile(const std::string& path, View bytes) {
    const WriteResult result = writefile(path, bytes);
    if (result == WriteResult::NotOpened) reportnotopened(path);
    if (result == WriteResult::NotWritten) reportnotwritten(path);
    return result == WriteResult::Written ? 0 : 1;
}

} // namespace vantorel
