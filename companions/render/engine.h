// Running Ghostscript and qpdf: Unix programs below Wine, Windows programs elsewhere.
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

    // Ghostscript: what ZR_GHOSTSCRIPT names, else "gs" on the Unix PATH below Wine, else "gswin64c.exe" on
    // the PATH. Below Wine a name is a Unix program's unless it ends with ".exe".
    Engine();
    explicit Engine(std::wstring program);
    // The same with ZR_QPDF, "qpdf" and "qpdf.exe".
    [[nodiscard]] static Engine qpdf();

    // A path as the engine opens it; nothing when the engine has no way to.
    [[nodiscard]] std::optional<std::string> find_path(const std::wstring& path) const;

    // Runs the engine to its end, or until it has used the seconds that ZR_RENDER_SECONDS allows
    // (kUsualSeconds; processor time below Wine) or the job is given up; it also ends with this process. Its
    // output goes to `log` in the folder `scratch` and, piece by piece, to `output` on the calling thread.
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

}  // namespace companions::render
