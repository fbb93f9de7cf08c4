#include "shell/loop.h"

#include "base/message.h"
#include "base/settings.h"
#include "base/text.h"
#include "hash/library.h"
#include "shell/commands.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace vantorel {

std::vector<char> ckBuffer;

int32_t countbuffer() {
    const auto end = std::ranges::find_if(ckBuffer, [](char c) { return c == '\n' || c == '\0'; });
    if (end == ckBuffer.end() || *end != '\n') return iBufferSize;
    *end = '\0';
    return static_cast<int32_t>(end - ckBuffer.begin());
}

namespace {

// False at the end of the input.
bool readline(std::FILE* input) { return std::fgets(ckBuffer.data(), iBufferSize, input) != nullptr; }

// Whether the last write failed because nobody reads the pipe that the session was started on. The reader of
// a log may leave: the session goes on, and another log may be named.
bool isabandoned() { return errno == EPIPE && !haslogfile(); }

// Discards up to the next line feed. A line with a NUL in it was read to its end already, so the one behind
// it goes too.
void discardline(std::FILE* input) {
    for (int c = 0; c != '\n' && c != EOF;)
        c = std::fgetc(input);
}

} // namespace

void commandloop(std::FILE* input) {
    ckBuffer.assign(iBufferSize, '\0');
    script(formatted("loadhashes \"%s\"", cHashLibrary).c_str());
    for (;;) {
        message(kAlways, "VanCLI> ");
        if (std::fflush(stdout) != 0 && isabandoned()) break;
        if (!readline(input)) break;
        if (countbuffer() == iBufferSize) {
            message(kAlways, "ERROR, command buffer too small, ignoring input\n");
            discardline(input);
            continue;
        }
        if (std::string_view(ckBuffer.data()).starts_with("exit")) break;
        script(ckBuffer.data());
    }
    ckBuffer = {};
}

} // namespace vantorel
