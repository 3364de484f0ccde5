// Where a job's PDF shall go, as the person who prints asked for it.
#pragma once

#include <string>

namespace host {

// Tells the dialog library, through its environment variables, to ask nobody and where to put the PDF. A
// folder takes PDFs under the names that the library gives them. For a PDF of a given name the library works
// in a folder of the job's own beside it, from where the finished file takes that name.
class OutputTarget {
public:
    // An empty `output` leaves everything to the dialog library. Throws HostError (usage) when the folder
    // cannot be made.
    explicit OutputTarget(const std::wstring& output);
    ~OutputTarget();
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;

    // Whether the dialog library shows no window.
    [[nodiscard]] bool unattended() const noexcept { return !folder_.empty(); }

    // Gives the finished PDF at `path` its final name, replacing an older one; returns that name, or `path`
    // where the library's own name stands. Throws HostError (job failed) when it cannot be moved.
    [[nodiscard]] std::wstring settle(const std::wstring& path) const;

private:
    std::wstring folder_;  // that the dialog library works in
    std::wstring file_;    // the PDF's final path; empty: the library's name stands
};

}  // namespace host
