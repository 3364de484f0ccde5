// The print processor's exports and texts, asked without a job.
#include <winsplp.h>

#include <set>

#include "common/qk/resource_dll.h"
#include "companions/print_processor/names.h"
#include "companions/print_processor/resource.h"
#include "support/installation.h"

namespace {

struct PrintProcessor : testing::Test {
    template <class Function>
    Function* find(const char* name) const {
        Function* function = qk::find_export<Function>(library.get(), name);
        EXPECT_NE(function, nullptr) << name;
        return function;
    }
    const qk::DLL library{LoadLibraryW(Installation::built(processor::kLibrary).c_str())};
};

TEST_F(PrintProcessor, DatatypesComeWithTheirSize) {
    auto* enumerate = find<BOOL WINAPI(wchar_t*, wchar_t*, DWORD, BYTE*, DWORD, DWORD*, DWORD*)>(
        "EnumPrintProcessorDatatypesW");
    DWORD needed = 0, count = 7;
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, nullptr, 0, &needed, &count));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER}) << "what the spooler goes by";
    EXPECT_EQ(count, 0u);
    std::vector<BYTE> buffer(needed, 0xAB);
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, buffer.data(), needed - 1, &needed, &count));
    EXPECT_EQ(buffer, std::vector<BYTE>(needed, 0xAB));
    EXPECT_FALSE(enumerate(nullptr, nullptr, 2, buffer.data(), needed, &needed, &count));
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, buffer.data(), needed, nullptr, nullptr));
    ASSERT_TRUE(enumerate(nullptr, nullptr, 1, buffer.data(), needed, &needed, &count));
    std::wstring names;
    for (DWORD at = 0; at < count; ++at)
        (names += reinterpret_cast<const DATATYPES_INFO_1W*>(buffer.data())[at].pName) += L'|';
    EXPECT_EQ(names, L"RAW|RAW [FF appended]|RAW [FF auto]|TEXT|NT EMF 1.003|");
}

TEST_F(PrintProcessor, OpeningNeverFailsAndBadCallsDo) {
    auto* open = find<decltype(OpenPrintProcessor)>("OpenPrintProcessor");
    auto* print = find<decltype(PrintDocumentOnPrintProcessor)>("PrintDocumentOnPrintProcessor");
    auto* close = find<decltype(ClosePrintProcessor)>("ClosePrintProcessor");
    wchar_t job[] = L"no such printer, Job 7";
    PRINTPROCESSOROPENDATA nothing = {};
    for (PRINTPROCESSOROPENDATA* data : {static_cast<PRINTPROCESSOROPENDATA*>(nullptr), &nothing}) {
        const HANDLE handle = open(nullptr, data);
        ASSERT_NE(handle, nullptr) << "a spooler whose open fails keeps its lock";
        EXPECT_FALSE(print(handle, nullptr) || print(handle, job));
        EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
        EXPECT_TRUE(close(handle));
    }
    EXPECT_FALSE(print(nullptr, job) || close(nullptr));
}

// The texts that a job has no other test for: each language has its own, with the same numbers in them.
TEST_F(PrintProcessor, ProgressIsToldInEveryLanguage) {
    const wchar_t* const pages[] = {L"Page 7 of 12", L"7 / 12 \u30DA\u30FC\u30B8", L"7/12\uD398\uC774\uC9C0",
                                    L"\u7B2C 7 \u9875\uFF0C\u5171 12 \u9875",
                                    L"\u7B2C 7 \u9801\uFF0C\u5171 12 \u9801"};
    std::set<std::wstring> all;
    for (UINT language = 0; language < std::size(pages); ++language) {
        const auto text = [&, first = IDS_EN + 16 * language](UINT which) {
            return qk::find_string(library.get(), first + which).value_or(L"");
        };
        EXPECT_EQ(qk::format(text(TEXT_PAGE_OF).c_str(), 7u, 12u), pages[language]);
        EXPECT_NE(qk::format(text(TEXT_PAGE).c_str(), 7u).find(L'7'), std::wstring::npos);
        all.insert({text(TEXT_BEGUN), text(TEXT_CANCELLING)});
    }
    EXPECT_EQ(all.size(), 2 * std::size(pages)) << "a text is missing or another language's";
}

}  // namespace
