#include "component/loadcomponent.h"

#include "audit/basename.h"
#include "base/files.h"
#include "base/message.h"
#include "component/extract.h"
#include "component/hunkreader.h"
#include "component/relocs.h"
#include "hash/crc32.h"
#include "hash/filerange.h"
#include "hash/hashfile.h"
#include "hash/ini.h"
#include "hash/library.h"

#include <cstring>
#include <optional>
#include <string_view>

namespace vantorel {

namespace {

// A file that holds components, and what its hash file tells of it.
struct SourceFile {
    const std::string& path;
    View data;
    std::string hashpath;
    IniFile ini;
};

int loadwhole(const std::string& path, View data, Component& component) {
    component.pcName = mBasename(path.c_str());
    component.pcHash = component.pcName;
    return librarybuffertocomponent(data, 0, static_cast<int32_t>(data.size()), component);
}

void relocatetozero(Component& component, uint32_t address) {
    for (int32_t i = 0; i < component.iRelocs(); ++i) {
        const int32_t& reloc = component.ipRelocs[static_cast<size_t>(i)];
        makerelative(*component.pcExtract, {&reloc, 1}, address);
        message(kTrace, "Patching reloc#%d offset=%d ", i, reloc);
        message(kTrace, "[%d]\n", static_cast<int32_t>(*longat(*component.pcExtract, reloc)));
    }
}

// The base that the hash file of a ROM tells; none, and an error line, when it tells none.
std::optional<uint32_t> sourcebase(const SourceFile& source) {
    const auto base = describedbase(source.ini);
    if (base)
        message(kProgress, "ROMBase of source ROM=%d\n", static_cast<int32_t>(*base));
    else
        message(kResult, "Unable to find ROMBASE in hash file\n");
    return base;
}

// The third field of "start,size,type:hash"; empty when there is none.
std::string_view thirdfield(const char* value) {
    const char* first = std::strchr(value, ',');
    const char* second = first != nullptr ? std::strchr(first + 1, ',') : nullptr;
    return second != nullptr ? second + 1 : "";
}

// Where a library lies in its ROM, and the name of its hash file.
struct LibraryPlace {
    FileRange range;
    std::string_view hash;
};

// None, and an error line, when `name` is no library that lies in the ROM.
std::optional<LibraryPlace> findlibrary(const SourceFile& source, const char* name) {
    const char* value = readiniitem(source.ini, cComponentsSection, name);
    if (value == nullptr) {
        message(kResult, "Unable to find component in hash file\n");
        return std::nullopt;
    }
    constexpr std::string_view librarytype = "Library:";
    const std::string_view field = thirdfield(value);
    if (!field.starts_with(librarytype)) {
        message(kResult, "ERROR: Can only add a library from another kickstart\n");
        return std::nullopt;
    }
    const auto range = readrange(name, value);
    if (!range || !requirerange(name, *range, source.data)) return std::nullopt;
    return LibraryPlace{*range, field.substr(librarytype.size())};
}

// A library out of a ROM file, whose absolute addresses count from the base that its hash file tells.
int extractfromrom(const SourceFile& source, const std::string& name, Component& component) {
    message(kProgress, "Extracting %s from %s using %s\n", name.c_str(), source.path.c_str(),
            source.hashpath.c_str());
    const auto base = sourcebase(source);
    const auto library = base ? findlibrary(source, name.c_str()) : std::nullopt;
    if (!library) return 1;
    const View bytes = part(source.data, library->range.start, library->range.size);
    component.pcType = cTypeLibrary;
    component.pcExtract.emplace(bytes.begin(), bytes.end());
    component.iSize = library->range.size;
    component.pcName = name;
    component.pcHash = library->hash;
    component.ipRelocs = loadrelocs(component.pcHash);
    droprelocsoutside(component.ipRelocs, component.iSize);
    if (component.iRelocs() > component.iSize) { // a list that repeats itself would only take up memory
        message(kResult, "ERROR: %s has more relocs than bytes\n", name.c_str());
        return 1;
    }
    relocatetozero(component, *base + static_cast<uint32_t>(library->range.start));
    return 0;
}

// A member is read with its place in the archive as the offset of raw data, so what is no hunk file is
// taken from that far behind the member's start: archives rely on it.
int extractfromarchive(const SourceFile& source, const std::string& name, Component& component) {
    const char* value = readiniitem(source.ini, cComponentsSection, name.c_str());
    if (value == nullptr) {
        message(kResult, "ERROR: Unable to find component specified (%s) in hash file %s\n", name.c_str(),
                source.hashpath.c_str());
        return 1;
    }
    message(kProgress, "Component found -> %s\n", value);
    const auto range = readrange(name.c_str(), value);
    if (!range) return 1;
    message(kProgress, "Extracting %d bytes from position %d\n", range->size, range->start);
    if (!requirerange(name.c_str(), *range, source.data)) return 1;
    component.pcName = name;
    component.pcHash = name;
    return librarybuffertocomponent(source.data.subspan(static_cast<size_t>(range->start)), range->start,
                                    range->size, component);
}

int extractbytype(const SourceFile& source, const std::string& name, Component& component) {
    const char* type = readiniitem(source.ini, cDescriptionSection, "FileType");
    if (type == nullptr) {
        message(kResult, "ERROR: Component specified, but hash file %s doesn't contain FileType=\n",
                source.hashpath.c_str());
        return 1;
    }
    message(kProgress, "Hash file indicates FileType %s\n", type);
    const std::string_view kind = type;
    if (kind.starts_with("Kickstart") || kind.starts_with("Extended"))
        return extractfromrom(source, name, component);
    if (kind.starts_with("Library Archive")) return extractfromarchive(source, name, component);
    message(kResult, "ERROR: Component specified, but unknown FileType in hash file %s\n",
            source.hashpath.c_str());
    return 1;
}

int loadmember(const std::string& path, View data, const std::string& name, Component& component) {
    const std::string hash = hexlong(crc32buf(data));
    std::string hashpath = findhashfile(hash.c_str());
    message(kProgress, "Looking for hash %s found %s\n", hash.c_str(), hashpath.c_str());
    if (hashpath.empty()) {
        message(kResult, "ERROR: Component specified, but can't find hash %s for file %s\n", hash.c_str(),
                path.c_str());
        return 1;
    }
    auto ini = loadinifile(hashpath);
    if (!ini) {
        message(kResult, "ERROR: Unable to open INI file %s\n", hashpath.c_str());
        return 1;
    }
    return extractbytype({path, data, std::move(hashpath), std::move(*ini)}, name, component);
}

} // namespace

int loadcomponent(const std::string& path, const std::string& name, Component& component) {
    const auto file = readfile(path);
    if (!file || !file->iscomplete()) {
        message(kResult, "ERROR: Unable to open file %s\n", path.c_str());
        return 1;
    }
    if (name.empty()) return loadwhole(path, file->bytes, component);
    return loadmember(path, file->bytes, name, component);
}

} // namespace vantorel
