#pragma once
// A second decoder, which reads a template character by character and works on nothing but strings. It is
// slow and knows no shortcuts, which is what it is for: the program's must say the same.

#include "base/bytes.h"
#include "missassembler/misstest.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vantorel::test {

/// A mnemonic table before it is written as a file.
struct PlainTable {
    std::vector<std::pair<std::string, std::string>> lines; ///< pattern of 16 characters, template
    std::map<std::string, std::map<int, std::string>>
        sections{}; ///< by name (case ignored), what each key stands for

    [[nodiscard]] std::string text() const;
};

class PlainDecoder {
public:
    PlainDecoder(const PlainTable& itstable, const Bytes& itsimage, uint32_t itsbase)
        : table(itstable), image(itsimage), base(itsbase) {}

    /// The instruction at image offset `offset`.
    [[nodiscard]] Decoded decode(int32_t offset);

    /// The addresses that the last instruction referred to, in its order.
    [[nodiscard]] const std::vector<uint32_t>& addresses() const { return shown; }

private:
    [[nodiscard]] std::string instruction() const;
    void pass();
    size_t code(size_t at);
    [[nodiscard]] std::string lookup(const std::string& name);
    [[nodiscard]] std::string extended(char what);
    [[nodiscard]] std::string displacement(uint32_t word);
    [[nodiscard]] std::string operand(char what);
    [[nodiscard]] std::string address();
    [[nodiscard]] std::string movec(bool isto);
    [[nodiscard]] std::string registers() const;
    [[nodiscard]] uint32_t bits(char a, char b) const;
    [[nodiscard]] uint32_t next(int size);
    void settarget();

    const PlainTable& table;
    const Bytes& image;
    uint32_t base;

    int32_t start = 0;
    int32_t length = 0;
    uint32_t opcode = 0;
    std::string text;
    std::string result;
    int size = 4;
    bool predecrement = false;
    bool hasextension = false;
    uint32_t extension = 0;
    uint32_t mask = 0;
    std::vector<uint32_t> shown;
};

} // namespace vantorel::test
