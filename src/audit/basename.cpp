#include "audit/basename.h"

namespace vantorel {

const char* mBasename(const char* path) {
    const char* base = path;
    for (; *path != '\0'; ++path)
        if (*path == '/' || *path == '\\') base = path + 1;
    return base;
}

} // namespace vantorel
