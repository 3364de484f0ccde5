#include "print_settings/sections.h"

#include <iterator>

#include "common/qk/resource_dll.h"
#include "common/qk/trace.h"
#include "common/qk/wipe.h"
#include "print_settings/differences.h"
#include "print_settings/field_tables.h"

namespace Corvanta::Vantrix::PrintSettings {

Security_impl::~Security_impl() {
    qk::wipe(MasterPassword);
    qk::wipe(UserPassword);
}

template <class Impl>
bool ps_impl_base<Impl>::equals(const Impl& other) const {
    const Impl& self = static_cast<const Impl&>(*this);
    return all_fields<Impl>([&](const auto& field) { return self.*field.member == other.*field.member; });
}

template <class Impl>
std::vector<std::wstring> ps_impl_base<Impl>::DiffStr(const Impl& newer) const {
    TRACE("DiffStr");
    std::vector<std::wstring> lines;
    display::Differences(lines).compare(qk::load_string(kName<Impl>), static_cast<const Impl&>(*this), newer);
    return lines;
}

template class ps_impl_base<General_impl>;
template class ps_impl_base<Compression_impl>;
template class ps_impl_base<ColorImage_impl>;
template class ps_impl_base<GrayImage_impl>;
template class ps_impl_base<MonoImage_impl>;
template class ps_impl_base<Font_impl>;
template class ps_impl_base<Summary_impl>;
template class ps_impl_base<OpenAction_impl>;
template class ps_impl_base<PDFVersion_impl>;
template class ps_impl_base<Security_impl>;
template class ps_impl_base<Watermark_impl>;
template class ps_impl_base<Color_impl>;
template class ps_impl_base<Notification_impl>;
template class ps_impl_base<Notification_V6_impl>;
template class ps_impl_base<Addition_impl>;

PDFVer pdf_ver(uint32_t version_code) noexcept {
    constexpr PDFVer kVersions[] = {
        PDFVer::_13, PDFVer::_14, PDFVer::_15, PDFVer::_16, PDFVer::_17,  // the versions themselves
        PDFVer::_14,                                                      // PDF/A-1b
        PDFVer::_13, PDFVer::_14,                                         // PDF/X-1a of 2001 and 2003
        PDFVer::_13, PDFVer::_14,                                         // PDF/X-3 of 2002 and 2003
        PDFVer::_16,                                                      // PDF/X-4
        PDFVer::_17,                                                      // PDF/A-2b
        PDFVer::_20,
    };
    return version_code < std::size(kVersions) ? kVersions[version_code] : PDFVer::Unknown;
}

}  // namespace Corvanta::Vantrix::PrintSettings
