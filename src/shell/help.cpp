#include "shell/help.h"

#include "base/message.h"
#include "base/settings.h"

#include <array>

namespace vantorel {

namespace {

// An entry of the help text. The text promises commands that do not exist and leaves out others that do;
// users' notes and scripts quote it, so it stays as it is.
struct HelpEntry {
    const char* text;
    bool onlyidiotmode = false;
};

constexpr auto cHelp = std::to_array<HelpEntry>({
    {"help\n\n"},
    {"CLI features\n"},
    {" idiotmode\n   Enable debug messages and disable error prevention (now active)\n", true},
    {" buffer [command buffer size]\n   Increase the size of the command buffer, long paths?\n"},
    {" logfile filename [append]\n   Redirect output to logfile, will overwrite on each command unless you "
     "append\n\n"},
    {"ROM commands\n"},
    {" sourcedir dirname\n   Set the location of the source ROM/library directory, defaults to current "
     "dir\n"},
    {" newrom n[k|m]\n   Create a new blank rom in memory, add k for kilobytes or m for megabytes\n"},
    {" loadrom filename [ROM]\n   Load a ROM file to memory\n"},
    {" saverom savefile\n   Save in memory ROM to file\n"},
    {" roms\n   Show ROMs in memory\n"},
    {" rom n\n   Set current working ROM to n\n\n"},
    {"ROM modification commands\n"},
    {" rombase x20|xF8|xFC|nnnnnnn\n   Set the ROMBase address to nnnnnn (or use commonly used shortcut),\n  "
     " do this before adding any modules\n"},
    {" add kickity-split\n   Adds an 8 byte kickity-split at 262144, do this before the space is occupied\n"},
    {" add checksum\n   Adds the 4 byte checksum at rom length -24\n"},
    {" add size\n   Adds the 4 byte romsize at rom length -20\n"},
    {" add vectors\n   Adds the 16 byte 68k hardware vector table at the end of the ROM\n"},
    {" add filename [component]\n   Adds an external (RELOC/loadable) file into an in memory ROM\n\n"},
    {" insert filename position\n   inserts an external (RELOC/loadable) file into an in memory ROM at a "
     "position\n\n"},
    {" replace filename position\n   replaces a component in an in memory ROM with an external "
     "(RELOC/loadable) file\n\n"},
    {" delete component\n   Remove a component from an in memory ROM\n\n"},
    {"Hash commands\n"},
    {" createhashfile filename hashfile\n   Creates a default hash file from a ROM or RELOC/loadable file\n"},
    {" savecomponenthash [component [savefile]]\n   Saves component[s] hash file from a ROM\n"},
    {"ROM extract commands\n"},
    {" savecomponent [component [savefile]]\n   Saves a component[s] from a ROM using a hashfile and saves "
     "it as a\n   RELOC/loadable file\n"},
    {" savedata frombyte tobyte savefile\n   Saves a range of raw data from a ROM\n"},
    {"Utilities\n"},
    {" savedir dirname\n   Set the location of the save directory, defaults to current dir\n"},
    {" byteswap filename savefile\n   Byteswap a file, useful for burning\n"},
    {" analyse filename\n   Try and identify file, list any details\n\n"},
});

} // namespace

void help() {
    for (const HelpEntry& entry : cHelp)
        if (!entry.onlyidiotmode || iDiotMode != 0) message(kResult, "%s", entry.text);
}

} // namespace vantorel
