#include "shell/commands.h"

#include "base/message.h"
#include "shell/commandset.h"
#include "shell/substitute.h"
#include "shell/tokens.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

namespace vantorel {

namespace {

constexpr auto cCommands = std::to_array<Command>({
    {"help", "", command::help},
    {"editcomponent", "COMPONENT start=N | end=N | addrelocs | addreloc N | deletereloc NUMBER",
     command::editcomponent},
    {"rombase", "x20 | xF8 | xFC | N", command::rombase},
    {"romname", "NAME", command::romname},
    {"checksum", "", command::checksum},
    {"newrom", "SIZE[k|m] [FILL]", command::newrom},
    {"add", "FILE [COMPONENT | PREFIX*] | BYTES [FILL] | kickity-split | checksum | size | vectors",
     command::add},
    {"delete", "COMPONENT", command::deletecomponent},
    {"logfile", "FILE [append]", command::logfile},
    {"savedir", "DIRECTORY", command::savedir},
    {"auditfiles", "DIRECTORY", command::auditfiles},
    {"loadhashes", "[DIRECTORY]", command::loadhashes},
    {"adfsavefile", "ADFPATH [FILE]", command::adfsavefile},
    {"adfsavezip", "FILE", command::adfsavezip},
    {"loadadf", "FILE", command::loadadf},
    {"adflist", "", command::adflist},
    {"loadrom", "FILE [ROM] | HIGH LOW [ROM]", command::loadrom},
    {"romprofile", "[single | dual | CD32 | Superkick.File | Superkick.ADF | A1000] [ROM]...",
     command::romprofile},
    {"saveprofile", "[byteswap] [512] FILE", command::saveprofile},
    {"saverom", "FILE", command::saverom},
    {"canonisecomponent", "[COMPONENT]", command::canonisecomponent},
    {"savecomponenthash", "[COMPONENT [FILE]]", command::savecomponenthash},
    {"savecomponent", "[COMPONENT [FILE]]", command::savecomponent},
    {"missassemble", "COMPONENT [onepass]", command::missassemble},
    {"saveromhash", "[FILE]", command::saveromhash},
    {"savertb", "[FILE]", command::savertb},
    {"analysecomponent", "COMPONENT [addrelocs | ROM:COMPONENT [BYTES]]", command::analysecomponent},
    {"analyserom", "[ROM]", command::analyserom},
    {"analyseromoffsets", "[ROM]", command::analyseromoffsets},
    {"modules", "[ROM]", command::modules},
    {"rom", "[ROM]", command::rom},
    {"loglevel", "[LEVEL]", command::loglevel},
    {"idiotmode", "", command::idiotmode},
    {"alias", "NAME [VALUE | add N | subtract N | mid FROM LENGTH | romdata START COUNT]", command::alias},
    {"findopcode", "START END TEXT", command::findopcode},
    {"find", "START END BYTES", command::find},
    {"patch", "WHERE BYTES", command::patch},
    {"reset", "[roms] [aliases] [auditfiles] [hashes]", command::reset},
    {"roms", "", command::roms},
    {"echo", "[WORD]...", command::echo},
});

// The first token is in lower case by now.
void dispatch() {
    const char* keyword = cpTokens[0];
    for (const Command& row : cCommands)
        if (std::strcmp(keyword, row.keyword) == 0) return row.run();
    if (*keyword != '\0' && *keyword != '#')
        message(kResult, "ERROR, I've no idea what you mean, type help for help\n");
}

void outofmemory() { message(kResult, "ERROR, not enough memory\n"); }

} // namespace

std::span<const Command> commandtable() { return cCommands; }

int32_t script(const char* line) {
    try {
        std::string buffer = parsealias(line);
        tokens(buffer.data());
        dispatch();
    } catch (const std::bad_alloc&) {
        outofmemory();
    } catch (const std::length_error&) {
        outofmemory();
    }
    droptokens();
    std::fflush(stdout);
    return 0;
}

} // namespace vantorel
