#include "support/fixture_rom.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <utility>

namespace vantorel::test {

const char* const fixtureromhelp =
    "ROM OPTIONS, taken in order; numbers are decimal or 0x..., with k or m behind them:\n"
    "  --size N         image size, 512k unless given\n"
    "  --base N         CPU address, 0xF80000 (of a 256K image 0xFC0000) unless given\n"
    "  --module K=V,... a module with a ROMTAG: name, id (CR LF is added), size, start, tag, flags, version, "
    "type,\n"
    "                   priority, init (manual, auto32, auto16), datasize, functions, initstruct (none, "
    "library),\n"
    "                   calls, seed, endskip, badmatch (1), pointer (MODULE:OFFSET, may be repeated)\n"
    "  --data K=V,...   a block without one: name, size, start, seed, pointer\n"
    "  --gap N          N bytes of fill before the next module\n"
    "  --poke OFFSET=N  one byte, overwritten before the checksum is made\n"
    "  --fill BYTE  --split  --noheader  --nochecksum  --nosize  --novectors  --version N  --revision N\n"
    "  --hashes DIR     writes the ROM's and its components' hash files too\n"
    "  --title TEXT     title in the ROM's hash file\n"
    "  --nocomponents   an empty component map in the ROM's hash file\n";

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

bool startskey(const std::string& text, size_t at) {
    const size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz", at);
    return end != std::string::npos && end > at && text[end] == '=';
}

/// "key=value,key=value"; a comma that no key follows belongs to the value.
Pairs pairs(const std::string& text) {
    Pairs found;
    for (size_t at = 0; at < text.size();) {
        if (!startskey(text, at)) throw UsageError(text.substr(at) + " is not key=value");
        size_t end = text.find(',', at);
        while (end != std::string::npos && !startskey(text, end + 1))
            end = text.find(',', end + 1);
        const std::string pair = text.substr(at, end == std::string::npos ? end : end - at);
        const size_t equals = pair.find('=');
        found.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
        at = end == std::string::npos ? text.size() : end + 1;
    }
    return found;
}

Pointer pointer(const std::string& text) {
    const size_t colon = text.find(':');
    if (colon == std::string::npos) return {text, 0};
    return {text.substr(0, colon), fixturenumber(text.substr(colon + 1))};
}

Init init(const std::string& text) {
    if (text == "manual") return Init::Manual;
    if (text == "auto32") return Init::Auto32;
    if (text == "auto16") return Init::Auto16;
    throw UsageError("init is manual, auto32 or auto16");
}

uint8_t byte(const std::string& text) { return static_cast<uint8_t>(fixturenumber(text)); }
uint32_t number32(const std::string& text) { return static_cast<uint32_t>(fixturenumber(text)); }

template <typename Spec>
struct Key {
    const char* name;
    void (*set)(Spec& spec, const std::string& value);
};

using Value = const std::string&;

constexpr std::array aModuleKeys = {
    Key<ModuleSpec>{"name", [](ModuleSpec& m, Value v) { m.name = v; }},
    Key<ModuleSpec>{"id", [](ModuleSpec& m, Value v) { m.idstring = v + "\r\n"; }},
    Key<ModuleSpec>{"size", [](ModuleSpec& m, Value v) { m.size = fixturenumber(v); }},
    Key<ModuleSpec>{"start", [](ModuleSpec& m, Value v) { m.start = fixturenumber(v); }},
    Key<ModuleSpec>{"tag", [](ModuleSpec& m, Value v) { m.tag = fixturenumber(v); }},
    Key<ModuleSpec>{"flags", [](ModuleSpec& m, Value v) { m.flags = byte(v); }},
    Key<ModuleSpec>{"version", [](ModuleSpec& m, Value v) { m.version = byte(v); }},
    Key<ModuleSpec>{"type", [](ModuleSpec& m, Value v) { m.type = byte(v); }},
    Key<ModuleSpec>{"priority",
                    [](ModuleSpec& m, Value v) { m.priority = static_cast<int8_t>(fixturenumber(v)); }},
    Key<ModuleSpec>{"init", [](ModuleSpec& m, Value v) { m.init = init(v); }},
    Key<ModuleSpec>{"datasize", [](ModuleSpec& m, Value v) { m.datasize = number32(v); }},
    Key<ModuleSpec>{"functions", [](ModuleSpec& m, Value v) { m.functions = fixturenumber(v); }},
    Key<ModuleSpec>{"initstruct",
                    [](ModuleSpec& m, Value v) { m.initstruct = v == "library" ? libraryinit() : Bytes(); }},
    Key<ModuleSpec>{"calls", [](ModuleSpec& m, Value v) { m.calls = fixturenumber(v); }},
    Key<ModuleSpec>{"seed", [](ModuleSpec& m, Value v) { m.seed = number32(v); }},
    Key<ModuleSpec>{"endskip", [](ModuleSpec& m, Value v) { m.endskip = fixturenumber(v); }},
    Key<ModuleSpec>{"badmatch", [](ModuleSpec& m, Value v) { m.badmatch = v != "0"; }},
    Key<ModuleSpec>{"pointer", [](ModuleSpec& m, Value v) { m.pointers.push_back(pointer(v)); }},
};

constexpr std::array aDataKeys = {
    Key<DataSpec>{"name", [](DataSpec& d, Value v) { d.name = v; }},
    Key<DataSpec>{"size", [](DataSpec& d, Value v) { d.size = fixturenumber(v); }},
    Key<DataSpec>{"start", [](DataSpec& d, Value v) { d.start = fixturenumber(v); }},
    Key<DataSpec>{"seed", [](DataSpec& d, Value v) { d.seed = number32(v); }},
    Key<DataSpec>{"pointer", [](DataSpec& d, Value v) { d.pointers.push_back(pointer(v)); }},
};

template <typename Spec, size_t count>
Spec parse(const std::array<Key<Spec>, count>& keys, const std::string& text) {
    Spec spec;
    for (const auto& [name, value] : pairs(text)) {
        const auto key =
            std::ranges::find_if(keys, [&wanted = name](const auto& k) { return wanted == k.name; });
        if (key == keys.end()) throw UsageError("unknown key " + name);
        key->set(spec, value);
    }
    return spec;
}

void poke(RomBuilder& rom, const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) throw UsageError("--poke OFFSET=N");
    const Bytes single = {byte(text.substr(equals + 1))};
    rom.overwrite(fixturenumber(text.substr(0, equals)), single);
}

