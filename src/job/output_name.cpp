#include "job/output_name.h"

#include <algorithm>

#include "common/qk/file_name.h"
#include "common/qk/registry.h"
#include "common/qk/text.h"
#include "common/qk/trace.h"

namespace {

constexpr std::wstring_view kPrefixes[] = {L"Microsoft Word - ", L"Microsoft PowerPoint - ", L"Visio-",
                                           L"Taro13-", L"Taro-"};
constexpr std::wstring_view kMiwPrefix = L"MIW(";
constexpr size_t kMostUnits = 512;

// The current user's value, when present, wins over the machine's.
bool cuts_off_by_period() {
    constexpr wchar_t kValue[] = L"Cutoff_by_period";
    const auto machine = qk::registry::find_number(HKEY_LOCAL_MACHINE, qk::registry::kSpecial, kValue);
    const auto user =
        qk::registry::find_number(qk::registry::CurrentUser().get(), qk::registry::kSpecial, kValue);
    return user.value_or(machine.value_or(0)) != 0;
}

}  // namespace

std::wstring SetPDFname(const wchar_t* document_name) {
    TRACE("SetPDFname");
    TRACE(document_name ? document_name : L"");
    if (!document_name || !*document_name)
        return L"no_name.pdf";
    return pdf_name(document_name, cuts_off_by_period());
}

std::wstring pdf_name(std::wstring_view document_name, bool cut_off_by_period) {
    if (!cut_off_by_period)
        return std::wstring(document_name) + L".pdf";
    const size_t last = document_name.size() - 1;
    const size_t slash = document_name.rfind(L'\\');
    const size_t start = slash == std::wstring_view::npos ? 0 : slash + 1;
    size_t dot = std::min(document_name.rfind(L'.'), last);
    if (dot < start)
        dot = last;
    const std::wstring name(document_name.substr(start, std::min(dot + 1 - start, kMostUnits)));
    // A final period counts as no extension: "Report." becomes "Report..pdf".
    return name + (dot == last ? L".pdf" : L"pdf");
}

std::wstring CleanJobTitle(std::wstring_view document_name) {
    TRACE("CleanJobTitle");
    for (const std::wstring_view prefix : kPrefixes)
        if (document_name.starts_with(prefix))
            return std::wstring(document_name.substr(prefix.size()));  // even when nothing is left
    std::wstring_view title = document_name;
    if (title.starts_with(kMiwPrefix)) {
        title.remove_prefix(kMiwPrefix.size());
        const size_t closing = title.find(L')');
        if (closing != std::wstring_view::npos)
            title.remove_prefix(closing + 1);
    }
    return title.empty() ? L"no_name" : std::wstring(title);
}

bool ends_in_pdf(std::wstring_view path) noexcept {
    return qk::ends_with_no_case(path, kPdfExtension);
}

std::wstring safe_stem(std::wstring_view title) {
    std::wstring safe = qk::safe_file_name(title, L' ');
    if (ends_in_pdf(safe))
        safe =
            qk::safe_file_name(std::wstring_view(safe).substr(0, safe.size() - kPdfExtension.size()), L' ');
    return safe.empty() ? L"no_name" : safe;
}
