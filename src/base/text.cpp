#include "base/text.h"

#include <cstdarg>
#include <cstdio>
#include <strings.h>

namespace vantorel {

std::string formatted(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(static_cast<size_t>(length > 0 ? length : 0), '\0');
    if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

std::string hexlong(uint32_t value) { return formatted("0x%08x", value); }

std::string joinpath(std::string_view directory, std::string_view name) {
    std::string path(directory);
    path += '/';
    path += name;
    if (path.size() > iPathMax) path.resize(iPathMax);
    return path;
}

std::string cut(std::string_view text, size_t most) { return std::string(text.substr(0, most)); }

bool startswithnocase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool equalnocase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && startswithnocase(a, b);
}

} // namespace vantorel
