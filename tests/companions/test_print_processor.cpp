// The print processor's exports, asked without a job.
#include <winsplp.h>

#include "companions/print_processor/names.h"

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
    EXPECT_FALSE(enumerate(nullptr, nullptr, 1, nullptr, needed, &needed, &count));
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
        EXPECT_FALSE(print(handle, nullptr) || (SetLastError(ERROR_SUCCESS), print(handle, job)));
        EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
        EXPECT_TRUE(close(handle));
    }
    EXPECT_FALSE(print(nullptr, job) || close(nullptr));
}

}  // namespace
