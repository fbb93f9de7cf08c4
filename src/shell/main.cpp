#include "shell/loop.h"

#include <csignal>
#include <cstdio>

int main() {
    // A reader that leaves and a file that may not grow make a write fail; they do not end the session.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    vantorel::commandloop(stdin);
    return 0;
}
