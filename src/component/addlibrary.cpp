#include "component/addlibrary.h"

#include "adf/hostfile.h"
#include "audit/basename.h"
#include "base/message.h"
#include "component/loadcomponent.h"
#include "component/placement.h"
#include "hash/crc32.h"
#include "hash/hashfile.h"
#include "hash/ini.h"
#include "hash/library.h"
#include "rom/store.h"

#include <optional>
#include <string_view>

namespace vantorel {

namespace {

void addfromfile(int32_t rom, const std::string& path, const std::string& name) {
    Component record;
    if (loadcomponent(path, name, record) == 0) addcomponent(rom, record);
}

void addfromdisk(int32_t rom, const std::string& path) {
    const auto host = hostfile(path);
    if (!host) {
        message(kResult, "ERROR: Unable to open file %s\n", path.c_str());
        return;
    }
    Component record;
    if (loadcomponent(*host, "", record) != 0) return;
    record.pcName = mBasename(path.c_str());
    record.pcHash = record.pcName;
    addcomponent(rom, record);
}

// Whether slot `rom` holds a library called `name`.
bool holdslibrary(int32_t rom, const std::string& name) {
    for (const Component& component : findslot(rom)->psComponents) {
        if (!component.pcLibString || !component.pcName) continue;
        if (equalnocase(*component.pcName, name)) return true;
        message(kTrace, "comparing %s with %s\n", shown(component.pcName), name.c_str());
    }
    return false;
}

// The key of a line that tells of a library.
std::optional<std::string> candidate(std::string_view line) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.find(",Library:") == std::string_view::npos)
        return std::nullopt;
    return std::string(line.substr(0, equals));
}

void addcandidate(int32_t rom, const std::string& path, const std::string& key) {
    message(kTrace, "Possibly adding %s by wildcard\n", key.c_str());
    if (holdslibrary(rom, key)) {
        message(kResult, "Ignoring %s, already in the ROM\n", key.c_str());
        return;
    }
    message(kResult, "Adding %s by wildcard\n", key.c_str());
    Component record;
    if (loadcomponent(path, key, record) == 0)
        addcomponent(rom, record);
    else
        message(kResult, "ERROR: Couldn't load component %s\n", key.c_str());
}

void addmatching(int32_t rom, const std::string& path, const IniFile& ini, const std::string& prefix) {
    const int32_t section = readinisection(ini, cComponentsSection);
    if (section <= 0) return; // hash files begin with their description
    for (int32_t item = 0; item < ini.items(section); ++item) {
        const auto key = candidate(ini.line(ini.firstline(section) + item));
        if (!key) continue;
        message(kProgress, "Candidate [%s]\n", key->c_str());
        message(kRaw, "Compare [%s] [%s] %d\n", key->c_str(), prefix.c_str(),
                static_cast<int32_t>(prefix.size()));
        if (startswithnocase(*key, prefix)) addcandidate(rom, path, *key);
    }
}

void addbywildcard(int32_t rom, const std::string& path, const std::string& prefix) {
    message(kResult, "Wildcard add of component\n");
    const std::string hash = formatted("0x%08x", crc32file(path));
    message(kRaw, "CRC32:%s\n", hash.c_str());
    const std::string hashpath = findhashfile(hash.c_str());
    message(kTrace, "Looking for hash %s [%s]\n", hash.c_str(), hashpath.c_str());
    if (hashpath.empty()) {
        message(kResult, "ERROR, no hash file for %s\n", path.c_str());
        return;
    }
    if (const auto ini = loadinifile(hashpath)) {
        message(kProgress, "Hash file found\n");
        addmatching(rom, path, *ini, prefix);
    }
}

} // namespace

void addlibrary(int32_t rom, const std::string& path, const std::string& name) {
    if (requireslot(rom) == nullptr) return;
    if (isadfpath(path))
        addfromdisk(rom, path);
    else if (name.ends_with('*'))
        addbywildcard(rom, path, name.substr(0, name.size() - 1));
    else
        addfromfile(rom, path, name);
}

} // namespace vantorel
