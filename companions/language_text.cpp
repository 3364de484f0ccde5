#include "companions/language_text.h"

#include <utility>

#include "common/qk/handle.h"
#include "common/qk/resource_dll.h"

namespace companions {

std::wstring language_text(UINT id) {
    for (const std::wstring& code : {qk::language_code(), std::wstring(L"en")}) {
        const auto path = qk::find_installed(L"Language\\zrtk_res_" + code + L".dll");
        const qk::DLL library(path ? LoadLibraryExW(path->c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)
                                   : nullptr);
        if (auto text = qk::find_string(library.get(), id))
            return *std::move(text);
    }
    return {};
}

}  // namespace companions
