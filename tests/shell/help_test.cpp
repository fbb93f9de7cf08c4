#include "shell/help.h"

#include "shell/session.h"

namespace vantorel::test {

namespace {

const std::string cTop = R"(help

CLI features
)";

const std::string cIdiotMode = R"( idiotmode
   Enable debug messages and disable error prevention (now active)
)";

const std::string cRest = R"( buffer [command buffer size]
   Increase the size of the command buffer, long paths?
 logfile filename [append]
   Redirect output to logfile, will overwrite on each command unless you append

ROM commands
 sourcedir dirname
   Set the location of the source ROM/library directory, defaults to current dir
 newrom n[k|m]
   Create a new blank rom in memory, add k for kilobytes or m for megabytes
 loadrom filename [ROM]
   Load a ROM file to memory
 saverom savefile
   Save in memory ROM to file
 roms
   Show ROMs in memory
 rom n
   Set current working ROM to n

ROM modification commands
 rombase x20|xF8|xFC|nnnnnnn
   Set the ROMBase address to nnnnnn (or use commonly used shortcut),
   do this before adding any modules
 add kickity-split
   Adds an 8 byte kickity-split at 262144, do this before the space is occupied
 add checksum
   Adds the 4 byte checksum at rom length -24
 add size
   Adds the 4 byte romsize at rom length -20
 add vectors
   Adds the 16 byte 68k hardware vector table at the end of the ROM
 add filename [component]
   Adds an external (RELOC/loadable) file into an in memory ROM

 insert filename position
   inserts an external (RELOC/loadable) file into an in memory ROM at a position

 replace filename position
   replaces a component in an in memory ROM with an external (RELOC/loadable) file

 delete component
   Remove a component from an in memory ROM

Hash commands
 createhashfile filename hashfile
   Creates a default hash file from a ROM or RELOC/loadable file
 savecomponenthash [component [savefile]]
   Saves component[s] hash file from a ROM
ROM extract commands
 savecomponent [component [savefile]]
   Saves a component[s] from a ROM using a hashfile and saves it as a
   RELOC/loadable file
 savedata frombyte tobyte savefile
   Saves a range of raw data from a ROM
Utilities
 savedir dirname
   Set the location of the save directory, defaults to current dir
 byteswap filename savefile
   Byteswap a file, useful for burning
 analyse filename
   Try and identify file, list any details

)";

class HelpCommand : public ShellTest {};

} // namespace

TEST_F(HelpCommand, IsKeptWordForWord) { EXPECT_EQ(printed("help"), cTop + cRest); }

TEST_F(HelpCommand, ShowsItsOwnEntryForIdiotModeInThatMode) {
    type("idiotmode");
    EXPECT_EQ(printed("help"), cTop + cIdiotMode + cRest);
}

TEST_F(HelpCommand, IsPrintedForTheWordInAnyCase) {
    for (const char* word : {"HELP", "Help", "hElP", "  help  ", "help me", "'help'", "\"HELP\""})
        EXPECT_EQ(printed(word), cTop + cRest) << word;
}

TEST_F(HelpCommand, IsSilentAtLevelZero) { EXPECT_EQ(printedat(0, "help"), ""); }

TEST_F(HelpCommand, PromisesCommandsThatDoNotExist) {
    for (const char* word :
         {"buffer", "sourcedir", "insert", "replace", "createhashfile", "savedata", "byteswap", "analyse"}) {
        EXPECT_NE((cTop + cRest).find(std::string(" ") + word + " "), std::string::npos) << word;
        EXPECT_EQ(printed(word), "ERROR, I've no idea what you mean, type help for help\n") << word;
    }
}

} // namespace vantorel::test
