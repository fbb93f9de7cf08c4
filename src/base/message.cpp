#include "base/message.h"

#include <cstdarg>
#include <cstdio>

namespace vantorel {

int32_t iLogLevel = 1;

void message(Threshold threshold, const char* format, ...) {
    if (!isshown(threshold)) return;
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

} // namespace vantorel
