#pragma once
#include <string>

namespace Deglare {

// The file that becomes OUTPUT: written under a hidden name beside it and renamed over it only
// when everything went well, so that a failure or an interruption never leaves a half-written
// OUTPUT and never touches one that was there before.
class TemporaryOutput {
public:
    // Checks OUTPUT (not INPUT, not a folder, in a folder that exists and takes new files) and
    // makes the empty temporary file. Throws Failure naming the file and the cause.
    TemporaryOutput(const std::string& output, const std::string& input);
    ~TemporaryOutput();
    TemporaryOutput(const TemporaryOutput&) = delete;
    TemporaryOutput& operator=(const TemporaryOutput&) = delete;

    const std::string& Path() const { return m_temporary; }
    // Gives the finished file OUTPUT's name.
    void Commit();
    // Removes the temporary file now.
    void Discard();

    // The checks of the constructor that need no file to be made.
    static void Check(const std::string& output, const std::string& input);

private:
    std::string m_output;
    std::string m_temporary;
    unsigned m_mode = 0644;
    bool m_done = false;
};

} // namespace Deglare
