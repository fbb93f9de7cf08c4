#include "support/hashbuilder.h"

#include "support/checksums.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace vantorel::test {

std::string romhash(const BuiltRom& rom, const RomText& text) {
    std::string file = "[Description]\nTitle=" + text.title + "\nText=" + text.text + "\n";
    if (text.rombase) file += "RomBase=" + hex32(rom.base) + "\n";
    if (!text.format.empty()) file += "Format=" + text.format + "\n";
    file += "FileType=" + text.filetype + "\n\n[Components]\n";
    for (const MapLine& line : text.map.empty() ? rom.map : text.map) {
        file += line.name + "=" + std::to_string(line.start) + "," + std::to_string(line.size) + "," +
                line.type + ":" + line.hash + "\n";
    }
    return file;
}

std::string componenthash(const BuiltModule& module) {
    std::string file = "[Description]\nTitle=" + module.idstring + "\nText=" + module.name +
                       "\nSize=" + std::to_string(module.size) + "\nROMTAG=" + std::to_string(module.tag) +
                       "\nRELOCS=" + std::to_string(module.relocs.size()) +
                       "\nFileType=Loadable Library\n\n[Display]\nColour=0x555555\nIcon=153\n\n[RELOC32]\n";
    for (int32_t reloc : module.relocs) {
        std::string number = std::to_string(reloc);
        number.resize(10, ' ');
        file += "RELOC=" + number + "\n";
    }
    return file;
}

std::string containerhash(const ContainerText& text) {
    std::string file = "[Description]\nTitle=" + text.title + "\nText=" + text.text + "\n";
    if (!text.format.empty()) file += "Format=" + text.format + "\n";
    if (!text.filetype.empty()) file += "FileType=" + text.filetype + "\n";
    file += "\n[Components]\n";
    for (const Range& range : text.ranges)
        file += range.key + "=" + std::to_string(range.offset) + "," + std::to_string(range.size) + "\n";
    return file;
}

std::string HashBuilder::add(const BuiltRom& built, const RomText& text) const {
    components(built);
    return rom(built, text);
}

std::string HashBuilder::rom(const BuiltRom& built, const RomText& text) const {
    return write(hex32(built.crc), romhash(built, text));
}

void HashBuilder::components(const BuiltRom& built) const {
    for (const BuiltModule& module : built.modules)
        if (module.tag >= 0 || !module.relocs.empty()) component(module);
}

std::string HashBuilder::component(const BuiltModule& module) const {
    return write(module.hash(), componenthash(module));
}

std::string HashBuilder::container(View file, const ContainerText& text) const {
    return write(hex32(crc32of(file)), containerhash(text));
}

std::string HashBuilder::write(const std::string& name, const std::string& text) const {
    fs::create_directories(root);
    std::ofstream stream(fs::path(root) / name, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + root + "/" + name);
    return name;
}

} // namespace vantorel::test
