// The records of one job in shared memory. Frozen layouts: the rendering module reads and writes the same
// bytes.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/qk/ms_wstring.h"

inline constexpr size_t kRecordTextUnits = 260;  // a text of a record: 259 units and its terminating zero

// Cuts at 259 units whatever stands there, half a surrogate pair too: what a record holds is counted in
// units.
inline void put_record_text(wchar_t (&target)[kRecordTextUnits], std::wstring_view text) noexcept {
    const size_t units = text.copy(target, kRecordTextUnits - 1);
    std::fill(target + units, target + kRecordTextUnits, L'\0');
}

// The text of a record that may lack its terminating zero.
[[nodiscard]] inline std::wstring record_text(const wchar_t (&text)[kRecordTextUnits]) {
    return {text, std::find(text, text + kRecordTextUnits, L'\0')};
}

// Written by the document-event handler at the start of a job, read by the rendering module.
// Block "ZRTK_prn_info_mmf_<thread id of the printing thread>".
struct ZRTKPrintStartInfoC {
    uint8_t resume;  // 1 when the job goes on with one that the dialog library already holds
    uint8_t padding1;
    wchar_t title[kRecordTextUnits];        // the PDF's title: the cleaned job name
    wchar_t output_path[kRecordTextUnits];  // chosen in the dialog
    wchar_t third_text[kRecordTextUnits];   // returned by the dialog
    uint8_t padding2[6];
    uint64_t zero;
    uint64_t first_value;   // the dialog's own
    uint64_t second_value;  // the dialog's own
    uint64_t
        external_record;  // address of the external-call record; means something in the printing process only
    uint64_t third_value;  // the dialog's own
};
static_assert(sizeof(ZRTKPrintStartInfoC) == 1608);
static_assert(offsetof(ZRTKPrintStartInfoC, title) == 2);
static_assert(offsetof(ZRTKPrintStartInfoC, output_path) == 522);
static_assert(offsetof(ZRTKPrintStartInfoC, third_text) == 1042);
static_assert(offsetof(ZRTKPrintStartInfoC, padding2) == 1562);
static_assert(offsetof(ZRTKPrintStartInfoC, zero) == 1568);
static_assert(offsetof(ZRTKPrintStartInfoC, first_value) == 1576);
static_assert(offsetof(ZRTKPrintStartInfoC, second_value) == 1584);
static_assert(offsetof(ZRTKPrintStartInfoC, external_record) == 1592);
static_assert(offsetof(ZRTKPrintStartInfoC, third_value) == 1600);

// Created zeroed at the start of a job, filled by the rendering module, read at the end of the job.
// Block "ZRTK_prn_info_mmf2_<thread id of the printing thread>".
struct ZRTKPrintInfo {
    uint32_t error_code;   // 0 = no error; handed to the error notifier
    uint32_t win32_error;  // left as the printing thread's last error; 0 = none
    qk::MsWString message;
    qk::MsWString caption;  // empty: the product's name
    qk::MsWString pdf_file_name;
};
static_assert(sizeof(ZRTKPrintInfo) == 104);
static_assert(offsetof(ZRTKPrintInfo, win32_error) == 4);
static_assert(offsetof(ZRTKPrintInfo, message) == 8);
static_assert(offsetof(ZRTKPrintInfo, caption) == 40);
static_assert(offsetof(ZRTKPrintInfo, pdf_file_name) == 72);

// Per printer and user, written by the rendering module and the dialog library.
// Block "zrtk_common_mmf_s23rewsd_<printer name>_<user name>".
struct ZRTK_COMMON_MMF {
    static constexpr uint32_t kJobModeValid = 0x400;

    uint8_t unread1[4];
    uint32_t flags;
    uint8_t unread2[2020];
    uint32_t job_mode;  // valid when flags hold kJobModeValid
    uint8_t unread3[2088];
};
static_assert(sizeof(ZRTK_COMMON_MMF) == 4120);
static_assert(offsetof(ZRTK_COMMON_MMF, flags) == 4);
static_assert(offsetof(ZRTK_COMMON_MMF, job_mode) == 2028);

namespace pd_tk {

// The file names of the jobs in progress, shared with the rendering module, whose layout it is. What this
// module needs of it is settled in teskel_custom_2021.h.
struct TKFileNames {
    wchar_t names[200][kRecordTextUnits];
};
static_assert(sizeof(TKFileNames) == 104000);

}  // namespace pd_tk

inline constexpr wchar_t kStartBlockName[] = L"ZRTK_prn_info_mmf_%d";
inline constexpr wchar_t kResultBlockName[] = L"ZRTK_prn_info_mmf2_%d";
inline constexpr wchar_t kCommonBlockName[] = L"zrtk_common_mmf_s23rewsd_%s_%s";
