#pragma once
// Files of the host: read whole or piece by piece, written in one go.

#include "base/bytes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vantorel {

/// A file open for reading, closed with the object. A directory counts as a file that cannot be opened, and
/// so does one that would get descriptor 0. Opening a pipe nobody writes to does not wait.
class InputFile {
public:
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    [[nodiscard]] bool isopen() const { return descriptor > 0; }

    /// Bytes in the file when it was opened, as the file system says; 0 for what has no size.
    [[nodiscard]] int64_t size() const { return length; }

    /// The next bytes of the file into `buffer`: how many came, fewer than asked only at the end or on an
    /// error.
    [[nodiscard]] size_t read(std::span<uint8_t> buffer);

private:
    int descriptor = -1;
    int64_t length = 0;
};

/// A file's contents, and how many bytes the file system promised.
struct FileContents {
    Bytes bytes;
    int64_t iExpected = 0;

    [[nodiscard]] bool iscomplete() const { return static_cast<int64_t>(bytes.size()) == iExpected; }
};

/// The largest file that is read whole, in bytes: what a signed 32-bit size can hold.
inline constexpr int64_t iFileSizeMax = 0x7FFFFFFF;

/// Reads a file whole. None when it cannot be opened. Of a file above `iFileSizeMax` nothing is read, so it
/// comes back incomplete, as does one that ends early.
[[nodiscard]] std::optional<FileContents> readfile(const std::string& path);

/// Opens `path` for writing, emptied, or made with `permissions` (less the umask). Returns the descriptor,
/// the caller's to close; -1 when it cannot be opened. A pipe that nobody reads from is not waited for but
/// cannot be opened.
[[nodiscard]] int openoutput(const std::string& path, unsigned permissions);

/// A file open for writing, emptied or made with permission bits 0755 by `openoutput`, closed with the
/// object.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    [[nodiscard]] bool isopen() const { return handle >= 0; }

    /// The descriptor, -1 when the file is not open.
    [[nodiscard]] int descriptor() const { return handle; }

    /// Appends `bytes`. After a failure (a full disk) what was written so far stays and nothing more is.
    void write(View bytes);

    /// Closes the file: whether it was open and all of it was written.
    bool close();

private:
    int handle = -1;
    bool good = true;
};

enum class WriteResult { Written, NotOpened, NotWritten };

/// Writes `bytes` to the file `path` in one go.
[[nodiscard]] WriteResult writefile(const std::string& path, View bytes);

// The two lines that tell of an output file's failure, above level 0.
void reportnotopened(const std::string& path);
void reportnotwritten(const std::string& path);

/// `writefile` with those lines. Returns 0; 1 when the file could not be opened or written in full.
int savefile(const std::string& path, View bytes);

} // namespace vantorel
