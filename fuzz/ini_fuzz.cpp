// INI texts from hostile hands: whatever the bytes, every line and every answer lies inside the buffer.

#include "base/bytes.h"
#include "hash/ini.h"
#include "input.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace vantorel::test {
namespace {

// Looking up every key by linear search is quadratic; some keys show as much.
constexpr int32_t kLookups = 64;

void require(bool holds) {
    if (!holds) std::abort();
}

/// Whether `text` and the NUL that ends it lie inside the buffer.
bool isinside(const IniFile& ini, const char* text) {
    const char* const begin = ini.pcBuffer.data();
    const char* const end = begin + ini.pcBuffer.size();
    return text >= begin && text < end && std::memchr(text, 0, static_cast<size_t>(end - text)) != nullptr;
}

void checklines(const IniFile& ini) {
    require(ini.iLines() > 0);
    for (int32_t number = 0; number < ini.iLines(); ++number)
        require(isinside(ini, ini.line(number)));
    require(std::ranges::is_sorted(ini.ipLines));
}

/// The sections follow each other without a gap, up to the last line.
void checksections(const IniFile& ini) {
    require(ini.ipItems.size() == ini.ipSections.size());
    for (int32_t section = 0; section < ini.iSections(); ++section) {
        const bool islast = section + 1 == ini.iSections();
        const int32_t next = islast ? ini.iLines() : ini.firstline(section + 1) - 1;
        require(ini.ipItems[static_cast<size_t>(section)] >= 0);
        require(ini.firstline(section) + ini.lines(section).size() == next);
    }
}

/// Asks for a section by its own name, and for its keys.
void checklookups(const IniFile& ini, int32_t section) {
    const char* const name = ini.head(section);
    const int32_t found = readinisection(ini, name);
    require(found >= 0 && found <= section);
    int32_t tried = 0;
    for (const std::string line : ini.lines(found)) {
        if (++tried > kLookups) return;
        const size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        const char* const value = readiniitem(ini, name, line.substr(0, equals).c_str());
        require(value != nullptr && isinside(ini, value));
    }
}

/// Names and keys that are in the file by chance or not at all.
void checkforeignlookups(const IniFile& ini, const std::string& text) {
    const std::string half = text.substr(0, text.size() / 2);
    for (const char* key : {"", "Title", "RELOC", half.c_str()})
        for (const char* section : {"", "Description", "Components", half.c_str()}) {
            const char* const value = readiniitem(ini, section, key);
            require(value == nullptr || isinside(ini, value));
        }
}

void check(View input) {
    const IniFile ini = parseini({input.begin(), input.end()});
    require(ini.pcBuffer.size() == input.size() + 1);
    checklines(ini);
    checksections(ini);
    for (int32_t section = 0; section < std::min(ini.iSections(), kLookups); ++section)
        checklookups(ini, section);
    checkforeignlookups(ini, std::string(input.begin(), input.end()));
}

} // namespace

void exercise(View bytes) { check(bytes); }

} // namespace vantorel::test
