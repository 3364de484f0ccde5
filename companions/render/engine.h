// Running Ghostscript: a Unix program below Wine, a Windows program elsewhere.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace companions::render {

class Engine {
public:
    enum class End {
        kDone,     // exit code 0
        kFailed,   // another exit code
        kMissing,  // not there or not to be started
        kStopped,  // crashed, killed or out of time
    };

    // The engine that ZR_GHOSTSCRIPT names (a Unix path when it begins with a slash), else "gs" on the Unix
    // PATH below Wine, else "gswin64c.exe" on the PATH.
    Engine();
    explicit Engine(std::wstring program);

    // A path as the engine opens it; nothing when the engine has no way to.
    [[nodiscard]] std::optional<std::string> find_path(const std::wstring& path) const;

    // Runs the engine to its end, or until it has used the seconds that ZR_RENDER_SECONDS allows
    // (kUsualSeconds; processor time below Wine). Its output goes to `log` in the folder `scratch` and, piece
    // by piece, to `output` on the calling thread.
    [[nodiscard]] End run(const std::vector<std::string>& arguments, const std::wstring& scratch,
                          const std::function<void(std::string_view)>& output) const;

    static constexpr unsigned kUsualSeconds = 1800;

private:
    [[nodiscard]] std::vector<std::string> unix_command(const std::vector<std::string>& arguments,
                                                        const std::wstring& scratch,
                                                        const std::wstring& log) const;

    std::wstring program_;
    bool unix_ = false;
};

// One word of a Windows command line, quoted so that a C run-time library reads it back as it is.
[[nodiscard]] std::wstring quoted(std::wstring_view word);

}  // namespace companions::render
