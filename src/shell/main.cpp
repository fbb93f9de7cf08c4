#include "shell/loop.h"

#include <cstdio>

int main() {
    vantorel::commandloop(stdin);
    return 0;
}
