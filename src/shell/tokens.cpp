#include "shell/tokens.h"

#include <cstddef>

namespace vantorel {

namespace {

constexpr auto cNoTokens = [] {
    std::array<const char*, iTokenSlots> none{};
    none.fill(cNull);
    return none;
}();

char* skipspaces(char* text) {
    while (*text == ' ')
        ++text;
    return text;
}

// Ends the token at `text` at its terminator; returns what is behind it.
char* endtoken(char* text, char terminator) {
    while (*text != '\0' && *text != terminator)
        ++text;
    if (*text != '\0') *text++ = '\0';
    return text;
}

void lowercase(char* text) {
    for (; *text != '\0'; ++text)
        if (*text >= 'A' && *text <= 'Z') *text = static_cast<char>(*text + ('a' - 'A'));
}

} // namespace

std::array<const char*, iTokenSlots> cpTokens = cNoTokens;
int32_t iTokens = 0;

void tokens(char* text) {
    droptokens();
    char* first = nullptr;
    for (text = skipspaces(text); *text != '\0' && iTokens < iTokenSlots; text = skipspaces(text)) {
        const bool isquoted = *text == '"' || *text == '\'';
        const char terminator = isquoted ? *text++ : ' ';
        if (first == nullptr) first = text;
        cpTokens[static_cast<size_t>(iTokens++)] = text;
        text = endtoken(text, terminator);
    }
    if (first != nullptr) lowercase(first);
}

void droptokens() {
    cpTokens = cNoTokens;
    iTokens = 0;
}

} // namespace vantorel
