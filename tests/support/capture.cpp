#include "support/capture.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

namespace vantorel::test {

namespace {

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

std::string contents(int descriptor) {
    std::string text;
    std::array<char, 65536> buffer;
    for (off_t offset = 0;;) {
        const ssize_t count = pread(descriptor, buffer.data(), buffer.size(), offset);
        if (count <= 0) return text;
        text.append(buffer.data(), static_cast<size_t>(count));
        offset += count;
    }
}

} // namespace

Capture::Capture() {
    // What was printed before belongs to the old output.
    fflush(stdout);
    memory = memfd_create("capture", MFD_CLOEXEC);
    if (memory < 0) fail("memfd_create");
    saved = dup(STDOUT_FILENO);
    if (saved < 0 || dup2(memory, STDOUT_FILENO) < 0) fail("dup");
}

Capture::~Capture() {
    finish();
    close(memory);
}

std::string Capture::text() {
    finish();
    return caught;
}

void Capture::finish() {
    if (saved < 0) return;
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
    saved = -1;
    caught = contents(memory);
}

} // namespace vantorel::test
