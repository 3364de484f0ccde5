// A printer below the spooler's calls: it has the forms, the DEVMODE and the data that a test gives it, which
// the spooler of a test machine cannot be brought to hold. One at a time; its calls may come from any thread.
#pragma once

#include "support/import_patch.h"

#include <winspool.h>

class FakePrinter {
public:
    struct Form {
        DWORD flags;
        std::wstring name;
        SIZEL size = {100000, 200000};
    };

    FakePrinter() { self_ = this; }
    ~FakePrinter() { self_ = nullptr; }

    static HANDLE handle() { return reinterpret_cast<HANDLE>(uintptr_t{0x5A5A0}); }

    std::wstring name = L"Vantrix 8";
    std::vector<Form> forms = standard_forms();
    std::vector<std::byte> devmode;   // the printer's own; none when empty
    int failing_forms_call = 0;       // 1: the size query succeeds oddly, 2: the second call fails
    std::atomic<DWORD> grows_by = 0;  // PRINTER_INFO_2W is larger (or, wrapped, smaller) at the second call
    std::function<void()> while_telling;
    std::atomic<int> get_calls = 0, forms_calls = 0, open_calls = 0, open_handles = 0;
    bool forms_buffer_was_clear = true;
    DWORD open_access = 0;
    bool can_open = true;
    std::optional<std::vector<BYTE>> model;  // the printer data "Model", as bytes
    DWORD set_data_result = ERROR_SUCCESS;

private:
    // As far as A4, which has the number that its DMPAPER_A4 says.
    static std::vector<Form> standard_forms() {
        std::vector<Form> standard(DMPAPER_A4, {FORM_BUILTIN, L"Letter", {215900, 279400}});
        standard.back() = {FORM_BUILTIN, L"A4", {210000, 297000}};
        return standard;
    }

    static BOOL fail(DWORD error) {
        SetLastError(error);
        return FALSE;
    }

    static BOOL WINAPI on_open(LPWSTR printer, HANDLE* opened, PRINTER_DEFAULTSW* defaults) {
        if (!self_->can_open || (printer && self_->name != printer))  // no name: the print server
            return fail(ERROR_INVALID_PRINTER_NAME);
        ++self_->open_calls, ++self_->open_handles;
        self_->open_access = defaults ? defaults->DesiredAccess : 0;
        *opened = handle();
        return TRUE;
    }
    static BOOL WINAPI on_close(HANDLE) { return --self_->open_handles, TRUE; }

    static BOOL WINAPI on_get(HANDLE printer, DWORD level, BYTE* buffer, DWORD size, DWORD* needed) {
        ++self_->get_calls;
        if (self_->while_telling)
            self_->while_telling();
        if (printer != handle())
            return fail(ERROR_INVALID_HANDLE);
        const size_t record = level == 4 ? sizeof(PRINTER_INFO_4W) : sizeof(PRINTER_INFO_2W);
        const size_t name_bytes = (self_->name.size() + 1) * sizeof(wchar_t), own = self_->devmode.size();
        *needed = static_cast<DWORD>(record + own + name_bytes) + (buffer ? self_->grows_by.load() : 0);
        if (!buffer || (size < *needed && self_->grows_by == 0))
            return fail(ERROR_INSUFFICIENT_BUFFER);
        std::memset(buffer, 0, record);
        std::copy_n(self_->devmode.data(), own, reinterpret_cast<std::byte*>(buffer + record));
        auto* text = reinterpret_cast<wchar_t*>(buffer + record + own);
        std::memcpy(text, self_->name.c_str(), name_bytes);
        if (level == 4) {
            reinterpret_cast<PRINTER_INFO_4W*>(buffer)->pPrinterName = text;
        } else {
            auto& info = *reinterpret_cast<PRINTER_INFO_2W*>(buffer);
            info.pPrinterName = text;
            info.pDevMode = own ? reinterpret_cast<DEVMODEW*>(buffer + record) : nullptr;
        }
        return TRUE;
    }

    static BOOL WINAPI on_forms(HANDLE, DWORD, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
        ++self_->forms_calls;
        auto& forms = self_->forms;
        *needed = static_cast<DWORD>(forms.size() * sizeof(FORM_INFO_1W) + 8);
        if (!buffer && self_->failing_forms_call == 1)
            return fail(ERROR_INVALID_HANDLE);
        if (size < *needed) {
            std::vector<BYTE> used(*needed);  // what the next one of that size is made of
            std::fill_n(static_cast<volatile BYTE*>(used.data()), *needed, BYTE{0xEE});
            return fail(ERROR_INSUFFICIENT_BUFFER);
        }
        self_->forms_buffer_was_clear &= std::count(buffer, buffer + size, 0) == std::ptrdiff_t{size};
        if (self_->failing_forms_call == 2)
            return fail(ERROR_NOT_READY);
        auto* form = reinterpret_cast<FORM_INFO_1W*>(buffer);
        for (Form& given : forms)
            *form++ = {given.flags, given.name.data(), given.size, {0, 0, given.size.cx, given.size.cy}};
        *count = static_cast<DWORD>(forms.size());
        return TRUE;
    }

    static DWORD WINAPI on_get_data(HANDLE, LPWSTR, DWORD* type, BYTE* data, DWORD size, DWORD* needed) {
        if (!self_->model)
            return ERROR_FILE_NOT_FOUND;
        *needed = static_cast<DWORD>(self_->model->size());
        if (size < *needed)
            return ERROR_MORE_DATA;
        if (type)
            *type = REG_SZ;
        std::memcpy(data, self_->model->data(), *needed);
        return ERROR_SUCCESS;
    }
    static DWORD WINAPI on_set_data(HANDLE, LPWSTR value, DWORD type, BYTE* data, DWORD size) {
        if (self_->set_data_result == ERROR_SUCCESS && type == REG_SZ && std::wcscmp(value, L"Model") == 0)
            self_->model.emplace(data, data + size);
        return self_->set_data_result;
    }

    static inline FakePrinter* self_ = nullptr;
    ImportPatch open_{"OpenPrinterW", &on_open}, close_{"ClosePrinter", &on_close},
        get_{"GetPrinterW", &on_get}, forms_{"EnumFormsW", &on_forms},
        get_data_{"GetPrinterDataW", &on_get_data}, set_data_{"SetPrinterDataW", &on_set_data};
};
