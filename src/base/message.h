#pragma once
// The one door through which the program speaks: every line for the user passes a threshold here.

#include <cstdint>

namespace vantorel {

/// The verbosity, 0 or more. Set by the `loglevel` command alone.
extern int32_t iLogLevel;

/// A message with threshold t appears while `iLogLevel` > t.
enum Threshold : int {
    kAlways = -1,  ///< unconditional
    kResult = 0,   ///< errors and results
    kProgress = 1, ///< progress and summaries
    kTrace = 5,    ///< debug traces
    kChatty = 7,   ///< very chatty traces
    kDetail = 8,   ///< traces of every single item
    kRaw = 9       ///< pointers and raw lines
};

/// Whether a message with this threshold would be printed; for loops that would only format what nobody sees.
[[nodiscard]] inline bool isshown(Threshold threshold) { return iLogLevel > threshold; }

/// Prints to standard output, printf fashion, when the threshold lets it through. Not flushed.
[[gnu::format(printf, 2, 3)]] void message(Threshold threshold, const char* format, ...);

} // namespace vantorel
