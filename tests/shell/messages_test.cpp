// Every message of the shell at its threshold: there one level above, not at it.

#include "base/message.h"
#include "rom/store.h"
#include "shell/session.h"

#include <vector>

namespace vantorel::test {

namespace {

struct Said {
    const char* line;
    const char* text; ///< a whole line of what it prints
    int32_t threshold = 0;
    std::vector<const char*> before{}; ///< typed before it
};

constexpr int32_t iUnconditional = -1;

const std::vector<Said> cMessages = {
    {"romname", "ERROR, please specify the ROM name\n"},
    {"newrom", "ERROR, please specify ROM size, e.g. newrom 512k\n"},
    {"newrom 2k", "Creating a new ROM of 2048 bytes (2k)\n", 1},
    {"logfile", "ERROR, please specify the logfile\n"},
    {"logfile out.txt", "Logfile is now out.txt\n", 1},
    {"logfile out.txt", "freopen() - out.txt\n", iUnconditional},
    {"logfile nowhere/out.txt", "ERROR: failed to open output file nowhere/out.txt\n"},
    {"savedir", "ERROR, please specify the directory that files are saved to\n"},
    {"savedir /", "Valid dir [/]\n", 1},
    {"savedir missing", "Invalid directory [missing]\n"},
    {"auditfiles", "ERROR, please specify the top level directory that contans files to audit\n"},
    {"adfsavefile", "ERROR, please specify the file to save from the ADF\n"},
    {"loadadf", "ERROR, please specify the ADF to load\n"},
    {"loadadf missing", "ERROR: Unable to open ADF:missing\n", iUnconditional},
    {"loadadf missing", "ADF loaded:<none>\n"},
    {"loadrom", "ERROR, please specify the file to load from\n"},
    {"loadrom missing", "Load ROM: missing\n", 5},
    {"loadrom a b c", "Load ROM: a\n", 5},
    {"loadrom a b c", "ERROR: No ROM at that slot, or slot out of range\n"},
    {"idiotmode", "Idiot mode active, debug messages on and I'll let you do illogical things\n"},
    {"alias", "List aliases?\n", 1},
    {"alias x multiply 1", "unknown alias command\n"},
    {"alias x", "Value:1\n", 0, {"alias x 1"}},
    {"alias x", "No such alias\n"},
    {"alias x", "Search for existing alias x\n", 5},
    {"alias x 12", "Create new alias to 12\n", 5},
    {"alias x add 1", "No such alias\n"},
    {"alias x subtract 1", "No such alias\n"},
    {"alias x mid 1", "No such alias\n"},
    {"alias x mid 1", "Search for existing alias x\n", 1},
    {"alias x mid 1", "Searched for existing alias x\n", 1},
    {"alias x mid 1 1", "New len:1\n", 5, {"alias x abc"}},
    {"alias x mid 4 1", "Too short - zeroing\n", 5, {"alias x abc"}},
    {"alias x romdata 1 2", "Create/update alias x from ROM -1 starting position 1 for 2 bytes\n", 5},
    {"alias x romdata 1 2", "Invalid ROM\n"},
    {"alias x romdata 8 8", "Error: Out of ROM bounds\n", 0, {"newrom 16"}},
    {"reset", "Resetting all memory allocation\n"},
    {"reset", "DLL Call... reset(15)\n", iUnconditional},
    {"reset", "There are 0 ROMs\n", iUnconditional},
    {"reset", "Freeing 1 aliases\n", 5, {"alias x 1"}},
    {"reset word", "RESET [word]\n"},
    {"reset roms", "RESET ROMs\n", iUnconditional},
    {"reset roms", "DLL Call... reset(1)\n", iUnconditional},
    {"reset roms", "ROM 0 has 0 Components\n", iUnconditional, {"newrom 16"}},
    {"reset roms", "Freeing psComponents [<ptr>]\n", iUnconditional, {"newrom 16"}},
    {"reset roms", "Freeing ROM 0\n", iUnconditional, {"newrom 16"}},
    {"reset roms", "Freeing pcROM [<ptr>]\n", iUnconditional, {"newrom 16"}},
    {"reset roms", "Freeing pcTitle [<ptr>]\n", iUnconditional, {"newrom 16"}},
    {"reset roms", "Freeing pcText [<ptr>]\n", iUnconditional, {"newrom 16"}},
    {"reset aliases", "RESET Aliases\n"},
    {"reset aliases", "DLL Call... reset(2)\n", iUnconditional},
    {"reset auditfiles", "RESET Auditfiles\n"},
    {"reset auditfiles", "DLL Call... reset(4)\n", iUnconditional},
    {"reset hashes", "RESET Hashes\n"},
    {"reset hashes", "DLL Call... reset(8)\n", iUnconditional},
    {"echo a", "a \n"},
    {"echo", "\n", iUnconditional},
    {"roms", "ROMS:\n"},
    {"nonsense", "ERROR, I've no idea what you mean, type help for help\n"},
    {"# $x", "Parsing [# $x]\n", 5, {"alias x 12"}},
    {"# $x", "realloc(<ptr>,5);\n", 5, {"alias x 12"}},
    {"# $x", "realloc(<ptr>,6);\n", 5, {"alias x 12"}},
    {"# $x", "Parsed [# 12]\n", 1, {"alias x 12"}},
    {"# $x", "No custom aliases found, no current ROM\n"},
    {"# $0x12345678", "Search for file alias\n", 5},
    {"# $0x12345678", "Look for Hash [0x12345678]\n", 5},
    {"# $0xbb6f4ec5", "Found:tree\n", 5, {"auditfiles tree"}},
    {"# $0xbb6f4ec5", "Found:exec\n", 5, {"auditfiles tree"}},
};

class ShellMessages : public ShellTest, public ::testing::WithParamInterface<Said> {
protected:
    // Whether the line is among what the command prints at verbosity `level`, from a fresh state.
    [[nodiscard]] static bool issaid(int32_t level) {
        freshstate();
        for (const char* line : GetParam().before)
            type(line);
        const std::string text = "\n" + withoutpointers(printedat(level, GetParam().line));
        return text.find(std::string("\n") + GetParam().text) != std::string::npos;
    }
};

std::string name(const ::testing::TestParamInfo<Said>& info) { return "Row" + std::to_string(info.index); }

} // namespace

TEST_P(ShellMessages, AppearAboveTheirThreshold) {
    directory.file("tree/exec", "exec");
    SCOPED_TRACE(GetParam().line);
    SCOPED_TRACE(GetParam().text);
    EXPECT_TRUE(issaid(GetParam().threshold + 1));
    if (GetParam().threshold == iUnconditional) return;
    EXPECT_FALSE(issaid(GetParam().threshold));
}

INSTANTIATE_TEST_SUITE_P(Shell, ShellMessages, ::testing::ValuesIn(cMessages), name);

} // namespace vantorel::test
