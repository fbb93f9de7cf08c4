// The commands of the session itself.

#include "base/message.h"
#include "base/settings.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/help.h"
#include "shell/reset.h"
#include "shell/tokens.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <strings.h>

namespace vantorel::command {

void help() { vantorel::help(); }

// A word "append" behind the file has no effect: the log is always overwritten.
void logfile() {
    if (!require(1, "ERROR, please specify the logfile\n")) return;
    message(kProgress, "Logfile is now %s\n", argument(1));
    vantorel::logfile(argument(1));
}

void savedir() {
    if (require(1, "ERROR, please specify the directory that files are saved to\n"))
        vantorel::savedir(argument(1));
}

void loglevel() {
    if (!isgiven(1)) {
        message(kResult, "LogLevel = %d\n", iLogLevel);
        return;
    }
    if (!isnumber(1)) return;
    if (const auto level = numberargument(1)) iLogLevel = *level;
}

void idiotmode() {
    message(kResult, "Idiot mode active, debug messages on and I'll let you do illogical things\n");
    iDiotMode = 1;
}

namespace {

struct ResetWord {
    const char* word;
    bool isprefix; // longer words count too
    int32_t mask;
    Threshold threshold;
    const char* announcement;
};

constexpr auto cResetWords = std::to_array<ResetWord>({
    {"roms", true, iResetRoms, kAlways, "RESET ROMs\n"},
    {"aliases", false, iResetAliases, kResult, "RESET Aliases\n"},
    {"auditfiles", false, iResetAuditFiles, kResult, "RESET Auditfiles\n"},
    {"hashes", false, iResetHashes, kResult, "RESET Hashes\n"},
});

void resetword(int32_t n) {
    message(kResult, "RESET [%s]\n", argument(n));
    for (const ResetWord& row : cResetWords) {
        const bool matches = row.isprefix ? strncasecmp(argument(n), row.word, std::strlen(row.word)) == 0
                                          : isword(n, row.word);
        if (!matches) continue;
        message(row.threshold, "%s", row.announcement);
        vantorel::reset(row.mask);
    }
}

} // namespace

void reset() {
    if (!isgiven(1)) {
        message(kResult, "Resetting all memory allocation\n");
        vantorel::reset(iResetAll);
        return;
    }
    for (int32_t n = 1; n < iTokenSlots && isgiven(n); ++n)
        resetword(n);
}

void echo() {
    for (int32_t n = 1; n < iTokenSlots && isgiven(n); ++n)
        message(kResult, "%s ", argument(n));
    message(kAlways, "\n");
}

} // namespace vantorel::command
