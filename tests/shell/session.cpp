#include "shell/session.h"

#include "base/message.h"
#include "shell/commands.h"
#include "shell/loop.h"
#include "support/capture.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <regex>

namespace vantorel::test {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Not every C library opens an empty piece of memory.
std::FILE* openinput(std::string& input) {
    return input.empty() ? std::fopen("/dev/null", "r") : ::fmemopen(input.data(), input.size(), "r");
}

} // namespace

void type(const std::string& line) { static_cast<void>(printed(line)); }

std::string printed(const std::string& line) {
    return captured([&] { script(line.c_str()); });
}

std::string printedat(int32_t level, const std::string& line) {
    const int32_t former = iLogLevel;
    iLogLevel = level;
    std::string text = printed(line);
    iLogLevel = former;
    return text;
}

std::string session(std::string_view input) {
    std::string bytes(input);
    const std::unique_ptr<std::FILE, CloseFile> file(openinput(bytes));
    if (file == nullptr) return "no input";
    return captured([&] { commandloop(file.get()); });
}

std::string withoutpointers(const std::string& text) {
    static const std::regex pointer(R"((realloc\(|Freeing [a-zA-Z]+( [0-9]+)? \[)(0x[0-9a-f]+|\(nil\)))");
    return std::regex_replace(text, pointer, "$1<ptr>");
}

bool isoneerror(const std::string& text) {
    return text.starts_with("ERROR") && text.ends_with('\n') && std::ranges::count(text, '\n') == 1;
}

} // namespace vantorel::test
