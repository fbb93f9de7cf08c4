#pragma once
// Catches what the program prints, so that a test can compare it.

#include <string>

namespace vantorel::test {

/// Everything printed to standard output, through C stdio or straight to descriptor 1, from construction on.
/// Nothing of it reaches the real standard output. Captures may be nested: the innermost one gets the text.
class Capture {
public:
    /// Throws std::system_error when standard output cannot be turned aside.
    Capture();
    /// Restores standard output; a text not asked for is lost.
    ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// Ends the capture, restoring standard output, and gives the text. Later calls give the same text.
    std::string text();

private:
    void finish();

    int saved = -1;  ///< the real standard output, -1 once it is restored
    int memory = -1; ///< the file in memory that stands in for it
    std::string caught;
};

/// What `run()` prints.
template <typename Run>
[[nodiscard]] std::string captured(Run run) {
    Capture capture;
    run();
    return capture.text();
}

} // namespace vantorel::test
