#pragma once
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "EncoderSettings.h"

namespace Deglare {

// The command line, as given.
struct Options {
    std::string input;
    std::string output;
    std::optional<int> sensitivity;     // as an editor shows it, 0..100
    std::optional<int> maxFrames;       // 1..10
    std::string preset;
    std::string presetFile;
    bool testMode = false;
    bool sequential = false;
    bool analyze = false;
    bool demo = false;
    bool quiet = false;
    std::string report;                 // .json or .csv
    std::string plot;                   // .png or .svg
    std::string bundle;                 // empty: beside the program
    EncoderSettings encoder;
    int threads = 0;                    // 0: one for every two processors
    uint64_t memoryMegabytes = 1024;
};

// What the command line asks for once read.
enum class ParseResult {
    Run,        // the options hold a job
    Done,       // --help or --version was answered
    Invalid,    // a one-line complaint was printed
};

// Reads the command line with its ranges and combinations checked. --help and --version go to
// `out`; a complaint goes to `err` as one line.
ParseResult ParseOptions(int argc, const char* const* argv, Options& options, std::ostream& out, std::ostream& err);

} // namespace Deglare
