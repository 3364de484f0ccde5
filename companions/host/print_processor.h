// The part of the print system that takes the spooled document to the printer's port.
#pragma once

#include <windows.h>

#include <string>

namespace host {

// The datatype that the printer has to have, so that the product's print processor gets what this print
// system spools: Wine from version 10 on EMF, earlier ones PostScript.
[[nodiscard]] const wchar_t* needed_datatype();

// What the name of a printer's processor means; the name alone where it is none of ours.
[[nodiscard]] std::wstring print_processor_text(const std::wstring& name);

// The folder of the print processors' libraries, with its trailing backslash. Throws HostError (installation)
// when the spooler does not tell.
[[nodiscard]] std::wstring processor_folder();

// The path of the processor's library as the spooler has it registered; empty when it is not.
[[nodiscard]] std::wstring find_processor_library();

// Registers the processor, whose library has to lie in its folder; true when it was not. No printer may name
// one that is not registered: programs that print to it would hang. Throws HostError (installation).
bool ensure_print_processor();

// Removes a key that holds neither keys nor values.
void remove_key_if_empty(HKEY hive, const std::wstring& path);

// Takes the processor's registration away; true when there was one. Throws HostError (installation).
bool remove_print_processor();

}  // namespace host
