#include "support/hunkbuilder.h"

namespace vantorel::test {

namespace {

// Written out here, so that a mistake in the program's own table cannot hide.
enum Id : uint32_t {
    kCode = 1001,
    kData = 1002,
    kBss = 1003,
    kReloc32 = 1004,
    kSymbol = 1008,
    kDebug = 1009,
    kEnd = 1010,
    kHeader = 1011,
    kDrel32 = 1015
};

uint32_t sizeof32(const std::vector<uint32_t>& values) { return static_cast<uint32_t>(values.size()); }

} // namespace

Bytes longs(const std::vector<uint32_t>& values) {
    Bytes bytes;
    for (const uint32_t value : values)
        appendlong(bytes, value);
    return bytes;
}

HunkBuilder& HunkBuilder::block(const std::vector<uint32_t>& values) {
    for (const uint32_t value : values)
        appendlong(file, value);
    return finish();
}

HunkBuilder& HunkBuilder::header(const HunkHeader& spec) {
    const uint32_t count = sizeof32(spec.sizes);
    std::vector<uint32_t> values = {kHeader, spec.names, spec.table.value_or(count), spec.first,
                                    spec.last.value_or(count - 1)};
    values.insert(values.end(), spec.sizes.begin(), spec.sizes.end());
    return block(values);
}

HunkBuilder& HunkBuilder::code(View contents, Count count) { return counted(kCode, contents, count); }

HunkBuilder& HunkBuilder::data(View contents, Count count) { return counted(kData, contents, count); }

HunkBuilder& HunkBuilder::debug(View contents, Count count) { return counted(kDebug, contents, count); }

HunkBuilder& HunkBuilder::bss(uint32_t count) { return block({kBss, count}); }

HunkBuilder& HunkBuilder::end() { return block({kEnd}); }

HunkBuilder& HunkBuilder::reloc32(const std::vector<RelocGroup>& groups) {
    std::vector<uint32_t> values = {kReloc32};
    for (const RelocGroup& group : groups) {
        values.push_back(group.count.value_or(sizeof32(group.offsets)));
        values.push_back(group.target);
        values.insert(values.end(), group.offsets.begin(), group.offsets.end());
    }
    values.push_back(0);
    return block(values);
}

HunkBuilder& HunkBuilder::drel32(const std::vector<RelocGroup>& groups) {
    appendlong(file, kDrel32);
    for (const RelocGroup& group : groups) {
        appendword(file, group.count.value_or(sizeof32(group.offsets)));
        appendword(file, group.target);
        for (const uint32_t offset : group.offsets)
            appendword(file, offset);
    }
    appendword(file, 0);
    if (file.size() % 4 != 0) appendword(file, 0);
    return finish();
}

HunkBuilder& HunkBuilder::symbols(const std::vector<Symbol>& list, Count firstlength) {
    appendlong(file, kSymbol);
    for (const Symbol& symbol : list) {
        const size_t padded = (symbol.name.size() + 3) / 4 * 4;
        appendlong(file, firstlength.value_or(static_cast<uint32_t>(padded / 4)));
        firstlength.reset();
        file.insert(file.end(), symbol.name.begin(), symbol.name.end());
        file.resize(file.size() + padded - symbol.name.size());
        appendlong(file, symbol.value);
    }
    appendlong(file, 0);
    return finish();
}

HunkBuilder& HunkBuilder::counted(uint32_t id, View contents, Count count) {
    appendlong(file, id);
    appendlong(file, count.value_or(static_cast<uint32_t>(contents.size() / 4)));
    file.insert(file.end(), contents.begin(), contents.end());
    return finish();
}

HunkBuilder& HunkBuilder::finish() {
    ends.push_back(file.size());
    return *this;
}

} // namespace vantorel::test
