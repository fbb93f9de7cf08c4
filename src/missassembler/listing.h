#pragma once
// The listing that a walk ends with: on the console and in a file.

#include "base/files.h"
#include "missassembler/walk.h"

#include <string>

namespace vantorel {

/// The file that a walk writes its listing to, in the working directory.
inline constexpr const char* cListingFile = "missassembler.tmp";

/// A listing being written. What is added is kept until `close`.
class ListingFile {
public:
    ListingFile() : file(cListingFile) {}

    [[nodiscard]] bool isopen() const { return file.isopen(); }

    /// Adds to the file alone.
    void add(const std::string& line) { text += line; }

    /// Adds to the file and prints, unconditionally.
    void print(const std::string& line);

    /// Writes what was added and closes the file; an error line when it could not be written in full.
    void close();

private:
    OutputFile file;
    std::string text;
};

/// Lists every byte of the component: what is marked as code as instructions, the rest as its records say or
/// as rows of bytes. Ends with the line that counts both.
void listwalk(const Walk& walk, ListingFile& listing);

} // namespace vantorel
