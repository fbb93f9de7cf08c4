// The commands on the components of a ROM.

#include "analysis/analysecomponent.h"
#include "analysis/deepanalyse.h"
#include "base/message.h"
#include "base/text.h"
#include "build/virtualcomponents.h"
#include "component/addlibrary.h"
#include "component/placement.h"
#include "component/relocedit.h"
#include "component/savecomponent.h"
#include "component/selection.h"
#include "hash/writer.h"
#include "missassembler/missassemblecomponent.h"
#include "missassembler/missassemblelibrary.h"
#include "rom/store.h"
#include "shell/arguments.h"
#include "shell/commandset.h"
#include "shell/numbers.h"

#include <array>
#include <cstring>
#include <optional>
#include <string>

namespace vantorel::command {

namespace {

constexpr const char* cStart = "start=";
constexpr const char* cEnd = "end=";

// A bound of a component behind its word in argument 2: any number that fits, negative ones too.
std::optional<uint32_t> boundargument(const char* word) {
    const char* text = argument(2) + std::strlen(word);
    if (ishexadecimal(text) || decimalinrange(text)) return atoiorhex(text);
    refusenumber(text);
    return std::nullopt;
}

void editstart(int32_t component) {
    const auto value = boundargument(cStart);
    if (!value) return;
    editcomponentstart(iCurrentROM, component, *value);
    message(kTrace, "Editing START\n");
}

void editend(int32_t component) {
    const auto value = boundargument(cEnd);
    if (!value) return;
    editcomponentend(iCurrentROM, component, *value);
    message(kTrace, "Editing END\n");
}

void editaddrelocs(int32_t component) {
    addrelocs(iCurrentROM, component);
    message(kTrace, "Adding all potential RELOCs\n");
}

void editaddreloc(int32_t component) {
    if (!isnumber(3) && !ishexadecimal(argument(3))) {
        message(kResult, "ERROR, either please give the reloc number to add\n");
        return;
    }
    const auto offset = offsetargument(3);
    if (!offset) return;
    addreloc(iCurrentROM, component, static_cast<int32_t>(*offset));
    message(kTrace, "Adding RELOC\n");
}

void editdeletereloc(int32_t component) {
    if (!isnumber(3)) {
        message(kResult, "ERROR, either please give the reloc number to delete\n");
        return;
    }
    const auto offset = numberargument(3);
    if (!offset) return;
    deletereloc(iCurrentROM, component, *offset);
    message(kTrace, "Deleting RELOC\n");
}

// What can be done to a component, by the word that the argument begins with; the first that fits counts.
struct EditAction {
    const char* word;
    void (*run)(int32_t component);
};

constexpr auto cEditActions = std::to_array<EditAction>({
    {cStart, editstart},
    {cEnd, editend},
    {"addrelocs", editaddrelocs},
    {"addreloc", editaddreloc},
    {"deletereloc", editdeletereloc},
});

} // namespace

void editcomponent() {
    const auto component = requirenumber(1, "ERROR, please give the component to edit\n",
                                         "ERROR, please give the number of the component\n");
    if (!component) return;
    for (const EditAction& action : cEditActions)
        if (startswithnocase(argument(2), action.word)) return action.run(*component);
    message(kResult, "ERROR, either START=nnn END=nnn addrelocs addreloc or deletereloc\n");
}

void checksum() { vantorel::checksum(iCurrentROM); }

namespace {

struct AddAction {
    const char* word;
    int (*run)(int32_t rom);
    const char* trace;
};

constexpr auto cAddActions = std::to_array<AddAction>({
    {"kickity-split", addkickitysplit, "Add kickity-split"},
    {"checksum", addchecksum, "Add checksum"},
    {"size", addsize, "Add size"},
    {"vectors", addvectors, "Add vectors"},
});

void addblock() {
    const auto bytes = numberargument(1);
    if (!bytes) return;
    const auto fill = numberargument(2);
    if (!fill) return;
    addunallocated(iCurrentROM, *bytes, static_cast<int8_t>(*fill));
    message(kTrace, "Add %s bytes of unallocated space\n", argument(1));
}

void addfile() {
    addlibrary(iCurrentROM, argument(1), argument(2));
    if (isgiven(2)) message(kProgress, "Add component [%s] of file %s\n", argument(2), argument(1));
}

} // namespace

void add() {
    if (iCurrentROM < 0) {
        message(kResult, "ERROR, No current ROM\n");
        return;
    }
    if (!require(1, "ERROR, what do you want to add?\n")) return;
    for (const AddAction& action : cAddActions)
        if (isword(1, action.word)) {
            action.run(iCurrentROM);
            message(kTrace, "%s\n", action.trace);
            return;
        }
    if (isnumber(1))
        addblock();
    else
        addfile();
}

void deletecomponent() {
    const auto component = requirenumber(1, "ERROR, what do you want to add?\n",
                                         "Please supply the component number to delete\n");
    if (component) vantorel::deletecomponent(iCurrentROM, *component);
}

namespace {

// The component that argument 1 names by its number; every component when it is absent or no number.
std::optional<int32_t> componentargument() {
    if (!isnumber(1)) return iEveryComponent;
    return numberargument(1);
}

} // namespace

void canonisecomponent() {
    if (const auto component = componentargument()) vantorel::canonisecomponent(iCurrentROM, *component);
}

namespace {

// What saves components, and what its line of one component calls it.
struct ComponentSaver {
    void (*save)(int32_t rom, int32_t component, const std::string& name);
    const char* tofile;
    const char* topath;
};

constexpr ComponentSaver cHashSaver = {vantorel::savecomponenthash, "hash of ", "component hash"};
constexpr ComponentSaver cFileSaver = {vantorel::savecomponent, "", "component"};

void savecomponents(const ComponentSaver& saver) {
    auto component = componentargument();
    if (!component) return;
    if (!isgiven(1)) {
        message(kProgress, "Saving all components to savepath\n");
        saver.save(iCurrentROM, iEveryComponent, "");
    } else if (isgiven(2)) {
        if (*component < 0) component = findcomponent(iCurrentROM, argument(1));
        message(kProgress, "Saving %s%d:%d to %s\n", saver.tofile, iCurrentROM, *component, argument(2));
        saver.save(iCurrentROM, *component, argument(2));
    } else {
        message(kProgress, "Saving %s %d to savepath\n", saver.topath, *component);
        saver.save(iCurrentROM, *component, "");
    }
}

} // namespace

void savecomponenthash() { savecomponents(cHashSaver); }

void savecomponent() { savecomponents(cFileSaver); }

void missassemble() {
    // What is no number is passed over in silence.
    const auto component = requirenumber(1, "MissAssemble which component?\n", "");
    if (!component) return;
    if (isword(2, "onepass"))
        missassembleComponent(iCurrentROM, *component);
    else
        missassembleLibrary(iCurrentROM, *component);
}

namespace {

// Compares component `component` of the current ROM with the one that `other`, "ROM:COMPONENT", names.
void deepanalyse(int32_t component, const std::string& other) {
    message(kProgress, "Deep analyse component %s with %s\n", argument(1), other.c_str());
    const size_t colon = other.find(':');
    const std::string rom = other.substr(0, colon);
    const std::string module = other.substr(colon + 1);
    if (!isnumeric(rom.c_str()) || !isnumeric(module.c_str()))
        return message(kResult, "ERROR, ROM and MODULE need to be numbers\n");
    const auto romnumber = decimalinrange(rom.c_str());
    if (!romnumber) return refusenumber(rom.c_str());
    const auto modulenumber = decimalinrange(module.c_str());
    if (!modulenumber) return refusenumber(module.c_str());
    const auto least = countargument(3);
    if (!least) return;
    deepanalysecomponent(iCurrentROM, component, *romnumber, *modulenumber,
                         *least != 0 ? *least : iChunkLeast);
}

} // namespace

void analysecomponent() {
    const auto component =
        requirenumber(1, "ERROR, please specify component\n", "ERROR, please specify component number\n");
    if (!component) return;
    const std::string other = argument(2);
    if (other.find(':') != std::string::npos) return deepanalyse(*component, other);
    if (!other.empty() && !isword(2, "addrelocs"))
        return message(kResult,
                       "ERROR, please specify component to compare with ROM:MODULE or addrelocs to add "
                       "all verified relocs\n");
    vantorel::analysecomponent(iCurrentROM, *component,
                               other.empty() ? VerifiedRelocs::Tell : VerifiedRelocs::Add);
}

} // namespace vantorel::command
