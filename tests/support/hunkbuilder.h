#pragma once
// Makes Amiga load files block by block, sound ones and any others.
//
//     const Bytes file = HunkBuilder()
//                            .header({.sizes = {2, 1}})
//                            .code(longs({0x4E714E75, 4})).reloc32({{.target = 1, .offsets = {4}}}).end()
//                            .data(longs({7})).end()
//                            .bytes();

#include "base/bytes.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace vantorel::test {

/// These longs, big-endian.
[[nodiscard]] Bytes longs(const std::vector<uint32_t>& values);

/// The block at the start of a file. What is not given is as a sound file with these sizes has it.
struct HunkHeader {
    std::vector<uint32_t> sizes{}; ///< of each hunk in longs, memory flags and all
    uint32_t names = 0;            ///< resident libraries
    std::optional<uint32_t> table{};
    uint32_t first = 0;
    std::optional<uint32_t> last{};
};

/// Longs of the hunk before that hold addresses of hunk `target`.
struct RelocGroup {
    uint32_t target = 0;
    std::vector<uint32_t> offsets{};
    std::optional<uint32_t> count{}; ///< when it is not that of the offsets
};

struct Symbol {
    std::string name;
    uint32_t value = 0;
};

/// Appends one block after the other. A count that is given stands in the file in place of the true one.
class HunkBuilder {
public:
    using Count = std::optional<uint32_t>;

    HunkBuilder& header(const HunkHeader& spec);
    HunkBuilder& code(View contents, Count count = {});
    HunkBuilder& data(View contents, Count count = {});
    HunkBuilder& bss(uint32_t count);
    HunkBuilder& reloc32(const std::vector<RelocGroup>& groups);
    HunkBuilder& drel32(const std::vector<RelocGroup>& groups);
    HunkBuilder& symbols(const std::vector<Symbol>& list, Count firstlength = {});
    HunkBuilder& debug(View contents, Count count = {});
    HunkBuilder& end();
    /// Any block: its longs as they stand in the file, the id first.
    HunkBuilder& block(const std::vector<uint32_t>& values);

    [[nodiscard]] const Bytes& bytes() const { return file; }
    /// The file offset behind each block, ascending.
    [[nodiscard]] const std::vector<size_t>& blockends() const { return ends; }

private:
    HunkBuilder& counted(uint32_t id, View contents, Count count);
    HunkBuilder& finish();

    Bytes file;
    std::vector<size_t> ends;
};

} // namespace vantorel::test
