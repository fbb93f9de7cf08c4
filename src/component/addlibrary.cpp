#include "component/addlibrary.h"

#include "adf/hostfile.h"
#include "audit/basename.h"
#include "base/files.h"
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

// A line that tells of a library.
struct Candidate {
    std::string key;
    std::string hash;
};

std::optional<Candidate> candidate(std::string_view line) {
    constexpr std::string_view librarytype = ",Library:";
    const size_t equals = line.find('=');
    const size_t type = line.find(librarytype);
    if (equals == std::string_view::npos || equals == 0 || type == std::string_view::npos)
        return std::nullopt;
    return Candidate{std::string(line.substr(0, equals)),
                     std::string(line.substr(type + librarytype.size()))};
}

// Adds the libraries of a file whose names begin with a prefix. Each is looked up on its own, so what is read
// for all of them together has a bound.
class WildcardAdder {
public:
    WildcardAdder(int32_t slotnumber, const std::string& file, const std::string& start)
        : rom(slotnumber), path(file), prefix(start) {}

    void add(const IniFile& ini) {
        const int32_t section = readinisection(ini, cComponentsSection);
        if (section <= 0) return; // hash files begin with their description
        each = InputFile(path).size() + static_cast<int64_t>(ini.pcBuffer.size());
        for (const char* const line : ini.lines(section)) {
            if (const auto found = candidate(line)) consider(*found);
            if (work <= iWorkMost) continue;
            message(kResult, "ERROR: There is too much to read for %s, leaving off\n", path.c_str());
            return;
        }
    }

private:
    static constexpr int64_t iWorkMost = int64_t{512} << 20;

    void consider(const Candidate& found) {
        message(kProgress, "Candidate [%s]\n", found.key.c_str());
        message(kRaw, "Compare [%s] [%s] %d\n", found.key.c_str(), prefix.c_str(),
                static_cast<int32_t>(prefix.size()));
        if (!startswithnocase(found.key, prefix)) return;
        message(kTrace, "Possibly adding %s by wildcard\n", found.key.c_str());
        if (holdslibrary(rom, found.key)) {
            message(kResult, "Ignoring %s, already in the ROM\n", found.key.c_str());
            return;
        }
        message(kResult, "Adding %s by wildcard\n", found.key.c_str());
        work += each + InputFile(findhashfile(found.hash.c_str())).size();
        Component record;
        if (loadcomponent(path, found.key, record) == 0)
            addcomponent(rom, record);
        else
            message(kResult, "ERROR: Couldn't load component %s\n", found.key.c_str());
    }

    int32_t rom;
    const std::string& path;
    const std::string& prefix;
    int64_t each = 0; // bytes that are read for every library
    int64_t work = 0; // bytes read so far
};

void addbywildcard(int32_t rom, const std::string& path, const std::string& prefix) {
    message(kResult, "Wildcard add of component\n");
    const std::string hash = hexlong(crc32file(path));
    message(kRaw, "CRC32:%s\n", hash.c_str());
    const std::string hashpath = findhashfile(hash.c_str());
    message(kTrace, "Looking for hash %s [%s]\n", hash.c_str(), hashpath.c_str());
    if (hashpath.empty()) {
        message(kResult, "ERROR, no hash file for %s\n", path.c_str());
        return;
    }
    if (const auto ini = loadinifile(hashpath)) {
        message(kProgress, "Hash file found\n");
        WildcardAdder(rom, path, prefix).add(*ini);
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
