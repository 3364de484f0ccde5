// Programs of others around a job: those that an installation attaches to its stages, and the user's viewer.
#pragma once

#include <string>

#include "common/teskel_custom_2021.h"

namespace companions::render {

// Runs the programs of the user's ini file, each with the PDF's path as its argument, those of pages with the
// page's number behind it; waits for their end, at most kStageSeconds.
class StagePrograms {
public:
    StagePrograms(const std::wstring& document, std::wstring pdf);

    // A stage of TeskelCustom2021; `page` counts from 1, 0 for the document's stages. Without a program of
    // that stage nothing happens.
    void run(size_t stage, unsigned page = 0) const;

    static constexpr unsigned kStageSeconds = 60;

private:
    std::wstring pdf_;
    std::wstring programs_[4];
};

// Opens the PDF with the program that ZR_VIEWER names, or else, where its name ends in ".pdf", the user's
// own; "none" opens nothing.
void open_with_viewer(const std::wstring& pdf);

}  // namespace companions::render