/// The order in the making.
struct Making {
    RomBuilder rom;
    FixtureRom order{};
    HeaderSpec header{};
    bool isnocomponents = false;
};

struct Option {
    const char* name;
    bool hasvalue;
    void (*apply)(Making& making, const std::string& value);
};

constexpr std::array aOptions = {
    Option{"--module", true, [](Making& m, Value v) { m.rom.module(parse<ModuleSpec>(aModuleKeys, v)); }},
    Option{"--data", true, [](Making& m, Value v) { m.rom.data(parse<DataSpec>(aDataKeys, v)); }},
    Option{"--gap", true, [](Making& m, Value v) { m.rom.gap(fixturenumber(v)); }},
    Option{"--poke", true, [](Making& m, Value v) { poke(m.rom, v); }},
    Option{"--fill", true, [](Making& m, Value v) { m.rom.fill(byte(v)); }},
    Option{"--split", false, [](Making& m, Value) { m.rom.split(); }},
    Option{"--noheader", false, [](Making& m, Value) { m.rom.noheader(); }},
    Option{"--nochecksum", false, [](Making& m, Value) { m.rom.nochecksum(); }},
    Option{"--nosize", false, [](Making& m, Value) { m.rom.nosize(); }},
    Option{"--novectors", false, [](Making& m, Value) { m.rom.novectors(); }},
    Option{"--version", true,
           [](Making& m, Value v) { m.header.version = static_cast<uint16_t>(fixturenumber(v)); }},
    Option{"--revision", true,
           [](Making& m, Value v) { m.header.revision = static_cast<uint16_t>(fixturenumber(v)); }},
    Option{"--hashes", true, [](Making& m, Value v) { m.order.hashes = v; }},
    Option{"--title", true, [](Making& m, Value v) { m.order.text.title = v; }},
    Option{"--nocomponents", false, [](Making& m, Value) { m.isnocomponents = true; }},
};

RomBuilder begin(std::vector<std::string>& arguments, bool isstandard) {
    const int32_t size = fixturenumber(takeoption(arguments, "--size", "512k"));
    const uint32_t usual = size <= 256 * 1024 ? 0xFC0000 : 0xF80000;
    const std::string base = takeoption(arguments, "--base", "");
    const uint32_t address = base.empty() ? usual : number32(base);
    return isstandard ? standardbuilder(size, address) : RomBuilder(size, address);
}

} // namespace

FixtureRom fixturerom(std::vector<std::string>& arguments, bool isstandard) {
    Making making{.rom = begin(arguments, isstandard)};
    std::vector<std::string> rest;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const auto option =
            std::ranges::find_if(aOptions, [&](const Option& o) { return arguments[i] == o.name; });
        if (option == aOptions.end()) {
            rest.push_back(arguments[i]);
            continue;
        }
        if (option->hasvalue && ++i == arguments.size())
            throw UsageError(arguments[i - 1] + " needs a value");
        option->apply(making, arguments[i]);
    }
    arguments = rest;
    making.order.rom = making.rom.header(making.header).build();
    if (making.isnocomponents) making.order.rom.map.clear();
    return std::move(making.order);
}

std::string takeoption(std::vector<std::string>& arguments, const std::string& name,
                       const std::string& otherwise) {
    const auto found = std::ranges::find(arguments, name);
    if (found == arguments.end()) return otherwise;
    if (found + 1 == arguments.end()) throw UsageError(name + " needs a value");
    std::string value = *(found + 1);
    arguments.erase(found, found + 2);
    return value;
}

int32_t fixturenumber(const std::string& text) {
    const bool isnegative = text.starts_with("-");
    const bool ishex = text.starts_with("0x") || text.starts_with("0X");
    const char* first = text.data() + (ishex ? 2 : isnegative ? 1 : 0);
    const char* last = text.data() + text.size();
    uint64_t value = 0;
    const auto result = std::from_chars(first, last, value, ishex ? 16 : 10);
    const std::string suffix(result.ptr, last);
    if (result.ec != std::errc() || (!suffix.empty() && suffix != "k" && suffix != "m"))
        throw UsageError(text + " is not a number");
    value <<= suffix == "k" ? 10 : suffix == "m" ? 20 : 0;
    if (value > 0xFFFFFFFF) throw UsageError(text + " is too large");
    return static_cast<int32_t>(isnegative ? 0 - static_cast<uint32_t>(value) : static_cast<uint32_t>(value));
}

} // namespace vantorel::test
